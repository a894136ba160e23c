// SPDX-License-Identifier: MIT

#include "ConfigurationManager_p.h"

#include "CallInFlight.h"

#include <libtavelorn/DBusService.h>

#include <QtCore/QDebug>
#include <QtCore/QLoggingCategory>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusReply>

#include <mutex>

namespace libconfigurationmanager {
namespace detail {

namespace {

const QLoggingCategory category("libconfigurationmanager.ConfigurationManager", QtCriticalMsg);

/// The private method as the compiler names it in __PRETTY_FUNCTION__.
QByteArray functionOf(Operation operation)
{
    const QMetaMethod method = operation.metaMethod();
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
    if (CallInFlight::isProcessEnding() || !category.isCriticalEnabled())
        return;
    // Lives as long as the message handler runs, and no longer.
    const QByteArray function = functionOf(operation);
    QMessageLogger(sourceFile, operation.line(), function, category.categoryName()).critical()
        << (operation.has(SaysNotConnectedWithCapital) ? "Not Connected." : "Not connected.");
}

void logError(Operation operation, const QString &message)
{
    const CallInFlight::Logging logging;
    const QByteArray function = functionOf(operation);
    QMessageLogger(sourceFile, operation.line(), function, "default").critical() << message;
}

/// The value of the reply, or, when the reply is an error or has another type, the default.
template<typename Result>
Result resultOf(const QDBusMessage &message, Operation operation)
{
    const QDBusReply<Result> reply(message);
    if (!reply.isValid()) {
        logError(operation, reply.error().message());
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

/// Whether there is somebody to call; if not, says so. Before the lock, which is not to be waited
/// for then, and which a thread of the parent may hold in the child of a fork.
bool ConfigurationManagerPrivate::mayCall(Operation operation) const
{
    const bool connected = isConnected();
    if (connected && !CallInFlight::isForked())
        return true;
    if (connected)
        logError(operation,
                 QStringLiteral("A process that is forked has no connection to the bus"));
    else
        logNotConnected(operation);
    return false;
}

/// The call convention of all operations.
template<typename Result>
Result ConfigurationManagerPrivate::perform(Operation operation,
                                            std::initializer_list<Argument> arguments) const
{
    if (!mayCall(operation))
        return Result();
    const CallInFlight inFlight;
    const std::lock_guard<FairAccess> locker(access);
    if (CallInFlight::isProcessEnding())
        return Result();
    return resultOf<Result>(send(operation, arguments), operation);
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
