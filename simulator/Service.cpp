// SPDX-License-Identifier: MIT

#include "Service.h"

#include "Call.h"
#include "Configuration.h"
#include "Interface.h"
#include "Refusal.h"
#include "Settings.h"
#include "Store.h"
#include "Types.h"

#include <QtDBus/QDBusConnection>

namespace simulator {

namespace {

const Method &checkedMethod(const Interface &interface, const QDBusMessage &message)
{
    const Method *method = interface.method(message.member());
    if (!method)
        throw Refusal{
            QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"),
            QStringLiteral("%1 has no method %2").arg(interface.name(), message.member())};
    if (message.signature() != method->signature())
        throw invalidArguments(
            QStringLiteral("%1 takes %2, of signature \"%3\"; it was called with \"%4\"")
                .arg(method->name, method->describeArguments(), method->signature(),
                     message.signature()));
    return *method;
}

} // namespace

Service::Service(const Interface &interface, Configuration &configuration)
    : m_interface(interface), m_configuration(configuration)
{
}

QString Service::introspect(const QString &) const
{
    return m_interface.xml();
}

bool Service::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    // D-Bus allows a call that does not say which interface it means.
    if (!message.interface().isEmpty() && message.interface() != m_interface.name())
        return false;
    const QDBusMessage answer = reply(message);
    if (message.isReplyRequired())
        connection.send(answer);
    return true;
}

QDBusMessage Service::reply(const QDBusMessage &message)
{
    try {
        const Method &method = checkedMethod(m_interface, message);
        const QVariant result = carryOut(Call(method, message.arguments()));
        return result.isValid() ? message.createReply(result) : message.createReply();
    } catch (const Refusal &refusal) {
        return message.createErrorReply(refusal.name, refusal.message);
    } catch (const StoreError &error) {
        return message.createErrorReply(QDBusError::Failed, QString::fromUtf8(error.what()));
    }
}

QVariant Service::carryOut(const Call &call)
{
    const Method &method = call.method();
    const QString key = call.argument(keyArgument(method)).toString();
    QVariant result;
    if (const Setting *written = m_configuration.settings().writtenBy(method)) {
        m_configuration.setValue(*written, key, call.collectionId(),
                                 call.argument(valueArgument(method)));
        result = true;
    } else if (const Setting *read = m_configuration.settings().readBy(method)) {
        result = m_configuration.value(*read, key, call.collectionId());
    }
    if (method.resultType.isEmpty())
        return {};
    const int type = metaTypeOf(method.resultType);
    if (!result.convert(type))
        result = QVariant(type, nullptr);
    return result;
}

} // namespace simulator
