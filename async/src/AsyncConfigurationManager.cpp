// SPDX-License-Identifier: MIT

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include "AsyncConfigurationManager_p.h"
#include "CallInFlight.h"
#include "Marshallable.h"
#include "ServiceAddress.h"
#include "WireTypes.h"

#include <libtavelorn/DBusService.h>

#include <QtDBus/QDBusConnection>

#include <algorithm>
#include <limits>
#include <pthread.h>

namespace libconfigurationmanager {

using libtavelorn::DBusService;

AsyncConfigurationManagerPrivate::AsyncConfigurationManagerPrivate(DBusService *watched,
                                                                   CallQueue *calls)
    : service(watched), queue(calls), collectionId(detail::defaultCollectionId)
{
}

namespace {

/// With any other name, libdbus ends the process.
bool isMethodName(const QString &name)
{
    constexpr int longest = 255;
    const auto allowed = std::count_if(name.begin(), name.end(), [](QChar c) {
        return c == QLatin1Char('_') || (c.unicode() < 128 && c.isLetterOrNumber());
    });
    return allowed > 0 && allowed == name.size() && allowed <= longest && !name.at(0).isDigit();
}

} // namespace

QExplicitlySharedDataPointer<PendingCallPrivate>
AsyncConfigurationManagerPrivate::call(const QString &method, const QVariantList &arguments,
                                       int resultType, const char *notConnectedText,
                                       bool isInQuestion) const
{
    const QExplicitlySharedDataPointer<PendingCallPrivate> call(
        new PendingCallPrivate(queue.data(), resultType));
    call->method = method;
    call->arguments = arguments;
    call->timeout = timeout;
    call->notConnectedText = notConnectedText;
    QString problem;
    if (isInQuestion) {
        problem = isMethodName(method) ? detail::marshallingProblem(call->arguments)
                                       : QLatin1String("no method can have this name");
    }
    if (problem.isEmpty())
        queue->add(call.data());
    else
        call->finish(QDBusError(QDBusError::InvalidArgs, problem));
    return call;
}

void AsyncConfigurationManagerPrivate::relay(AsyncConfigurationManager *manager,
                                             void (AsyncConfigurationManager::*signal)())
{
    // A slot may destroy the manager.
    const QExplicitlySharedDataPointer<AsyncConfigurationManagerPrivate> alive(this);
    isRelaying = true;
    Q_EMIT(manager->*signal)();
    isRelaying = false;
}

namespace {

/// The system bus, asked for by another thread than the application's, if nobody has yet.
///
/// For the application's, Qt holds back what the bus sends until the event loop runs. The name that
/// the bus has given to the connection is then noted, without a lock, while calls are made that
/// look it up: now and then such a call would crash.
QDBusConnection systemBus()
{
    // std::thread would cost more than the class may be large.
    pthread_t thread;
    const auto ask = [](void *) -> void * {
        QDBusConnection::systemBus();
        return nullptr;
    };
    if (pthread_create(&thread, nullptr, ask, nullptr) == 0)
        pthread_join(thread, nullptr);
    return QDBusConnection::systemBus();
}

AsyncConfigurationManagerPrivate *privateOf(AsyncConfigurationManager *manager)
{
    auto *service = new DBusService(systemBus(), detail::serviceName, manager);
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
    connect(d->service, &DBusService::connected, this,
            [this] { d->relay(this, &AsyncConfigurationManager::connected); });
    connect(d->service, &DBusService::disconnected, this, [this] {
        d->queue->serviceHasLeft();
        d->relay(this, &AsyncConfigurationManager::disconnected);
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

QString AsyncConfigurationManager::catalogsCollectionId() const
{
    return d->collectionId;
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

PendingCall AsyncConfigurationManager::sendMethod(const QString &name,
                                                  const QVariantList &arguments,
                                                  int resultType) const
{
    return PendingCall(d->call(name, arguments, resultType, "Not connected.", true).data());
}

PendingCall AsyncConfigurationManager::send(const char *method, int traits, int resultType,
                                            std::initializer_list<Argument> arguments) const
{
    QVariantList values;
    values.reserve(int(arguments.size()) + 1);
    bool areInQuestion = detail::isLong(d->collectionId);
    for (const Argument &argument : arguments) {
        values.append(QVariant(argument.type, argument.value));
        areInQuestion |= detail::isInQuestion(argument.type, argument.value);
    }
    if (traits & SendsCollectionId)
        values.insert(values.size() - ((traits & EndsInFlag) ? 1 : 0), d->collectionId);
    const char *const notConnectedText =
        traits & SaysNotConnectedWithCapital ? "Not Connected." : "Not connected.";
    return PendingCall(
        d->call(QLatin1String(method), values, resultType, notConnectedText, areInQuestion).data());
}

} // namespace libconfigurationmanager

#include "libconfigurationmanager-async/moc_AsyncConfigurationManager.cpp" // NOLINT(bugprone-suspicious-include)
