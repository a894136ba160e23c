// SPDX-License-Identifier: MIT

#include "LogCapture.h"
#include "RecordingService.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtTest/QTest>

#include <array>
#include <atomic>
#include <chrono>
#include <future>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

ConfigurationManager *callee = nullptr;
QStringList handledTexts;
std::future<QString> callOfAnother;
std::promise<void> mayLog;
std::atomic<bool> isLogging = false;
bool hasAnotherWaited = false;

/// Calls the service from within the log of the first error, while the call that failed is not
/// over.
void callAgain(QtMsgType, const QMessageLogContext &, const QString &text)
{
    handledTexts.append(text);
    if (handledTexts.size() == 1)
        handledTexts.append(callee->getModel());
}

/// Lets another thread call from within the log of an error, and looks whether it has to wait.
void letAnotherCall(QtMsgType, const QMessageLogContext &, const QString &)
{
    callOfAnother = std::async(std::launch::async, [] { return callee->getModel(); });
    hasAnotherWaited =
        callOfAnother.wait_for(std::chrono::milliseconds(200)) == std::future_status::timeout;
}

/// Keeps the call that has failed from being over.
void waitUntilItMayLog(QtMsgType, const QMessageLogContext &, const QString &)
{
    isLogging = true;
    mayLog.get_future().wait();
}

} // namespace

class TestThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_service.start();
        QTRY_VERIFY(m_manager.isConnected());
    }

    void cleanup()
    {
        m_service.kill();
        QTRY_VERIFY(!m_manager.isConnected());
    }

    void callsOfSeveralThreadsArriveOneAtATime()
    {
        constexpr int threadCount = 4;
        constexpr int callCount = 10;
        Answer late = Answer::value(true);
        late.delayInMilliseconds = 1;
        m_service.setAnswer(late);

        std::array<std::future<int>, threadCount> threads;
        for (int thread = 0; thread < threadCount; ++thread) {
            threads[thread] = std::async(std::launch::async, [this, thread] {
                int answered = 0;
                for (int call = 0; call < callCount; ++call)
                    answered += m_manager.setIntValue(QString::number(thread), call);
                return answered;
            });
        }
        for (std::future<int> &thread : threads)
            QCOMPARE(thread.get(), callCount);

        QCOMPARE(m_service.mostCallsInFlight(), 1);
        QVector<QVector<int>> arrived(threadCount);
        for (const RecordedCall &call : m_service.takeCalls())
            arrived[call.arguments.at(0).toInt()].append(call.arguments.at(1).toInt());
        for (const QVector<int> &values : qAsConst(arrived))
            QCOMPARE(values, (QVector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    }

    void aCallIsOverWhenItsErrorHasBeenLogged()
    {
        m_service.setAnswer(
            QStringLiteral("getTabSize"),
            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("refused")));
        m_service.setAnswer(QStringLiteral("getModel"), Answer::value(QStringLiteral("model")));
        callee = &m_manager;
        const QtMessageHandler previous = qInstallMessageHandler(letAnotherCall);
        m_manager.getTabSize();
        qInstallMessageHandler(previous);
        QCOMPARE(callOfAnother.get(), QStringLiteral("model"));
        QVERIFY(hasAnotherWaited);
    }

    void theCollectionIdIsThatOfTheMomentOfSending()
    {
        m_service.setAnswer(
            QStringLiteral("getTabSize"),
            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("refused")));
        m_service.setAnswer(QStringLiteral("getModel"), Answer::value(QStringLiteral("model")));
        const QtMessageHandler previous = qInstallMessageHandler(waitUntilItMayLog);
        auto first = std::async(std::launch::async, [this] { return m_manager.getTabSize(); });
        QTRY_VERIFY(isLogging);
        auto second = std::async(std::launch::async, [this] { return m_manager.getModel(); });
        // Until it waits for the first; if it does not yet, nothing wrong is seen.
        QTest::qWait(100);
        m_manager.setCatalogsCollectionId(QStringLiteral("new"));
        mayLog.set_value();
        QCOMPARE(first.get(), 0);
        QCOMPARE(second.get(), QStringLiteral("model"));
        qInstallMessageHandler(previous);
        m_manager.setCatalogsCollectionId(QStringLiteral("masterCollectionKey"));
        QCOMPARE(m_service.takeCalls().last().arguments, QVariantList{QStringLiteral("new")});
    }

    void twoFacadesDoNotWaitForEachOther()
    {
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::silence());
        m_service.setAnswer(QStringLiteral("getModel"), Answer::value(QStringLiteral("model")));
        ConfigurationManager other(nullptr);
        LogCapture log;
        std::future<int> stuck = startCall(other);
        QCOMPARE(m_manager.getModel(), QStringLiteral("model"));
        QVERIFY(isWaiting(stuck));
        m_service.kill();
        QCOMPARE(stuck.get(), 0);
    }

    void whatIsNoOperationDoesNotWaitForACall()
    {
        m_service.setAnswer(Answer::silence());
        LogCapture log;
        std::future<int> stuck = startCall(m_manager);

        m_manager.setCatalogsCollectionId(QStringLiteral("other"));
        m_manager.setCheckConnection(false);
        m_manager.setCheckConnection(true);
        QVERIFY(m_manager.isConnected());
        QVERIFY(isWaiting(stuck));

        m_service.kill();
        QCOMPARE(stuck.get(), 0);
        QCOMPARE(log.takeLines().size(), 1);
    }

    void anAbsentServiceIsNoticedWithoutWaitingForACall()
    {
        m_service.setAnswer(Answer::silence());
        LogCapture log;
        std::future<int> stuck = startCall(m_manager);
        m_service.leaveTheBus();
        QTRY_VERIFY(!m_manager.isConnected());

        QCOMPARE(m_manager.getTabSize(), 0);
        QCOMPARE(log.takeLines().size(), 1);
        QVERIFY(isWaiting(stuck));
        m_service.kill();
        QCOMPARE(stuck.get(), 0);
    }

    void anotherThreadMayAskForTheConnection()
    {
        QVERIFY(std::async(std::launch::async, [this] { return m_manager.isConnected(); }).get());
        m_service.kill();
        QTRY_VERIFY(!m_manager.isConnected());
        QVERIFY(!std::async(std::launch::async, [this] { return m_manager.isConnected(); }).get());
    }

    void aLogHandlerMayCallTheServiceDuringACall()
    {
        m_service.setAnswer(
            QStringLiteral("getTabSize"),
            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("refused")));
        m_service.setAnswer(QStringLiteral("getModel"), Answer::value(QStringLiteral("model")));
        callee = &m_manager;
        const QtMessageHandler previous = qInstallMessageHandler(callAgain);
        const int tabSize = m_manager.getTabSize();
        qInstallMessageHandler(previous);
        QCOMPARE(tabSize, 0);
        QCOMPARE(handledTexts,
                 (QStringList{QStringLiteral("\"refused\""), QStringLiteral("model")}));
    }

private:
    /// Calls in another thread; returns when the call has arrived.
    std::future<int> startCall(const ConfigurationManager &manager)
    {
        std::future<int> call =
            std::async(std::launch::async, [&manager] { return manager.getTabSize(); });
        if (!QTest::qWaitFor([this] { return !m_service.takeCalls().isEmpty(); }))
            qFatal("the call has not arrived");
        return call;
    }

    static bool isWaiting(const std::future<int> &call)
    {
        return call.wait_for(std::chrono::seconds(0)) == std::future_status::timeout;
    }

    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
    ConfigurationManager m_manager{nullptr};
};

QTEST_GUILESS_MAIN(TestThreads)
#include "tst_threads.moc"
