// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_FAIRACCESS_H
#define LIBCONFIGURATIONMANAGER_FAIRACCESS_H

#include <QtCore/QMutex>
#include <QtCore/QQueue>
#include <QtCore/QSemaphore>

#include <atomic>

namespace libconfigurationmanager {
namespace detail {

/// Lets threads have a recursive mutex in the order in which they have asked for it.
///
/// QMutex alone gives it to whoever comes at the right moment: a thread that asks again at once
/// keeps the others waiting without bound.
class FairAccess
{
public:
    explicit FairAccess(QMutex &mutex) : m_mutex(mutex) {}

    void lock()
    {
        if (m_mutex.tryLock()) {
            // A thread that has the mutex already does not wait for those who wait for it.
            if (m_depth++ > 0 || m_waitingCount.load(std::memory_order_relaxed) == 0)
                return;
            unlock();
        }
        waitInLine();
    }

    void unlock()
    {
        --m_depth;
        m_mutex.unlock();
    }

    /// How many threads wait.
    int waitingCount() const { return m_waitingCount; }

private:
    void waitInLine();

    QMutex &m_mutex;
    int m_depth = 0; ///< how many times its owner has locked the mutex
    std::atomic<int> m_waitingCount{0};
    QMutex m_lineMutex;
    QQueue<QSemaphore *> m_line;
};

} // namespace detail
} // namespace libconfigurationmanager

#endif
