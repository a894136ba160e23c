// SPDX-License-Identifier: MIT

#include "AsyncTypedCalls.h"
#include "RecordingService.h"
#include "ServiceName.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>
#include <QtTest/QTest>

namespace {

constexpr int manyCalls = 10000;

} // namespace

/// Any number of calls may be made; few of them are on the bus at a time.
class TestAsyncQueue : public QObject
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
        m_manager.setMaximumInFlight(64);
    }

    // What the queue is there for. dbus-broker counts what a user has, and a session bus allows
    // more.
    void aSystemBusRefusesTooManyCalls()
    {
        const bool isRefused = qEnvironmentVariable("TEST_BUS") == QStringLiteral("dbus-daemon");
        m_service.setAnswer(Answer::silence());
        const QDBusMessage call = QDBusMessage::createMethodCall(
            serviceName, QStringLiteral("/"), serviceName, QStringLiteral("getTabSize"));
        const QDBusConnection bus = m_bus.connect(QStringLiteral("too many"));
        QVector<QDBusPendingReply<int>> replies;
        for (int i = 0; i < 129; ++i)
            replies << bus.asyncCall(call);
        int arrived = 0;
        QTRY_COMPARE(arrived += m_service.takeCalls().size(), isRefused ? 128 : 129);
        QTRY_COMPARE(replies.constLast().isFinished(), isRefused);
        if (isRefused)
            QCOMPARE(replies.constLast().error().type(), QDBusError::LimitsExceeded);
        QVERIFY(!replies.constFirst().isFinished());
    }

    void tenThousandCallsSucceedWithoutAnEventLoop()
    {
        m_service.setAnswer(Answer::value(8));
        QVector<PendingReply<int>> replies;
        for (int i = 0; i < manyCalls; ++i)
            replies << m_manager.getCounter(i);
        for (int i = 0; i < manyCalls; ++i) {
            QCOMPARE(replies.at(i).value(), 8);
            QVERIFY(!replies.at(i).isError());
        }
        compareOrder();
    }

    void tenThousandCallsSucceedByTheEventLoop()
    {
        m_service.setAnswer(Answer::value(8));
        QVector<PendingReply<int>> replies;
        for (int i = 0; i < manyCalls; ++i)
            replies << m_manager.getCounter(i);
        // Nobody asks for the last one: it is sent all the same.
        QVector<RecordedCall> calls;
        QVERIFY(QTest::qWaitFor(
            [&calls, this] {
                calls += m_service.takeCalls();
                return calls.size() == manyCalls;
            },
            60000));
        for (int i = 0; i < manyCalls; ++i)
            QCOMPARE(calls.at(i).arguments.constFirst().toInt(), i);
        QCOMPARE(replies.constLast().value(), 8);
    }

    void tenThousandCallsThatNobodyKeepsSucceed()
    {
        for (int i = 0; i < manyCalls; ++i)
            m_manager.setCounter(i);
        m_manager.clearLog().waitForFinished();
        QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), manyCalls + 1);
        QCOMPARE(calls.takeLast().member, QStringLiteral("clearLog"));
        for (int i = 0; i < manyCalls; ++i)
            QCOMPARE(calls.at(i).arguments.constFirst().toInt(), i);
    }

    void allOperationsArriveInTheOrderOfTheirCalls()
    {
        QVector<AnyReply> replies;
        QStringList made;
        for (const AsyncTypedCall &call : asyncTypedCalls()) {
            made << QString::fromLatin1(call.signature).section(QLatin1Char('('), 0, 0);
            replies << call.call(m_manager, In(0));
        }
        replies.last().waitForFinished();
        QStringList arrived;
        for (const RecordedCall &call : m_service.takeCalls())
            arrived << call.member;
        QCOMPARE(arrived.size(), made.size());
        for (int i = 0; i < made.size(); ++i) {
            // Some have another name on the wire.
            if (arrived.at(i) != made.at(i) && !made.at(i).contains(QStringLiteral("Paper")))
                QVERIFY2(arrived.at(i) == made.at(i) + QStringLiteral("ForPaper"),
                         qPrintable(made.at(i)));
        }
    }

    void noMoreThanTheMaximumAreOnTheBus_data()
    {
        QTest::addColumn<int>("maximum");
        for (const int maximum : {1, 2, 8, 64, 100})
            QTest::addRow("%d", maximum) << maximum;
    }

    void noMoreThanTheMaximumAreOnTheBus()
    {
        QFETCH(const int, maximum);
        Answer late = Answer::value(8);
        late.delayInMilliseconds = 20;
        m_service.setAnswer(late);
        m_manager.setMaximumInFlight(maximum);
        QCOMPARE(m_manager.maximumInFlight(), maximum);
        QVector<PendingReply<int>> replies;
        for (int i = 0; i < 3 * maximum; ++i)
            replies << m_manager.getTabSize();
        QTRY_VERIFY(replies.constLast().isFinished());
        QVERIFY(m_service.mostCallsInFlight() <= maximum);

        // That many are, when none is answered.
        m_service.takeCalls();
        m_service.setAnswer(Answer::silence());
        for (int i = 0; i < 3 * maximum; ++i)
            m_manager.getTabSize();
        QCOMPARE(takeCallsAfterABarrier().size(), maximum);
    }

    void theMaximumIsAtLeastOne()
    {
        m_manager.setMaximumInFlight(0);
        QCOMPARE(m_manager.maximumInFlight(), 1);
    }

    void aRaisedMaximumSendsWhatWaits()
    {
        m_service.setAnswer(Answer::silence());
        m_manager.setMaximumInFlight(1);
        for (int i = 0; i < 5; ++i)
            m_manager.getTabSize();
        QCOMPARE(takeCallsAfterABarrier().size(), 1);
        m_manager.setMaximumInFlight(3);
        QCOMPARE(takeCallsAfterABarrier().size(), 2);
    }

    void aCallWithoutAnswerHoldsUpNoOther()
    {
        m_service.setAnswer(Answer::value(8));
        m_service.setAnswer(QStringLiteral("getModel"), Answer::silence());
        const PendingReply<QString> silent = m_manager.getModel();
        QVector<PendingReply<int>> replies;
        for (int i = 0; i < 500; ++i)
            replies << m_manager.getTabSize();
        QTRY_VERIFY(replies.constLast().isFinished());
        QCOMPARE(replies.constLast().value(), 8);
        QVERIFY(!silent.isFinished());
    }

    void aCallInTheQueueKeepsTheCollectionIdAndTheTimeOutOfItsTime()
    {
        m_service.setAnswer(Answer::silence());
        m_service.setAnswer(QStringLiteral("getModel"), Answer::value(QStringLiteral("model")));
        m_manager.setMaximumInFlight(1);
        m_manager.setTimeout(std::chrono::milliseconds(100));
        const PendingReply<int> first = m_manager.getTabSize();
        m_manager.setCatalogsCollectionId(QStringLiteral("then"));
        const PendingReply<QString> second = m_manager.getModel();
        m_manager.setCatalogsCollectionId(QStringLiteral("now"));
        m_manager.setTimeout(std::chrono::milliseconds::max());
        QCOMPARE(second.value(), QStringLiteral("model"));
        QCOMPARE(first.error().type(), QDBusError::NoReply);
        QCOMPARE(m_service.takeCalls().constLast().arguments.constFirst().toString(),
                 QStringLiteral("then"));
    }

private:
    void compareOrder()
    {
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), manyCalls);
        for (int i = 0; i < manyCalls; ++i)
            QCOMPARE(calls.at(i).arguments.constFirst().toInt(), i);
    }

    /// The calls so far, with a call of another manager after them, which shares the connection.
    QVector<RecordedCall> takeCallsAfterABarrier()
    {
        m_service.setAnswer(QStringLiteral("clearLog"), Answer::value(true));
        Async other;
        other.clearLog().waitForFinished();
        QVector<RecordedCall> calls = m_service.takeCalls();
        calls.removeLast();
        return calls;
    }

    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Async m_manager;
};

QTEST_GUILESS_MAIN(TestAsyncQueue)
#include "tst_async_queue.moc"
