// SPDX-License-Identifier: MIT

#include "library/Session.h"

#include "common/DeferredSignals.h"
#include "common/Failure.h"
#include "library/Secret.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>

#include <algorithm>
#include <array>
#include <memory>
#include <thread>

namespace tool {

using libconfigurationmanager::detail::ConfigurationManager;

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

/// What the meta-object calls the type. An enumeration has the size of an int, and needs no
/// registration.
int storageType(const ValueType &type)
{
    return type.enumeration.isValid() ? QMetaType::Int
                                      : QMetaType::type(type.name.toLatin1().constData());
}

QVariant invoke(QObject *object, const QMetaMethod &method, const ValueType &resultType,
                const QVariantList &arguments)
{
    // As many as QMetaMethod::invoke() takes.
    std::array<QGenericArgument, 10> given;
    for (int i = 0; i < arguments.size(); ++i)
        given[i] = QGenericArgument(arguments[i].typeName(), arguments[i].constData());

    QVariant result;
    QGenericReturnArgument returned;
    if (method.returnType() != QMetaType::Void) {
        result = QVariant(storageType(resultType), nullptr);
        returned = QGenericReturnArgument(method.typeName(), result.data());
    }
    method.invoke(object, Qt::DirectConnection, returned, given[0], given[1], given[2], given[3],
                  given[4], given[5], given[6], given[7], given[8], given[9]);
    return result;
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

bool Session::s_hasAbandonedCall = false;

Session::Session(const SessionOptions &options) : m_timeout(options.timeout)
{
    // The meta-object knows the list by this name, the library registers it by another.
    qRegisterMetaType<ConfigurationList>("ConfigurationList");
    if (options.collection)
        setCollection(*options.collection);
    QObject::connect(&m_library, &ConfigurationManager::disconnected, [this] { m_hasLeft = true; });
}

void Session::requireBus() const
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        throwNotConnected(
            QStringLiteral("no system bus: %1: %2").arg(busAddress(), bus.lastError().message()));
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

void Session::requireService() const
{
    QDBusMessage ping = QDBusMessage::createMethodCall(serviceName, QStringLiteral("/"),
                                                       QStringLiteral("org.freedesktop.DBus.Peer"),
                                                       QStringLiteral("Ping"));
    ping.setAutoStartService(false);
    QDBusPendingCall answer = QDBusConnection::systemBus().asyncCall(
        ping, int((m_timeout.count() > 0 ? m_timeout : pingTimeout).count()));
    answer.waitForFinished();
    // The library learns from the event loop that the service has left.
    QCoreApplication::processEvents();
    if (m_hasLeft)
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

QVariant Session::resultOf(std::future<QVariant> call) const
{
    using std::chrono::steady_clock;
    constexpr std::chrono::milliseconds untilSignalIsSeen{50};
    const auto begin = steady_clock::now();
    s_hasAbandonedCall = true;
    while (call.wait_for(untilSignalIsSeen) != std::future_status::ready) {
        DeferredSignals::throwIfCome();
        if (m_timeout.count() > 0 && steady_clock::now() - begin > m_timeout) {
            throw Failure(ExitStatus::NoAnswer,
                          QStringLiteral("the configuration service has not answered within %1 s")
                              .arg(double(m_timeout.count()) / 1000));
        }
    }
    s_hasAbandonedCall = false;
    return call.get();
}

Reply Session::call(const Operation &operation, const QVariantList &arguments)
{
    // The library learns from the event loop that the service has left.
    QCoreApplication::processEvents();
    m_hasLeft = false;
    auto call = std::make_shared<std::promise<QVariant>>();
    std::thread([call, library = &m_library, method = operation.form(arguments.size()),
                 resultType = operation.result, arguments] {
        call->set_value(invoke(library, method, resultType, arguments));
    }).detach();
    Reply reply;
    reply.value = resultOf(call->get_future());
    if (const auto failure = m_log.takeFailure()) {
        if (failure->notConnected)
            throwHasLeft();
        requireService();
        reply.error = withoutTexts(failure->message, givenSecrets(operation, arguments));
    }
    return reply;
}

} // namespace tool
