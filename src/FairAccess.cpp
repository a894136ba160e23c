// SPDX-License-Identifier: MIT

#include "FairAccess.h"

#include <QtCore/QMutexLocker>

namespace libconfigurationmanager {
namespace detail {

// The first one in the line is the only one that waits for the mutex itself.
void FairAccess::waitInLine()
{
    QSemaphore turn;
    {
        const QMutexLocker locker(&m_lineMutex);
        if (m_line.isEmpty())
            turn.release();
        m_line.enqueue(&turn);
        m_waitingCount = m_line.size();
    }
    turn.acquire();
    m_mutex.lock();
    ++m_depth;

    const QMutexLocker locker(&m_lineMutex);
    m_line.dequeue();
    m_waitingCount = m_line.size();
    if (!m_line.isEmpty())
        m_line.head()->release();
}

} // namespace detail
} // namespace libconfigurationmanager
