// SPDX-License-Identifier: MIT

#include "AsyncTypedCalls.h"
#include "LogCapture.h"
#include "RecordingService.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

// A process connects to the system bus only once: there is no bus for a second test here.
class TestAsyncBusLoss : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isTheErrorOfEveryCall()
    {
        m_service.start();
        m_service.setAnswer(Answer::silence());
        Async manager;
        const QSignalSpy disconnected(&manager, &Async::disconnected);
        QVERIFY(manager.isConnected());
        // Qt notices the loss only in a process whose event loop has run.
        QCoreApplication::processEvents();
        const LogCapture log;

        QVector<AnyReply> replies;
        for (const AsyncTypedCall &call : asyncTypedCalls())
            replies << call.call(manager, In(0));
        int told = 0;
        replies.first().then(
            this, [](const QVariant &) {}, [&told](const QDBusError &) { ++told; });
        int arrived = 0;
        QTRY_COMPARE(arrived += m_service.takeCalls().size(), manager.maximumInFlight());
        m_bus.kill();
        for (AnyReply &reply : replies) {
            reply.waitForFinished();
            QCOMPARE(reply.error().name(), QDBusError::errorString(QDBusError::Disconnected));
        }
        QTRY_COMPARE(told, 1);
        QTRY_COMPARE(disconnected.count(), 1);
        QVERIFY(!manager.isConnected());

        for (const AsyncTypedCall &call : asyncTypedCalls()) {
            AnyReply reply = call.call(manager, In(0));
            reply.waitForFinished();
            QCOMPARE(reply.error().name(), QDBusError::errorString(QDBusError::Disconnected));
        }
        manager.clearLog().then(
            this, [](bool) {}, [&told](const QDBusError &) { ++told; });
        QTRY_COMPARE(told, 2);
    }

private:
    PrivateBus m_bus;
    RecordingService m_service{m_bus};
};

QTEST_GUILESS_MAIN(TestAsyncBusLoss)
#include "tst_async_busloss.moc"
