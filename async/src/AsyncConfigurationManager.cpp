// SPDX-License-Identifier: MIT

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include "AsyncConfigurationManager_p.h"
#include "CallInFlight.h"
#include "Marshallable.h"
#include "ServiceAddress.h"
#include "WireTypes.h"

#include <libtavelorn/DBusService.h>

#include <QtDBus/QDBusConnection>

#include <limits>

namespace libconfigurationmanager {

using libtavelorn::DBusService;

AsyncConfigurationManagerPrivate::AsyncConfigurationManagerPrivate(DBusService *watched,
                                                                   CallQueue *calls)
    : service(watched), queue(calls), collectionId(detail::defaultCollectionId)
{
}

namespace {

AsyncConfigurationManagerPrivate *privateOf(AsyncConfigurationManager *manager)
{
    auto *service = new DBusService(QDBusConnection::systemBus(), detail::serviceName, manager);
    auto *queue =
        new CallQueue(service, service->interface(detail::objectPath, detail::serviceName));
    return new AsyncConfigurationManagerPrivate(service, queue);
}

} // namespace

AsyncConfigurationManager::AsyncConfigurationManager(QObject *parent)
    : QObject(parent), d(privateOf(this))
{
    detail::CallInFlight::awaitAllAtExit();
    detail::registerWireTypes();
    const auto relay = [this](void (AsyncConfigurationManager::*signal)()) {
        // A slot may destroy this object.
        const auto alive = d;
        alive->isRelaying = true;
        Q_EMIT(this->*signal)();
        alive->isRelaying = false;
    };
    connect(d->service, &DBusService::connected, this,
            [relay] { relay(&AsyncConfigurationManager::connected); });
    connect(d->service, &DBusService::disconnected, this, [this, relay] {
        d->queue->serviceHasLeft();
        relay(&AsyncConfigurationManager::disconnected);
    });
}

AsyncConfigurationManager::~AsyncConfigurationManager()
{
    d->queue->close();
    if (d->isRelaying) {
        // The service is still emitting its signal.
        d->service->setParent(nullptr);
        d->service->deleteLater();
    }
}

bool AsyncConfigurationManager::isConnected() const
{
    return d->service->isConnected();
}

void AsyncConfigurationManager::setCatalogsCollectionId(const QString &id)
{
    d->collectionId = id;
}

void AsyncConfigurationManager::setTimeoutInMilliseconds(qint64 timeout)
{
    // The greatest number is D-Bus's for no time-out.
    d->timeout = int(qBound<qint64>(1, timeout, std::numeric_limits<int>::max()));
}

void AsyncConfigurationManager::setMaximumInFlight(int count)
{
    d->queue->setMaximumOnBus(count);
}

int AsyncConfigurationManager::maximumInFlight() const
{
    return d->queue->maximumOnBus();
}

PendingCall AsyncConfigurationManager::send(const char *method, int traits, int resultType,
                                            std::initializer_list<Argument> arguments) const
{
    auto *const call = new PendingCallPrivate(d->queue.data(), resultType);
    PendingCall pending(call);
    call->method = QLatin1String(method);
    call->timeout = d->timeout;
    call->notConnectedText =
        traits & SaysNotConnectedWithCapital ? "Not Connected." : "Not connected.";
    QVariantList &values = call->arguments;
    values.reserve(int(arguments.size()) + 1);
    bool areInQuestion = detail::isLong(d->collectionId);
    for (const Argument &argument : arguments) {
        values.append(QVariant(argument.type, argument.value));
        areInQuestion |= detail::isInQuestion(argument.type, argument.value);
    }
    if (traits & SendsCollectionId)
        values.insert(values.size() - ((traits & EndsInFlag) ? 1 : 0), d->collectionId);

    const QString problem = areInQuestion ? detail::marshallingProblem(values) : QString();
    if (problem.isEmpty())
        d->queue->add(call);
    else
        call->finish(QDBusError(QDBusError::InvalidArgs, problem));
    return pending;
}

} // namespace libconfigurationmanager

#include "libconfigurationmanager-async/moc_AsyncConfigurationManager.cpp" // NOLINT(bugprone-suspicious-include)
