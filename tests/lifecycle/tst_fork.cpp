// SPDX-License-Identifier: MIT

#include "LogCapture.h"
#include "RecordingService.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtTest/QTest>

#include <future>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

using libconfigurationmanager::detail::ConfigurationManager;

// The child of a fork() has the connection to the bus, but not the thread that reads from it.
class TestFork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCallOfTheChildFailsAtOnceAlsoWhileTheParentCalls()
    {
        m_service.start();
        QTRY_VERIFY(m_manager.isConnected());
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::silence());
        auto parentsCall =
            std::async(std::launch::async, [this] { return m_manager.getTabSize(); });
        QVERIFY(QTest::qWaitFor([this] { return !m_service.takeCalls().isEmpty(); }));

        QCOMPARE(inTheChild([this] { return m_manager.getModel(); }),
                 QByteArray("default: \"A process that is forked has no connection to the bus\""));
        QCOMPARE(m_service.takeCalls().size(), 0);

        m_service.setAnswer(QStringLiteral("getModel"), Answer::value(QStringLiteral("model")));
        LogCapture log;
        m_service.kill();
        QCOMPARE(parentsCall.get(), 0);
        m_service.start();
        QTRY_VERIFY(m_manager.isConnected());
        m_service.setAnswer(Answer::value(QStringLiteral("model")));
        QCOMPARE(m_manager.getModel(), QStringLiteral("model"));
    }

private:
    /// Makes a call in a child, and returns what it has logged; nothing if it does not return.
    template<typename Call>
    static QByteArray inTheChild(const Call &call)
    {
        int ends[2];
        if (pipe(ends) != 0)
            qFatal("no pipe");
        const pid_t child = fork();
        if (child == 0) {
            LogCapture log;
            QByteArray said = call().isNull() ? "" : "a value, and ";
            for (const LogLine &line : log.takeLines())
                said += line.category.toUtf8() + ": " + line.text.toUtf8();
            const bool isWritten = write(ends[1], said.constData(), size_t(said.size())) > 0;
            _exit(isWritten ? EXIT_SUCCESS : EXIT_FAILURE);
        }
        close(ends[1]);
        pollfd answered{ends[0], POLLIN, 0};
        QByteArray said(1000, '\0');
        const bool isAnswered = poll(&answered, 1, 20000) == 1;
        said.resize(isAnswered ? int(read(ends[0], said.data(), size_t(said.size()))) : 0);
        close(ends[0]);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        return said;
    }

    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
    ConfigurationManager m_manager;
};

QTEST_GUILESS_MAIN(TestFork)
#include "tst_fork.moc"
