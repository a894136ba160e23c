// SPDX-License-Identifier: MIT

#include "AsyncTypedCalls.h"
#include "ChildProcess.h"
#include "LogCapture.h"
#include "RecordingService.h"

#include <QtCore/QThread>
#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>
#include <sys/wait.h>
#include <unistd.h>

using libconfigurationmanager::PendingCallWatcher;

namespace {

/// Whether a call is only returned from when its answer is there, as when the machine has given the
/// processor to others meanwhile.
bool isSlowToReturn = false;

} // namespace

/// In place of Qt's.
// NOLINTNEXTLINE(readability-make-member-function-const): as Qt declares it
QDBusPendingCall QDBusAbstractInterface::asyncCallWithArgumentList(const QString &method,
                                                                   const QVariantList &args)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service(), path(), interface(), method);
    message.setArguments(args);
    QDBusPendingCall call = connection().asyncCall(message, timeout());
    if (isSlowToReturn)
        call.waitForFinished();
    return call;
}

/// What comes, stays and goes, and who is called back then.
class TestAsyncLife : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_service.start();
        m_manager = std::make_unique<Async>();
        QVERIFY(m_manager->isConnected());
        m_told.clear();
    }

    void cleanup()
    {
        m_service.kill();
        m_manager.reset();
    }

    void callbacksComeByTheEventLoopOnly()
    {
        m_service.setAnswer(Answer::value(8));
        PendingReply<int> reply = m_manager->getTabSize();
        tell(reply);
        reply.waitForFinished();
        // Also for one that has finished already.
        tell(reply);
        QCOMPARE(m_told, QStringList());
        QTRY_COMPARE(m_told, (QStringList{QStringLiteral("8"), QStringLiteral("8")}));
        QTest::qWait(0);
        QCOMPARE(m_told.size(), 2);
    }

    void callbacksComeInTheOrderOfTheAnswers()
    {
        Answer late = Answer::value(1);
        late.delayInMilliseconds = 200;
        m_service.setAnswer(QStringLiteral("getTabSize"), late);
        m_service.setAnswer(QStringLiteral("getBaudrate"), Answer::value(2));
        tell(m_manager->getTabSize());
        tell(m_manager->getBaudrate());
        QTRY_COMPARE(m_told, (QStringList{QStringLiteral("2"), QStringLiteral("1")}));
    }

    void anAnswerThatIsThereAlreadyDoesNotOvertakeAnEarlierOne()
    {
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::value(1));
        m_service.setAnswer(QStringLiteral("getBaudrate"), Answer::value(2));
        tell(m_manager->getTabSize());
        PendingReply<int> later = m_manager->getBaudrate();
        // Both are here now, and no event loop has run.
        later.waitForFinished();
        tell(later);
        QTRY_COMPARE(m_told, (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    }

    void anAnswerThatComesWithTheCallDoesNotOvertakeAnEarlierOne()
    {
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::value(1));
        m_service.setAnswer(QStringLiteral("getBaudrate"), Answer::value(2));
        tell(m_manager->getTabSize());
        isSlowToReturn = true;
        tell(m_manager->getBaudrate());
        isSlowToReturn = false;
        QTRY_COMPARE(m_told, (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    }

    void anErrorIsToldAsOne()
    {
        m_service.setAnswer(
            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("refused")));
        tell(m_manager->getTabSize());
        QTRY_COMPARE(m_told, QStringList{QStringLiteral("tests.Error")});
    }

    void anOperationWithoutResultTellsThatItHasSucceeded()
    {
        m_manager->setTabSize(8).then(
            this, [this] { m_told << QStringLiteral("done"); },
            [this](const QDBusError &error) { m_told << error.name(); });
        QTRY_COMPARE(m_told, QStringList{QStringLiteral("done")});
    }

    void aWatcherTellsOnce()
    {
        m_service.setAnswer(Answer::value(8));
        const PendingReply<int> reply = m_manager->getTabSize();
        const PendingCallWatcher before(reply);
        const QSignalSpy toldBefore(&before, &PendingCallWatcher::finished);
        QTRY_COMPARE(toldBefore.count(), 1);
        const PendingCallWatcher after(reply);
        const QSignalSpy toldAfter(&after, &PendingCallWatcher::finished);
        QTRY_COMPARE(toldAfter.count(), 1);
        QCOMPARE(toldBefore.count(), 1);
    }

    void nobodyIsCalledBackInAContextThatIsGone()
    {
        m_service.setAnswer(Answer::value(8));
        auto context = std::make_unique<QObject>();
        const PendingReply<int> reply = m_manager->getTabSize();
        reply.then(
            context.get(), [this](int) { m_told << QStringLiteral("value"); },
            [this](const QDBusError &) { m_told << QStringLiteral("error"); });
        context.reset();
        QTRY_VERIFY(reply.isFinished());
        QTest::qWait(20);
        QCOMPARE(m_told, QStringList());
    }

    void aContextOfAnotherThreadIsCalledBackThere()
    {
        m_service.setAnswer(Answer::value(8));
        QThread thread;
        QObject context;
        context.moveToThread(&thread);
        thread.start();
        std::atomic<QThread *> calledIn{nullptr};
        std::atomic<int> value{0};
        const auto onValue = [&](int got) {
            value = got;
            calledIn = QThread::currentThread();
        };
        m_manager->getTabSize().then(&context, onValue, [](const QDBusError &) {});
        QTRY_COMPARE(calledIn.load(), &thread);
        QCOMPARE(value.load(), 8);
        thread.quit();
        QVERIFY(thread.wait());
    }

    void destroyedInFlightItEndsItsCallsAndCallsNobodyBack()
    {
        m_service.setAnswer(Answer::silence());
        QVector<PendingReply<int>> replies;
        for (int i = 0; i < 200; ++i) {
            replies << m_manager->getTabSize();
            tell(replies.last());
        }
        const PendingCallWatcher watcher(replies.first());
        const QSignalSpy finished(&watcher, &PendingCallWatcher::finished);
        m_manager.reset();
        for (PendingReply<int> &reply : replies) {
            QVERIFY(reply.isFinished());
            reply.waitForFinished();
            QCOMPARE(reply.error().name(),
                     QStringLiteral("libconfigurationmanager.Error.Cancelled"));
            QCOMPARE(reply.value(), 0);
        }
        QTest::qWait(20);
        QCOMPARE(m_told, QStringList());
        QCOMPARE(finished.count(), 0);
    }

    void destroyedBeforeTheEventLoopHasToldItCallsNobodyBack()
    {
        m_service.setAnswer(Answer::value(8));
        PendingReply<int> reply = m_manager->getTabSize();
        tell(reply);
        reply.waitForFinished();
        m_manager.reset();
        QTest::qWait(20);
        QCOMPARE(m_told, QStringList());
        QCOMPARE(reply.value(), 8);
    }

    void itMayBeDestroyedByACallback()
    {
        m_service.setAnswer(Answer::value(8));
        const PendingReply<int> first = m_manager->getTabSize();
        const PendingReply<int> second = m_manager->getTabSize();
        first.then(
            this,
            [this](int) {
                m_manager.reset();
                m_told << QStringLiteral("first");
            },
            [](const QDBusError &) {});
        tell(second);
        QTRY_COMPARE(m_told, QStringList{QStringLiteral("first")});
        QTest::qWait(20);
        QCOMPARE(m_told.size(), 1);
        QVERIFY(second.isFinished());
    }

    void itMayBeDestroyedByASlotOfItsOwnSignals()
    {
        connect(m_manager.get(), &Async::disconnected, this, [this] { m_manager.reset(); });
        m_service.kill();
        QTRY_VERIFY(!m_manager);

        m_manager = std::make_unique<Async>();
        QVERIFY(!m_manager->isConnected());
        connect(m_manager.get(), &Async::connected, this, [this] { m_manager.reset(); });
        m_service.start();
        QTRY_VERIFY(!m_manager);
    }

    void aCallbackMayMakeTheNextCall()
    {
        m_service.setAnswer(Answer::value(8));
        const std::function<void(int)> next = [this, &next](int) {
            m_told << QStringLiteral("told");
            if (m_told.size() < 100)
                m_manager->getTabSize().then(this, next, [](const QDBusError &) {});
        };
        next(0);
        QTRY_COMPARE(m_told.size(), 100);
    }

    void eachChangeOfTheServiceIsToldOnce()
    {
        const QSignalSpy connected(m_manager.get(), &Async::connected);
        const QSignalSpy disconnected(m_manager.get(), &Async::disconnected);
        for (int change = 1; change <= 3; ++change) {
            m_service.kill();
            QTRY_COMPARE(disconnected.count(), change);
            QVERIFY(!m_manager->isConnected());
            m_service.start();
            QTRY_COMPARE(connected.count(), change);
            QVERIFY(m_manager->isConnected());
        }
        m_service.setAnswer(Answer::value(8));
        QCOMPARE(m_manager->getTabSize().value(), 8);
    }

    void aServiceThatStandsStillIsATimeOut()
    {
        m_service.setAnswer(Answer::value(8));
        QCOMPARE(m_manager->getTabSize().value(), 8);
        m_service.pause();
        m_manager->setTimeout(std::chrono::milliseconds(100));
        // The one is waited for, the other told of.
        PendingReply<int> waitedFor = m_manager->getTabSize();
        waitedFor.waitForFinished();
        QCOMPARE(waitedFor.error().name(), QDBusError::errorString(QDBusError::NoReply));
        tell(m_manager->getTabSize());
        QTRY_COMPARE(m_told, QStringList{QDBusError::errorString(QDBusError::NoReply)});

        m_service.resume();
        m_manager->setTimeout(std::chrono::milliseconds::max());
        QCOMPARE(m_manager->getTabSize().value(), 8);
    }

    void manyMayBeMadeAndDestroyed()
    {
        m_service.setAnswer(Answer::value(8));
        for (int i = 0; i < 100; ++i) {
            Async manager;
            tell(manager.getTabSize());
            manager.getTabSize();
            if (i % 2 == 0)
                QTest::qWait(0);
        }
        QCOMPARE(m_manager->getTabSize().value(), 8);
    }

    void aProcessMayEndWhileItsThreadsCall()
    {
        m_service.setAnswer(Answer::value(8));
        for (int i = 0; i < 5; ++i) {
            ChildProcess program(QStringLiteral(EXITS_WHILE_CALLING_PROGRAM), {});
            program.start();
            QVERIFY(program.waitForFinished());
            QCOMPARE(program.exitStatus(), QProcess::NormalExit);
            QCOMPARE(program.exitCode(), 0);
        }
    }

    void callsAreMadeWhileTheEventLoopStarts()
    {
        m_service.setAnswer(Answer::value(8));
        for (int i = 0; i < 5; ++i) {
            ChildProcess program(QStringLiteral(CALLS_AT_ONCE_PROGRAM), {});
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(LATE_NAMES_LIBRARY));
            environment.insert(QStringLiteral("GLIBC_TUNABLES"),
                               QStringLiteral("glibc.malloc.perturb=165"));
            program.setProcessEnvironment(environment);
            program.start();
            QVERIFY(program.waitForFinished());
            QCOMPARE(program.exitStatus(), QProcess::NormalExit);
            QCOMPARE(program.exitCode(), 0);
        }
    }

    void aForkedProcessHasNoConnection()
    {
        m_service.setAnswer(Answer::value(8));
        const pid_t child = fork();
        if (child == 0) {
            alarm(5); // rather than wait for ever
            PendingReply<int> reply = m_manager->getTabSize();
            reply.waitForFinished();
            _exit(reply.error().type() == QDBusError::Disconnected ? EXIT_SUCCESS : EXIT_FAILURE);
        }
        int status = 0;
        QVERIFY(QTest::qWaitFor(
            [child, &status] { return waitpid(child, &status, WNOHANG) == child; }, 10000));
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), EXIT_SUCCESS);
        QCOMPARE(m_manager->getTabSize().value(), 8);
    }

private:
    void tell(const PendingReply<int> &reply)
    {
        reply.then(
            this, [this](int value) { m_told << QString::number(value); },
            [this](const QDBusError &error) { m_told << error.name(); });
    }

    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
    std::unique_ptr<Async> m_manager;
    QStringList m_told;
};

QTEST_GUILESS_MAIN(TestAsyncLife)
#include "tst_async_life.moc"
