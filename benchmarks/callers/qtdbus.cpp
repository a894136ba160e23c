// SPDX-License-Identifier: MIT

#include "Callers.h"

#include <GeneratedProxy.h>
#include <libconfigurationmanager/ConfigurationManager.h>
#include <libtavelorn/DBusService.h>

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusInterface>

#include <map>
#include <memory>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

const QString serviceName = QString::fromLatin1(service);
const QString root = QString::fromLatin1(objectPath);

/// Made anew for each call, as a program does.
QVariantList argumentsOf(const Call &call)
{
    QVariantList arguments = call.qtArguments;
    arguments.detach();
    return arguments;
}

QDBusMessage messageOf(const Call &call)
{
    return QDBusMessage::createMethodCall(serviceName, root, serviceName, call.method);
}

QGenericArgument parameter(const Call &call, int index)
{
    if (index >= call.parameters.size())
        return {};
    const QVariant &value = call.parameters.at(index);
    return {value.typeName(), value.constData()};
}

Caller callerThrough(QDBusAbstractInterface *interface)
{
    return [interface](const Call &call) {
        return call.readReply(
            interface->callWithArgumentList(QDBus::AutoDetect, call.method, argumentsOf(call)));
    };
}

} // namespace

Caller connectLibrary()
{
    return [manager = std::make_shared<ConfigurationManager>()](const Call &call) {
        return call.operation(*manager);
    };
}

Caller connectLibraryByName()
{
    return [manager = std::make_shared<ConfigurationManager>()](const Call &call) {
        QVariant result;
        QGenericReturnArgument returned;
        if (call.resultType != QMetaType::Void) {
            result = QVariant(call.resultType, nullptr);
            returned = QGenericReturnArgument(call.resultTypeName, result.data());
        }
        return QMetaObject::invokeMethod(
            manager.get(), call.method.toLatin1().constData(), Qt::DirectConnection, returned,
            parameter(call, 0), parameter(call, 1), parameter(call, 2), parameter(call, 3),
            parameter(call, 4), parameter(call, 5), parameter(call, 6), parameter(call, 7));
    };
}

Caller connectQDBusConnection()
{
    return [bus = QDBusConnection::systemBus()](const Call &call) {
        QDBusMessage message = messageOf(call);
        message.setArguments(argumentsOf(call));
        return call.readReply(bus.call(message));
    };
}

Caller connectQDBusConnectionWithKeptMessages()
{
    return [bus = QDBusConnection::systemBus(),
            messages = std::map<const Call *, QDBusMessage>()](const Call &call) mutable {
        auto kept = messages.find(&call);
        if (kept == messages.end())
            kept = messages.emplace(&call, messageOf(call)).first;
        kept->second.setArguments(argumentsOf(call));
        return call.readReply(bus.call(kept->second));
    };
}

Caller connectQDBusAbstractInterface()
{
    static libtavelorn::DBusService watched(QDBusConnection::systemBus(), serviceName, nullptr);
    return callerThrough(watched.interface(root, serviceName));
}

Caller connectQDBusInterface()
{
    static QDBusInterface interface(serviceName, root, serviceName, QDBusConnection::systemBus());
    return callerThrough(&interface);
}

Caller connectGeneratedProxy()
{
    return
        [proxy = std::make_shared<GeneratedProxy>(serviceName, root, QDBusConnection::systemBus())](
            const Call &call) { return call.generatedMethod(*proxy); };
}
