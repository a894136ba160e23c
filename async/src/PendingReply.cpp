// SPDX-License-Identifier: MIT

#include <libconfigurationmanager-async/PendingReply.h>

#include "CallInFlight.h"
#include "CallQueue.h"
#include "PendingCall_p.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusReply>

namespace libconfigurationmanager {

bool isAnybodyListening()
{
    return !detail::CallInFlight::isProcessEnding() && !detail::CallInFlight::isForked();
}

PendingCallPrivate::PendingCallPrivate(CallQueue *calls, int type)
    : m_queue(calls), m_type(type), m_pending(QDBusPendingCall::fromCompletedCall(QDBusMessage()))
{
}

PendingCallPrivate::~PendingCallPrivate() = default;

bool PendingCallPrivate::isFinished()
{
    if (isOnBus() && isAnswered())
        m_queue->settle(this);
    return isEnded();
}

void PendingCallPrivate::waitForFinished()
{
    while (m_phase == InQueue)
        m_queue->waitForOldest();
    if (!isOnBus())
        return;
    waitForAnswer();
    m_queue->settle(this);
}

void PendingCallPrivate::waitForAnswer()
{
    const detail::CallInFlight inFlight;
    if (isAnybodyListening())
        m_pending.waitForFinished();
}

void PendingCallPrivate::whenFinished(const QObject *context, std::function<void()> callback)
{
    const auto unlessClosed = [queue = m_queue, callback = std::move(callback)] {
        if (!queue->isClosed())
            callback();
    };
    if (isFinished()) {
        QMetaObject::invokeMethod(const_cast<QObject *>(context), unlessClosed,
                                  Qt::QueuedConnection);
        return;
    }
    if (!m_notifier)
        m_notifier = std::unique_ptr<PendingCallWatcher>(new PendingCallWatcher);
    // A connection, since it ends with the context, whichever thread that is in.
    QObject::connect(m_notifier.get(), &PendingCallWatcher::finished, context, unlessClosed,
                     Qt::QueuedConnection);
    if (isOnBus())
        watch();
}

void PendingCallPrivate::send(const QDBusPendingCall &pending)
{
    m_pending = pending;
    m_phase = OnBus;
    method.clear();
    arguments.clear();
    if (m_notifier)
        watch();
}

void PendingCallPrivate::watch()
{
    if (m_watcher)
        return;
    m_watcher = new QDBusPendingCallWatcher(m_pending);
    QObject::connect(m_watcher, &QDBusPendingCallWatcher::finished, m_watcher, [this] {
        // Not deleted while it emits its signal.
        std::exchange(m_watcher, nullptr)->deleteLater();
        m_queue->settle(this);
    });
}

void PendingCallPrivate::finishWithAnswer()
{
    if (!isAnswered()) {
        finishUnanswered();
        return;
    }
    const QDBusMessage reply = m_pending.reply();
    if (m_type == QMetaType::Void) {
        m_error = QDBusError(reply);
    } else {
        m_value = QVariant(m_type, nullptr);
        qDBusReplyFill(reply, m_error, m_value);
    }
    end();
}

void PendingCallPrivate::finishWithoutService()
{
    finish(QDBusError(QDBusError::ServiceUnknown, QString::fromLatin1(notConnectedText)));
}

void PendingCallPrivate::finishUnanswered()
{
    finish(
        QDBusError(QDBusError::Disconnected,
                   QLatin1String("A process that ends or is forked has no connection to the bus")));
}

void PendingCallPrivate::finish(const QDBusError &problem)
{
    m_error = problem;
    end();
}

void PendingCallPrivate::end()
{
    m_pending = QDBusPendingCall::fromCompletedCall(QDBusMessage());
    delete std::exchange(m_watcher, nullptr);
    m_phase.store(Ended, std::memory_order_release);
    if (const auto notifier = std::move(m_notifier))
        Q_EMIT notifier->finished();
}

PendingCall::PendingCall(PendingCallPrivate *call) : d(call) {}
PendingCall::PendingCall(const PendingCall &other) = default;
PendingCall &PendingCall::operator=(const PendingCall &other) = default;
PendingCall::~PendingCall() = default;

bool PendingCall::isFinished() const
{
    return d->isFinished();
}

void PendingCall::waitForFinished()
{
    d->waitForFinished();
}

bool PendingCall::isError() const
{
    return d->isFinished() && d->error().isValid();
}

QDBusError PendingCall::error() const
{
    return d->isFinished() ? d->error() : QDBusError();
}

QVariant PendingCall::result() const
{
    d->waitForFinished();
    return d->value();
}

void PendingCall::whenFinished(const QObject *context, std::function<void()> callback) const
{
    d->whenFinished(context, std::move(callback));
}

PendingCallWatcher::PendingCallWatcher(const PendingCall &call, QObject *parent) : QObject(parent)
{
    call.whenFinished(this, [this] { Q_EMIT finished(); });
}

PendingCallWatcher::PendingCallWatcher() = default;
PendingCallWatcher::~PendingCallWatcher() = default;

} // namespace libconfigurationmanager

#include "libconfigurationmanager-async/moc_PendingReply.cpp" // NOLINT(bugprone-suspicious-include)
