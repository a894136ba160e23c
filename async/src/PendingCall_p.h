// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_ASYNC_PENDINGCALL_P_H
#define LIBCONFIGURATIONMANAGER_ASYNC_PENDINGCALL_P_H

#include <libconfigurationmanager-async/PendingReply.h>

#include <QtCore/QSharedData>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusPendingCall>

#include <atomic>
#include <functional>
#include <memory>

namespace libconfigurationmanager {

class CallQueue;

/// Whether there is still somebody who reads from the bus: not in a process that is ending, nor in
/// one that is forked. Asked by whoever holds a CallInFlight.
bool isAnybodyListening();

/// One call on its way: from the queue onto the bus, and from there to its end.
class PendingCallPrivate : public QSharedData
{
public:
    PendingCallPrivate(CallQueue *calls, int type);
    ~PendingCallPrivate();

    /// Whether the call has ended; takes an answer in that has arrived.
    bool isFinished();
    void waitForFinished();
    void whenFinished(const QObject *context, std::function<void()> callback);

    /// On the bus from now on.
    void send(const QDBusPendingCall &pending);
    bool isOnBus() const { return m_phase == OnBus; }
    bool isAnswered() const { return m_pending.isFinished(); }
    void waitForAnswer();

    /// Has the event loop settle the call when the answer arrives.
    void watch();

    /// The end of a call on the bus.
    void finishWithAnswer();
    /// The end of a call that is not sent, with the operation's own text.
    void finishWithoutService();
    /// The end of a call to which nobody will hear an answer.
    void finishUnanswered();
    /// The end of any call.
    void finish(const QDBusError &problem);

    QDBusError error() const { return isEnded() ? m_error : QDBusError(); }
    QVariant value() const { return m_value; }

    // What is sent, until it has been.
    QString method;
    QVariantList arguments;
    int timeout = -1;
    const char *notConnectedText = nullptr;

private:
    enum Phase {
        InQueue,
        OnBus,
        Ended
    };

    /// Other threads may ask, and then read error and value.
    bool isEnded() const { return m_phase.load(std::memory_order_acquire) == Ended; }
    void end();

    const QExplicitlySharedDataPointer<CallQueue> m_queue;
    std::atomic<Phase> m_phase{InQueue};
    const int m_type;
    QDBusPendingCall m_pending;
    QDBusError m_error;
    QVariant m_value;
    QDBusPendingCallWatcher *m_watcher = nullptr;
    /// Tells those who want to be called back; exists only if there are any.
    std::unique_ptr<PendingCallWatcher> m_notifier;
};

} // namespace libconfigurationmanager

#endif
