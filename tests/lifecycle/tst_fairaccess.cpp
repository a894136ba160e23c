// SPDX-License-Identifier: MIT

#include "FairAccess.h"

#include <QtTest/QTest>

#include <future>
#include <mutex>
#include <vector>

using libconfigurationmanager::detail::FairAccess;

class TestFairAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void threadsGetTheMutexInTheirOrder()
    {
        constexpr int threadCount = 8;
        std::vector<int> order;
        std::vector<std::future<void>> threads;
        m_access.lock();
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.push_back(std::async(std::launch::async, [this, thread, &order] {
                const std::lock_guard<FairAccess> locker(m_access);
                order.push_back(thread);
            }));
            QTRY_COMPARE(m_access.waitingCount(), thread + 1);
        }
        m_access.unlock();
        // It asks again at once, and comes last nevertheless.
        m_access.lock();
        QCOMPARE(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
        m_access.unlock();
        QCOMPARE(m_access.waitingCount(), 0);
    }

    void aThreadMayLockItAgainWhileOthersWait()
    {
        m_access.lock();
        auto other = std::async(std::launch::async,
                                [this] { const std::lock_guard<FairAccess> locker(m_access); });
        QTRY_COMPARE(m_access.waitingCount(), 1);
        m_access.lock();
        m_access.unlock();
        QCOMPARE(m_access.waitingCount(), 1);
        QVERIFY(!mutexIsFree());
        m_access.unlock();
        other.get();
        QVERIFY(mutexIsFree());
    }

private:
    bool mutexIsFree()
    {
        return std::async(std::launch::async,
                          [this] {
                              const bool isFree = m_mutex.tryLock();
                              if (isFree)
                                  m_mutex.unlock();
                              return isFree;
                          })
            .get();
    }

    QMutex m_mutex{QMutex::Recursive};
    FairAccess m_access{m_mutex};
};

QTEST_APPLESS_MAIN(TestFairAccess)
#include "tst_fairaccess.moc"
