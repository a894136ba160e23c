// SPDX-License-Identifier: MIT

#include "CallQueue.h"

#include "CallInFlight.h"

#include <libtavelorn/DBusService.h>

#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <utility>

namespace libconfigurationmanager {

CallQueue::CallQueue(const libtavelorn::DBusService *service, QDBusAbstractInterface *proxy)
    : m_service(service), m_proxy(proxy)
{
}

void CallQueue::add(PendingCallPrivate *call)
{
    // Nothing is asked of Qt any more when it is being destroyed.
    const detail::CallInFlight inFlight;
    if (!isAnybodyListening()) {
        call->finishUnanswered();
        return;
    }
    if (isServiceAbsent()) {
        call->finishWithoutService();
        return;
    }
    if (m_waiting.isEmpty() && hasRoom()) {
        put(Call(call));
        return;
    }
    m_waiting.append(Call(call));
    fill();
    watchFromEventLoop();
}

/// Without a bus a call is tried all the same: that is another error.
bool CallQueue::isServiceAbsent() const
{
    return !m_service->isConnected() && m_proxy->connection().isConnected();
}

void CallQueue::put(const Call &call)
{
    const detail::CallInFlight inFlight;
    if (!isAnybodyListening()) {
        call->finishUnanswered();
        return;
    }
    m_proxy->setTimeout(call->timeout);
    call->send(m_proxy->asyncCallWithArgumentList(call->method, call->arguments));
    // Without a bus, when Qt tells nobody of the answer; or on a machine that has other work.
    if (call->isAnswered()) {
        finishAnsweredBefore(call);
        call->finishWithAnswer();
        return;
    }
    m_onBus.append(call);
    watchFromEventLoop();
}

/// While calls wait, each answer makes room for another one, whether or not somebody asks for it.
/// Without an event loop there is nobody to tell, nor the cost of it.
void CallQueue::watchFromEventLoop()
{
    if (m_waiting.isEmpty() || std::exchange(m_isAboutToWatch, true))
        return;
    QMetaObject::invokeMethod(
        m_proxy,
        [queue = QExplicitlySharedDataPointer<CallQueue>(this)] {
            queue->m_isAboutToWatch = false;
            if (queue->m_waiting.isEmpty())
                return;
            for (const Call &call : qAsConst(queue->m_onBus))
                call->watch();
        },
        Qt::QueuedConnection);
}

/// Takes in what has been answered, from the oldest call on, if that is what it takes.
bool CallQueue::hasRoom()
{
    if (m_onBus.size() < m_maximumOnBus)
        return true;
    while (!m_onBus.isEmpty() && m_onBus.constFirst()->isAnswered())
        m_onBus.takeFirst()->finishWithAnswer();
    return m_onBus.size() < m_maximumOnBus;
}

void CallQueue::fill()
{
    while (!m_waiting.isEmpty() && hasRoom())
        put(m_waiting.takeFirst());
}

/// Those whose answers wait for the event loop call back before a later one.
void CallQueue::finishAnsweredBefore(const Call &call)
{
    for (int i = 0; i < m_onBus.size() && m_onBus.at(i) != call;) {
        if (m_onBus.at(i)->isAnswered())
            m_onBus.takeAt(i)->finishWithAnswer();
        else
            ++i;
    }
}

void CallQueue::settle(PendingCallPrivate *call)
{
    const Call last(call);
    finishAnsweredBefore(last);
    m_onBus.removeOne(last);
    call->finishWithAnswer();
    fill();
}

void CallQueue::waitForOldest()
{
    const Call oldest = m_onBus.constFirst();
    oldest->waitForAnswer();
    settle(oldest.data());
}

void CallQueue::setMaximumOnBus(int count)
{
    m_maximumOnBus = qMax(count, 1);
    fill();
}

void CallQueue::serviceHasLeft()
{
    const QList<Call> calls = std::exchange(m_waiting, {});
    for (const Call &call : calls)
        call->finishWithoutService();
}

void CallQueue::close()
{
    m_closed = true;
    const QDBusError cancelled(QDBusMessage::createError(
        QLatin1String("libconfigurationmanager.Error.Cancelled"),
        QLatin1String("The calls were given up before the answer arrived.")));
    for (QList<Call> *list : {&m_onBus, &m_waiting}) {
        const QList<Call> calls = std::exchange(*list, {});
        for (const Call &call : calls) {
            if (call->isOnBus() && call->isAnswered())
                call->finishWithAnswer();
            else
                call->finish(cancelled);
        }
    }
}

} // namespace libconfigurationmanager
