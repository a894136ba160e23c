// SPDX-License-Identifier: MIT

#include "library/Session.h"

#include "common/DeferredSignals.h"
#include "common/Failure.h"
#include "library/Catalogue.h"
#include "library/Secret.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>

#include <algorithm>

namespace tool {

using libconfigurationmanager::AsyncConfigurationManager;

namespace {

const QString serviceName = QStringLiteral("com.tavelornbraille.ConfigurationManager");
constexpr std::chrono::milliseconds pingTimeout{5000};

/// The address that Qt takes for the system bus.
QString busAddress()
{
    const QString address = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return address.isEmpty() ? QStringLiteral("unix:path=/var/run/dbus/system_bus_socket")
                             : address;
}

[[noreturn]] void throwNotConnected(const QString &reason)
{
    throw Failure(ExitStatus::NotConnected, QStringLiteral("not connected: %1").arg(reason));
}

/// The secrets in a value; all that is in a secret map or list is secret.
QStringList secretsIn(const QVariant &value, bool isValueSecret)
{
    QStringList secrets;
    if (isValueSecret)
        secrets.append(value.toString());
    for (const QVariant &element : value.toList())
        secrets += secretsIn(element, isValueSecret);
    const QVariantMap map = value.toMap();
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        secrets += secretsIn(entry.value(), isValueSecret || isSecret(entry.key()));
    return secrets;
}

/// Whether only the service can have said so. The other errors are those of the bus and of the
/// library, but a service may give its own the same names.
bool isRefusal(const QDBusError &error)
{
    switch (error.type()) {
    case QDBusError::AccessDenied:
    case QDBusError::Disconnected:
    case QDBusError::NoReply:
    case QDBusError::ServiceUnknown:
    case QDBusError::TimedOut:
    case QDBusError::Timeout:
        return false;
    default:
        return true;
    }
}

/// The secrets among what the service was given.
QStringList givenSecrets(const Operation &operation, const QVariantList &arguments)
{
    QStringList secrets = secretsIn(arguments, operation.isSecret);
    secrets.removeAll(QString());
    return secrets;
}

/// The service's message, in which it may have repeated what it was given.
QString withoutTexts(QString message, QStringList texts)
{
    // The longest first: the shorter ones may be parts of it.
    std::sort(texts.begin(), texts.end(),
              [](const QString &a, const QString &b) { return a.size() > b.size(); });
    for (const QString &text : qAsConst(texts))
        message.replace(text, QStringLiteral("(not shown)"));
    return message;
}

[[noreturn]] void throwHasLeft()
{
    throwNotConnected(QStringLiteral("the configuration service has left the system bus"));
}

} // namespace

Session::Session(const SessionOptions &options) : m_timeout(options.timeout)
{
    if (options.collection)
        m_library.setCatalogsCollectionId(*options.collection);
    // await() counts from another moment than the library.
    if (hasTimeout())
        m_library.setTimeout(std::chrono::milliseconds::max());
    m_library.setMaximumInFlight(1);
    QObject::connect(&m_library, &AsyncConfigurationManager::disconnected,
                     [this] { ++m_departures; });
}

void Session::requireBus() const
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (bus.isConnected())
        return;
    const QString address = busAddress();
    // Such a program has said why itself.
    const QString reason = address.startsWith(QLatin1String("unixexec:"))
                               ? QStringLiteral("the program that leads to it has ended")
                               : bus.lastError().message();
    throwNotConnected(QStringLiteral("no system bus: %1: %2").arg(address, reason));
}

void Session::whenBusIsLost(QObject *receiver, const char *slot)
{
    QDBusConnection::systemBus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                         QStringLiteral("org.freedesktop.DBus.Local"),
                                         QStringLiteral("Disconnected"), receiver, slot);
}

void Session::requireConnection() const
{
    requireBus();
    if (!m_library.isConnected())
        throwNotConnected(QStringLiteral("the configuration service is not on the system bus"));
}

void Session::startService() const
{
    QDBusMessage start = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("StartServiceByName"));
    start << serviceName << uint(0);
    QDBusPendingCall answer = QDBusConnection::systemBus().asyncCall(start);
    answer.waitForFinished();
    if (answer.isError()) {
        throwNotConnected(QStringLiteral("the bus does not start the configuration service: %1")
                              .arg(answer.error().message()));
    }
    // The library learns from the event loop that the service has come.
    QCoreApplication::processEvents();
}

void Session::requireService(const Call &call) const
{
    QDBusMessage ping = QDBusMessage::createMethodCall(serviceName, QStringLiteral("/"),
                                                       QStringLiteral("org.freedesktop.DBus.Peer"),
                                                       QStringLiteral("Ping"));
    ping.setAutoStartService(false);
    QDBusPendingCall answer = QDBusConnection::systemBus().asyncCall(
        ping, int((hasTimeout() ? m_timeout : pingTimeout).count()));
    answer.waitForFinished();
    // The library learns from the event loop that the service has left.
    QCoreApplication::processEvents();
    if (m_departures != call.departures)
        throwHasLeft();
    switch (answer.error().type()) {
    case QDBusError::AccessDenied:
        throw Failure(ExitStatus::NotPermitted,
                      QStringLiteral("permission denied by the bus; members of the group embosser "
                                     "may talk to the service"));
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        throw Failure(ExitStatus::NoAnswer,
                      QStringLiteral("the configuration service does not answer"));
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
        throwHasLeft();
    default:
        // It is there, and has refused.
        break;
    }
}

Session::Call Session::begin(const Operation &operation, const QVariantList &arguments)
{
    // The library learns from the event loop that the service has left.
    QCoreApplication::processEvents();
    if (!m_library.isConnected())
        throwHasLeft();
    return {m_library.callMethod(operation.remoteMethod,
                                 operation.sent(arguments, m_library.catalogsCollectionId()),
                                 operation.result.metaType()),
            givenSecrets(operation, arguments), m_departures};
}

QVector<QPair<const Setting *, Session::Call>>
Session::beginToRead(const QVector<const Setting *> &settings)
{
    QVector<QPair<const Setting *, Call>> calls;
    for (const Setting *setting : settings)
        calls.append({setting, begin(*setting->getter)});
    return calls;
}

void Session::await(const Call &call) const
{
    constexpr std::chrono::milliseconds untilSignalIsSeen{50};
    const QDeadlineTimer deadline =
        hasTimeout() ? QDeadlineTimer(m_timeout) : QDeadlineTimer(QDeadlineTimer::Forever);
    QEventLoop loop;
    const auto wake = [&loop] { loop.quit(); };
    call.reply.then(
        &loop, [wake](const QVariant &) { wake(); }, [wake](const QDBusError &) { wake(); });
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, wake);
    timer.start(untilSignalIsSeen);
    while (!call.reply.isFinished()) {
        loop.exec();
        DeferredSignals::throwIfCome();
        if (deadline.hasExpired() && !call.reply.isFinished()) {
            throw Failure(ExitStatus::NoAnswer,
                          QStringLiteral("the configuration service has not answered within %1 s")
                              .arg(double(m_timeout.count()) / 1000));
        }
    }
}

Reply Session::finish(const Call &call)
{
    if (!call.reply.isFinished())
        await(call);
    // The bus's time-out is counted from when a call is sent, whatever the service has to do first.
    if (hasTimeout())
        m_library.setMaximumInFlight(m_maximumInFlight);
    if (!call.reply.isError())
        return {call.reply.value(), {}};
    const QDBusError error = call.reply.error();
    if (!isRefusal(error))
        requireService(call);
    return {{}, withoutTexts(error.message(), call.secrets)};
}

} // namespace tool
