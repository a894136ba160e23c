// SPDX-License-Identifier: MIT

#include "bus/Service.h"

#include "bus/CallRecord.h"
#include "bus/Faults.h"
#include "methods/Call.h"
#include "model/DBusTypes.h"
#include "model/Profile.h"
#include "model/Settings.h"
#include "state/Configuration.h"
#include "state/Refusal.h"
#include "state/ServiceLog.h"
#include "state/Store.h"
#include "state/UserSettings.h"

#include <contract/Interface.h>

#include <QtCore/QTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>

#include <csignal>
#include <optional>

namespace simulator {

namespace {

/// As a reader takes them in, e.g. "(i value, s collectionId)".
QString describe(const QVector<contract::Argument> &arguments)
{
    QStringList list;
    for (const contract::Argument &argument : arguments)
        list += argument.type + QLatin1Char(' ') + argument.name;
    return QLatin1Char('(') + list.join(QStringLiteral(", ")) + QLatin1Char(')');
}

const contract::Method &checkedMethod(const contract::Interface &interface,
                                      const QDBusMessage &message)
{
    const contract::Method *method = interface.method(message.member());
    if (!method)
        throw Refusal{
            QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"),
            QStringLiteral("%1 has no method %2").arg(interface.name(), message.member())};
    if (message.signature() != method->signature())
        throw invalidArguments(
            QStringLiteral("%1 takes %2, of signature \"%3\"; it was called with \"%4\"")
                .arg(method->name, describe(method->arguments), method->signature(),
                     message.signature()));
    return *method;
}

/// Qt hands a map over as it came.
QVariantList demarshalled(QVariantList arguments)
{
    for (QVariant &argument : arguments) {
        if (argument.userType() == qMetaTypeId<QDBusArgument>())
            argument = qdbus_cast<QVariantMap>(argument);
    }
    return arguments;
}

void send(const QDBusMessage &answer, const QDBusMessage &message,
          const QDBusConnection &connection)
{
    if (message.isReplyRequired())
        connection.send(answer);
}

QDBusMessage ofWrongType(const QDBusMessage &answer, const QDBusMessage &message)
{
    const QVariant result = answer.arguments().value(0);
    return message.createReply(result.userType() == QMetaType::QString
                                   ? QVariant(0)
                                   : QVariant(QStringLiteral("of a wrong type")));
}

/// The name of the setting's value that a call is about.
QString nameOf(const Setting &setting, const Call &call)
{
    if (!setting.keyed)
        return setting.name;
    return setting.name + QLatin1Char('/') + call.argument(contract::Role::Key).toString();
}

/// The value as the method answers it: the two are of different types where a setting is written as
/// one and read as the other.
QVariant converted(const QVariant &value, const QString &dbusType)
{
    if (dbusType == QLatin1String("i") && value.userType() == QMetaType::Double)
        return int32Of(value.toDouble());
    return value;
}

} // namespace

Service::Service(const contract::Interface &interface, Configuration &configuration,
                 UserSettings &userSettings, ServiceLog &log, CallRecord &calls, Faults &faults,
                 const MethodTable &methods)
    : m_interface(interface),
      m_configuration(configuration),
      m_userSettings(userSettings),
      m_log(log),
      m_calls(calls),
      m_faults(faults),
      m_methods(methods)
{
    QStringList others;
    for (const contract::Method &method : interface.methods()) {
        const Settings &settings = configuration.settings();
        if (!methods.contains(method.name) && !settings.writtenBy(method) &&
            !settings.readBy(method))
            others += method.name;
    }
    configuration.profile().requireAnswers(others);
}

QString Service::introspect(const QString &) const
{
    return m_interface.xml();
}

bool Service::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    // D-Bus allows a call that does not say which interface it means.
    if (!message.interface().isEmpty() && message.interface() != m_interface.name())
        return answerAboutProperties(message, connection);
    if (const std::optional<Fault> fault = m_faults.next(message.member()))
        answerFaultily(*fault, message, connection);
    else
        send(answerTo(message), message, connection);
    return true;
}

void Service::answerFaultily(const Fault &fault, const QDBusMessage &message,
                             const QDBusConnection &connection)
{
    switch (fault.kind) {
    case Fault::Kind::Error:
        answerWith(message.createErrorReply(
                       QStringLiteral("com.tavelornbraille.Simulator.Error.Injected"),
                       fault.detail.isEmpty() ? QStringLiteral("an injected fault") : fault.detail),
                   message, connection);
        break;
    case Fault::Kind::Refuse:
        answerWith(message.createErrorReply(fault.errorName, fault.detail), message, connection);
        break;
    case Fault::Kind::Answer:
        answerWith(message.createReply(fault.answer), message, connection);
        break;
    case Fault::Kind::WrongType:
        send(ofWrongType(answerTo(message), message), message, connection);
        break;
    case Fault::Kind::Delay:
        // Never early, which a coarse timer may be.
        QTimer::singleShot(fault.milliseconds(), Qt::PreciseTimer, this,
                           [answer = answerTo(message), message, connection] {
                               send(answer, message, connection);
                           });
        break;
    case Fault::Kind::NoAnswer:
        note(message, Faults::nameOf(fault.kind));
        break;
    case Fault::Kind::Crash:
        // The bus answers when it has what has been sent so far: the signal that this happens.
        connection.interface()->call(QStringLiteral("GetId"));
        std::raise(SIGKILL);
        break;
    case Fault::Kind::DropName:
        Q_EMIT leaveRequested(fault.milliseconds());
        send(answerTo(message), message, connection);
        break;
    }
}

QDBusMessage Service::answerTo(const QDBusMessage &message)
{
    QDBusMessage answer;
    try {
        const contract::Method &method = checkedMethod(m_interface, message);
        const QVariantList arguments = demarshalled(message.arguments());
        const QVariant result = carryOut(Call(method, arguments));
        answer = result.isValid() ? message.createReply(result) : message.createReply();
        Q_EMIT carriedOut();
    } catch (const Refusal &refusal) {
        answer = message.createErrorReply(refusal.name, refusal.message);
    } catch (const StoreError &error) {
        answer = message.createErrorReply(QDBusError::Failed, QString::fromUtf8(error.what()));
    }
    note(message, answer.errorName());
    return answer;
}

void Service::note(const QDBusMessage &message, const QString &outcome)
{
    m_log.add(message.member(), outcome);
    m_calls.add(message.member(), demarshalled(message.arguments()), outcome);
}

void Service::answerWith(const QDBusMessage &answer, const QDBusMessage &message,
                         const QDBusConnection &connection)
{
    note(message, answer.errorName());
    send(answer, message, connection);
}

bool Service::answerAboutProperties(const QDBusMessage &message, const QDBusConnection &connection)
{
    const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
    if (message.interface() != properties || message.member() != QLatin1String("GetAll"))
        return false;
    const QStringList known{m_interface.name(), properties,
                            QStringLiteral("org.freedesktop.DBus.Introspectable"),
                            QStringLiteral("org.freedesktop.DBus.Peer")};
    if (message.signature() != QLatin1String("s") ||
        !known.contains(message.arguments().constFirst().toString()))
        return false;
    send(message.createReply(QVariantMap()), message, connection);
    return true;
}

QVariant Service::carryOut(const Call &call)
{
    const contract::Method &method = call.method();
    if (const RecordedAnswer *recorded =
            m_configuration.profile().recorded(method.name, call.ownArguments())) {
        if (!recorded->error.isNull())
            throw failed(recorded->error);
        return recorded->answer;
    }
    const auto body = m_methods.constFind(method.name);
    if (body != m_methods.cend())
        return (*body)(call);
    if (const Setting *written = m_configuration.settings().writtenBy(method)) {
        m_userSettings.setValue(nameOf(*written, call), call.collectionId(),
                                call.argument(contract::Role::Value), call.flag());
        return method.resultType.isEmpty() ? QVariant() : true;
    }
    if (const Setting *read = m_configuration.settings().readBy(method))
        return converted(m_configuration.value(nameOf(*read, call), call.collectionId()),
                         method.resultType);
    // Nothing stands for what a captured service does not tell.
    const QVariant nothing(metaTypeOf(method.resultType), nullptr);
    return m_configuration.answers().value(method.name, nothing);
}

} // namespace simulator
