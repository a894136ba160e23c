// SPDX-License-Identifier: MIT

#include "Session.h"

#include "Failure.h"
#include "Secret.h"

#include <libconfigurationmanager/lcm.h>

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>

#include <array>

namespace {

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

/// A message in which the service may have repeated what it was given.
QString withoutSecrets(QString message, const QVariantList &arguments)
{
    for (const QVariant &argument : arguments) {
        if (argument.type() == QVariant::String && !argument.toString().isEmpty())
            message.replace(argument.toString(), QStringLiteral("(not shown)"));
    }
    return message;
}

} // namespace

Session::Session(const std::optional<QString> &collection)
{
    // The meta-object knows the list by this name, the library registers it by another.
    qRegisterMetaType<ConfigurationList>("ConfigurationList");
    if (collection)
        setCollection(*collection);
}

void Session::requireConnection() const
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        throwNotConnected(QStringLiteral("no system bus: %1").arg(bus.lastError().message()));
    if (!m_library.isConnected())
        throwNotConnected(QStringLiteral("the configuration service is not on the system bus"));
}

Reply Session::call(const Operation &operation, const QVariantList &arguments)
{
    Reply reply;
    reply.value =
        invoke(&m_library, operation.form(arguments.size()), operation.result, arguments);
    if (const auto failure = m_log.takeFailure()) {
        if (failure->notConnected)
            throwNotConnected(QStringLiteral("the configuration service has left the system bus"));
        reply.error = isSecret(operation.name) ? withoutSecrets(failure->message, arguments)
                                               : failure->message;
    }
    return reply;
}
