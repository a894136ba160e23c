// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_ASYNC_CALLQUEUE_H
#define LIBCONFIGURATIONMANAGER_ASYNC_CALLQUEUE_H

#include "PendingCall_p.h"

#include <QtCore/QList>
#include <QtCore/QSharedData>

#include <atomic>

class QDBusAbstractInterface;

namespace libtavelorn {
class DBusService;
}

namespace libconfigurationmanager {

/// The calls that have not ended, in the order in which they were made.
///
/// What ends here calls nobody back at once: that is left to an event loop.
class CallQueue : public QSharedData
{
public:
    /// Makes its calls by the proxy, of the service.
    CallQueue(const libtavelorn::DBusService *service, QDBusAbstractInterface *proxy);

    /// Sends the call, or has it wait until there is room on the bus.
    void add(PendingCallPrivate *call);

    /// Ends a call on the bus whose answer is there, after those before it that are answered too,
    /// and fills their places.
    void settle(PendingCallPrivate *call);

    /// Waits for the answer of the call that is on the bus longest.
    void waitForOldest();

    void setMaximumOnBus(int count);
    int maximumOnBus() const { return m_maximumOnBus; }

    /// Ends the calls that wait for room on the bus.
    void serviceHasLeft();

    /// Ends all calls, and lets nobody be called back any more.
    void close();
    bool isClosed() const { return m_closed; }

private:
    using Call = QExplicitlySharedDataPointer<PendingCallPrivate>;

    bool isServiceAbsent() const;
    void put(const Call &call);
    void finishAnsweredBefore(const Call &call);
    void fill();
    bool hasRoom();
    void watchFromEventLoop();

    const libtavelorn::DBusService *const m_service;
    QDBusAbstractInterface *const m_proxy;
    int m_maximumOnBus = 64;
    QList<Call> m_onBus;
    QList<Call> m_waiting;
    bool m_isAboutToWatch = false;
    std::atomic<bool> m_closed{false};
};

} // namespace libconfigurationmanager

#endif
