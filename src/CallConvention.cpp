// SPDX-License-Identifier: MIT

#include "ConfigurationManager_p.h"

#include "Marshallable.h"

#include <libtavelorn/DBusService.h>

#include <QtCore/QDebug>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMetaMethod>
#include <QtCore/QMutexLocker>
#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusReply>

namespace libconfigurationmanager {
namespace detail {

namespace {

const QLoggingCategory category("libconfigurationmanager.ConfigurationManager", QtCriticalMsg);

QMetaMethod methodOf(Operation operation)
{
    const QMetaObject &metaObject = ConfigurationManagerPrivate::staticMetaObject;
    return metaObject.method(metaObject.methodOffset() + int(operation.slot()));
}

QString remoteMethodOf(Operation operation)
{
    const char *name = remoteMethodOfAnotherName(operation.slot());
    return name ? QLatin1String(name) : QLatin1String(methodOf(operation).name());
}

/// The private method as the compiler names it in __PRETTY_FUNCTION__.
QByteArray functionOf(Operation operation)
{
    const QMetaMethod method = methodOf(operation);
    QByteArray parameters = method.methodSignature();
    parameters.replace(',', ", ");
    if (!operation.has(TakesTextByValue))
        parameters.replace("QString", "const QString&");
    return QByteArray(method.typeName()) + ' ' +
           ConfigurationManagerPrivate::staticMetaObject.className() + "::" + parameters +
           (operation.has(IsConst) ? " const" : "");
}

void logNotConnected(Operation operation)
{
    if (!category.isCriticalEnabled())
        return;
    // Lives as long as the message handler runs, and no longer.
    const QByteArray function = functionOf(operation);
    QMessageLogger(sourceFile, operation.line(), function, category.categoryName()).critical()
        << (operation.has(SaysNotConnectedWithCapital) ? "Not Connected." : "Not connected.");
}

void logError(Operation operation, const QDBusError &error)
{
    const QByteArray function = functionOf(operation);
    QMessageLogger(sourceFile, operation.line(), function, "default").critical() << error.message();
}

/// The value of the reply, or, when the reply is an error or has another type, the default.
template<typename Result>
Result resultOf(const QDBusMessage &message, Operation operation)
{
    const QDBusReply<Result> reply(message);
    if (!reply.isValid()) {
        logError(operation, reply.error());
        return Result();
    }
    if constexpr (!std::is_void_v<Result>)
        return reply.value();
}

} // namespace

bool ConfigurationManagerPrivate::isConnected() const
{
    return !checkConnection || service->isConnected();
}

/// The call convention of all operations.
template<typename Result>
Result ConfigurationManagerPrivate::perform(Operation operation,
                                            std::initializer_list<Argument> arguments) const
{
    if (!isConnected()) {
        logNotConnected(operation);
        return Result();
    }
    const QMutexLocker locker(&mutex);
    return resultOf<Result>(send(operation, arguments), operation);
}

QDBusMessage ConfigurationManagerPrivate::send(Operation operation,
                                               std::initializer_list<Argument> arguments) const
{
    QVariantList values;
    values.reserve(int(arguments.size()) + 1);
    for (const Argument &argument : arguments)
        values.append(QVariant(argument.type, argument.value));
    if (operation.has(SendsCollectionId))
        values.insert(values.size() - operation.has(EndsInFlag), collectionId);
    const QString problem = marshallingProblem(values);
    if (!problem.isEmpty())
        return QDBusMessage::createError(QDBusError::InvalidArgs, problem);
    // Not call(): Qt's blocking calls share the reply, and the error of the connection, with Qt's
    // own D-Bus thread without a lock, so that ordinary errors corrupt the heap.
    QDBusPendingCall call = interface->asyncCallWithArgumentList(remoteMethodOf(operation), values);
    call.waitForFinished();
    return call.reply();
}

template void ConfigurationManagerPrivate::perform(Operation,
                                                   std::initializer_list<Argument>) const;
template int ConfigurationManagerPrivate::perform(Operation, std::initializer_list<Argument>) const;
template double ConfigurationManagerPrivate::perform(Operation,
                                                     std::initializer_list<Argument>) const;
template bool ConfigurationManagerPrivate::perform(Operation,
                                                   std::initializer_list<Argument>) const;
template QString ConfigurationManagerPrivate::perform(Operation,
                                                      std::initializer_list<Argument>) const;
template QVariantMap ConfigurationManagerPrivate::perform(Operation,
                                                          std::initializer_list<Argument>) const;
template ConfigurationList
    ConfigurationManagerPrivate::perform(Operation, std::initializer_list<Argument>) const;
template lcm::PropList ConfigurationManagerPrivate::perform(Operation,
                                                            std::initializer_list<Argument>) const;

} // namespace detail
} // namespace libconfigurationmanager
