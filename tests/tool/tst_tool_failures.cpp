// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "RecordingService.h"
#include "Shell.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

#include <csignal>
#include <future>

namespace {

const QByteArray hasLeft =
    "embosserctl: not connected: the configuration service has left the system "
    "bus\n";

QJsonObject error(const char *kind, const char *message)
{
    return {{QStringLiteral("kind"), QString::fromLatin1(kind)},
            {QStringLiteral("message"), QString::fromLatin1(message)}};
}

QJsonValue document(const Outcome &outcome)
{
    return QJsonDocument::fromJson(outcome.output).object();
}

} // namespace

/// A dbus-daemon with a configuration of its own, with a configuration service on it.
class ConfiguredBus
{
public:
    explicit ConfiguredBus(const QString &configuration, const QStringList &arguments = {})
        : m_daemon(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                    QStringLiteral("--config-file=") + configuration}),
          m_address(m_daemon.startAndReadLine()),
          m_simulator(QStringLiteral(SIMULATOR), arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_address);
        m_simulator.setProcessEnvironment(environment);
        m_simulator.startAndReadLine();
    }

    const QString &address() const { return m_address; }

private:
    ChildProcess m_daemon;
    QString m_address;
    ChildProcess m_simulator;
};

/// Who has failed: told apart by status, message and JSON, in every command.
class TestToolFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_shell.run(QStringLiteral("echo '{\"format\": \"embosserctl configuration 1\", "
                                   "\"settings\": {\"AlignLow\": 1, \"TabSize\": 2}}' > two.json"));
    }

    void cleanup() { m_service.kill(); }

    void saysInOneLineThatItIsNotPermitted_data() { addCommands(); }

    void saysInOneLineThatItIsNotPermitted()
    {
        QFETCH(QString, command);
        const Outcome outcome = run(command, m_denyingBus.address());
        QCOMPARE(outcome.status, 5);
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.errors,
                 QByteArray("embosserctl: permission denied by the bus; members of the group "
                            "embosser may talk to the service\n"));
        const Outcome json = run(command + QStringLiteral(" --json"), m_denyingBus.address());
        QCOMPARE(json.status, 5);
        QCOMPARE(document(json)[QStringLiteral("error")],
                 QJsonValue(error("notPermitted",
                                  "permission denied by the bus; members of the group embosser "
                                  "may talk to the service")));
    }

    void saysThatTheServiceHasDied_data() { addCommands(); }

    void saysThatTheServiceHasDied()
    {
        QFETCH(QString, command);
        m_service.start();
        m_service.setAnswer(Answer::exit());
        const Outcome outcome = run(command);
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.errors, hasLeft);

        QVERIFY(m_service.waitForExit());
        m_service.start();
        m_service.setAnswer(Answer::exit());
        const Outcome json = run(command + QStringLiteral(" --json"));
        QCOMPARE(json.status, 3);
        QCOMPARE(document(json)[QStringLiteral("error")],
                 QJsonValue(error("absent", "not connected: the configuration service has left the "
                                            "system bus")));
    }

    void startsNoServiceToLearnWhetherItIsThere()
    {
        // The bus would start what leaves a file behind.
        const QString started = m_shell.path(QStringLiteral("started"));
        write("bus.conf", R"(<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>
            <servicedir>)" + m_shell.path(QStringLiteral(".")).toUtf8() +
                              R"(</servicedir><policy context="default"><allow own="*"/>
            <allow send_destination="*"/><allow receive_sender="*"/></policy></busconfig>)");
        write("activation.service",
              "[D-BUS Service]\nName=com.tavelornbraille.ConfigurationManager\nExec=/bin/sh -c "
              "\"touch " +
                  started.toUtf8() + "; false\"\n");
        const ConfiguredBus bus(m_shell.path(QStringLiteral("bus.conf")),
                                {QStringLiteral("--fault"), QStringLiteral("crash:getTabSize")});
        const Outcome outcome = run(QStringLiteral("get TabSize"), bus.address());
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.errors, hasLeft);
        QVERIFY(!QFile::exists(started));
        run(QStringLiteral("wait --start"), bus.address());
        QVERIFY(QFile::exists(started));
    }

    void saysThatThereIsNoAnswerInTime_data() { addCommands(); }

    void saysThatThereIsNoAnswerInTime()
    {
        QFETCH(QString, command);
        m_service.start();
        m_service.setAnswer(Answer::silence());
        const Outcome outcome = run(command + QStringLiteral(" --timeout 0.2"));
        QCOMPARE(outcome.status, 4);
        QCOMPARE(
            outcome.errors,
            QByteArray("embosserctl: the configuration service has not answered within 0.2 s\n"));
        const Outcome json = run(command + QStringLiteral(" --json --timeout 0.2"));
        QCOMPARE(json.status, 4);
        QCOMPARE(document(json)[QStringLiteral("error")],
                 QJsonValue(
                     error("noAnswer", "the configuration service has not answered within 0.2 s")));
    }

    void asksNoMoreAfterATimeOut()
    {
        m_service.start();
        m_service.setAnswer(Answer::silence());
        QCOMPARE(run(QStringLiteral("get TabSize AlignLow Baudrate --timeout 0.2")).status, 4);
        QCOMPARE(m_service.takeCalls().size(), 1);
    }

    void waitsAsLongAsItIsTold()
    {
        m_service.start();
        Answer late = Answer::value(4);
        late.delayInMilliseconds = 1000;
        m_service.setAnswer(late);
        QCOMPARE(run(QStringLiteral("get TabSize")).output, QByteArray("4\n"));
        QCOMPARE(run(QStringLiteral("get TabSize --timeout 0")).output, QByteArray("4\n"));
        QCOMPARE(run(QStringLiteral("get TabSize --timeout 60")).output, QByteArray("4\n"));
        QCOMPARE(run(QStringLiteral("get TabSize --timeout 0.1")).status, 4);
    }

    void eachAnswerOfManyHasItsTime()
    {
        // As of a service that answers one call after the other: all of them take longer.
        m_service.start();
        int delay = 0;
        for (const char *getter : {"getTabSize", "getAlignLow", "getBaudrate", "getAlignHigh"}) {
            Answer late = Answer::value(4);
            late.delayInMilliseconds = delay;
            m_service.setAnswer(QString::fromLatin1(getter), late);
            delay += 1000;
        }
        const Outcome outcome =
            run(QStringLiteral("get TabSize AlignLow Baudrate AlignHigh --timeout 2.5"));
        QCOMPARE(outcome.output,
                 QByteArray("TabSize\t4\nAlignLow\t4\nBaudrate\t4\nAlignHigh\t4\n"));
        QCOMPARE(outcome.status, 0);
    }

    void printsInTheOrderOfTheCalls()
    {
        m_service.start();
        Answer late = Answer::value(1);
        late.delayInMilliseconds = 300;
        m_service.setAnswer(Answer::value(4));
        m_service.setAnswer(QStringLiteral("getAlignLow"), late);
        m_service.setAnswer(QStringLiteral("getBaudrate"),
                            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("no")));
        late = Answer::error(QStringLiteral("tests.Error"), QStringLiteral("late"));
        late.delayInMilliseconds = 300;
        m_service.setAnswer(QStringLiteral("getEMCTest"), late);
        const Outcome outcome =
            run(QStringLiteral("get TabSize AlignLow EMCTest Baudrate AlignHigh"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.output, QByteArray("TabSize\t4\nAlignLow\t1\nAlignHigh\t4\n"));
        QCOMPARE(outcome.errors,
                 QByteArray("embosserctl: EMCTest: late\nembosserctl: Baudrate: no\n"));
    }

    void aRefusalIsNotMistakenForAnErrorOfTheBus_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"AccessDenied", "Disconnected", "NoReply", "ServiceUnknown",
                                 "TimedOut", "Timeout", "InvalidArgs"})
            QTest::newRow(name) << QStringLiteral("org.freedesktop.DBus.Error.") +
                                       QLatin1String(name);
    }

    void aRefusalIsNotMistakenForAnErrorOfTheBus()
    {
        QFETCH(QString, name);
        m_service.start();
        m_service.setAnswer(Answer::error(name, QStringLiteral("not now")));
        const Outcome outcome = run(QStringLiteral("get TabSize"));
        QCOMPARE(outcome.errors, QByteArray("embosserctl: TabSize: not now\n"));
        QCOMPARE(outcome.status, 1);
    }

    void waitsUntilTheServiceComes()
    {
        QCOMPARE(run(QStringLiteral("wait --for 0.1")).status, 3);
        QCOMPARE(run(QStringLiteral("wait --start")).status, 3);
        auto waiting = std::async(std::launch::async,
                                  [this] { return run(QStringLiteral("wait --for 60")).status; });
        m_service.start();
        QCOMPARE(waiting.get(), 0);
    }

    void watchesUntilTheServiceLeaves()
    {
        m_service.start();
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::value(4));
        const auto bothAreReadTwice = [this] {
            int calls = 0;
            return QTest::qWaitFor([&] { return (calls += m_service.takeCalls().size()) > 4; });
        };
        auto watching = std::async(std::launch::async, [this] {
            return run(QStringLiteral("watch TabSize AlignLow --every 0.01 --json"));
        });
        QVERIFY(bothAreReadTwice());
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::value(7));
        QVERIFY(bothAreReadTwice());
        m_service.kill();
        const Outcome outcome = watching.get();
        QCOMPARE(outcome.status, 3);
        QJsonArray seen;
        for (const QByteArray &line : outcome.output.split('\n')) {
            const QJsonObject object = QJsonDocument::fromJson(line).object();
            if (object.value(QStringLiteral("name")) == QStringLiteral("TabSize"))
                seen.append(object.value(QStringLiteral("value")));
        }
        QCOMPARE(seen, (QJsonArray{4, 7}));
        QVERIFY(outcome.output.contains("unexpected reply") ||
                outcome.output.contains("Unexpected reply"));
    }

    void watchesNoMoreWhenNobodyReads()
    {
        m_service.start();
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::value(4));
        const Outcome outcome = run(QStringLiteral("watch TabSize --every 3600 | head -n 1"));
        QCOMPARE(outcome.status, 0);
        QVERIFY(outcome.output.endsWith("\tTabSize\t4\n"));
    }

    void isToldATimeThatIsANumber_data()
    {
        QTest::addColumn<QString>("time");
        for (const char *time : {"soon", "-1", "nan", "inf", "86401", "''"})
            QTest::newRow(time) << QString::fromLatin1(time);
    }

    void isToldATimeThatIsANumber()
    {
        QFETCH(QString, time);
        const Outcome outcome = run(QStringLiteral("get TabSize --timeout=") + time);
        QCOMPARE(outcome.status, 2);
        QVERIFY(outcome.errors.contains("is not a number of seconds from 0 to 86400"));
    }

    void endsAtOnceWhenItIsToldTo_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("dump") << QStringLiteral("dump");
        QTest::newRow("restore") << QStringLiteral("restore two.json");
        QTest::newRow("get") << QStringLiteral("get TabSize");
    }

    void endsAtOnceWhenItIsToldTo()
    {
        QFETCH(QString, command);
        m_service.start();
        m_service.setAnswer(Answer::silence());
        for (const char *const signal : {"TERM", "INT"}) {
            // timeout(1) kills it, with another status, if it does not end.
            const Outcome outcome = m_shell.run(
                QStringLiteral("timeout --kill-after=10 --signal=%1 --preserve-status 1 "
                               "embosserctl --timeout 0 %2")
                    .arg(QLatin1String(signal), command));
            QCOMPARE(outcome.status, qstrcmp(signal, "TERM") == 0 ? 128 + SIGTERM : 128 + SIGINT);
        }
    }

    void aFalseOfWhatWritesIsARefusal_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("status");
        QTest::newRow("a setting by its name") << QStringLiteral("call setIntValue TabSize 3") << 1;
        QTest::newRow("a setting by its change")
            << QStringLiteral("call setIntDeltaValue TabSize 3") << 1;
        QTest::newRow("a command") << QStringLiteral("call clearLog") << 1;
        QTest::newRow("a question") << QStringLiteral("call hasBooklet") << 0;
        QTest::newRow("settings together") << QStringLiteral("set TabSize=3 AlignLow=1") << 1;
    }

    void aFalseOfWhatWritesIsARefusal()
    {
        QFETCH(QString, command);
        m_service.start();
        m_service.setAnswer(Answer::value(false));
        QTEST(run(command).status, "status");
    }

    void saysWhatTheServiceHasRefused_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("name");
        QTest::newRow("get") << QStringLiteral("get TabSize") << QStringLiteral("TabSize");
        QTest::newRow("status") << QStringLiteral("status") << QStringLiteral("hasFeeder");
        QTest::newRow("dump") << QStringLiteral("dump") << QStringLiteral("TabSize");
        QTest::newRow("diff") << QStringLiteral("diff live collection:other")
                              << QStringLiteral("TabSize");
        QTest::newRow("set") << QStringLiteral("set TabSize 4") << QString();
        QTest::newRow("call") << QStringLiteral("call hasFeeder") << QString();
        QTest::newRow("values") << QStringLiteral("values 0") << QString();
        QTest::newRow("paper") << QStringLiteral("paper A4") << QString();
        QTest::newRow("report") << QStringLiteral("report") << QString();
    }

    void saysWhatTheServiceHasRefused()
    {
        QFETCH(QString, command);
        QFETCH(QString, name);
        m_service.start();
        m_service.setAnswer(Answer::error(QStringLiteral("tests.Error"), QStringLiteral("no")));
        const Outcome outcome = run(command + QStringLiteral(" --json"));
        QCOMPARE(outcome.status, 1);
        const QJsonValue printed = document(outcome);
        if (name.isEmpty()) {
            QCOMPARE(printed.toObject().keys(), QStringList{QStringLiteral("error")});
            QCOMPARE(printed[QStringLiteral("error")][QStringLiteral("kind")],
                     QJsonValue(QStringLiteral("refused")));
            return;
        }
        QJsonValue errors = printed[QStringLiteral("errors")];
        if (command.startsWith(QLatin1String("diff")))
            errors = errors[QStringLiteral("second")];
        QCOMPARE(errors[name], QJsonValue(error("refused", "no")));
    }

    void saysInJsonWhatIsInvalid()
    {
        for (const char *command : {"get TabSizes --json", "set AlignLow x --json",
                                    "call getTabsize --json", "restore missing.json --json"}) {
            const Outcome outcome = run(QString::fromLatin1(command));
            QCOMPARE(outcome.status, 2);
            QCOMPARE(document(outcome)[QStringLiteral("error")][QStringLiteral("kind")],
                     QJsonValue(QStringLiteral("invalid")));
        }
    }

private:
    static void addCommands()
    {
        QTest::addColumn<QString>("command");
        for (const char *command :
             {"get PrintSpeed", "get PrintSpeed TabSize", "set PrintSpeed Low", "call clearLog",
              "values Papers", "paper", "report", "diff live collection:other", "restore two.json",
              "dump", "capture", "verify"})
            QTest::newRow(command) << QString::fromLatin1(command);
    }

    void write(const char *name, const QByteArray &content) const
    {
        QFile file(m_shell.path(QString::fromLatin1(name)));
        if (!file.open(QFile::WriteOnly))
            qFatal("%s: %s", name, qPrintable(file.errorString()));
        file.write(content);
    }

    Outcome run(const QString &arguments, const QString &address = {})
    {
        const QString bus = address.isEmpty()
                                ? QString()
                                : QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS='%1' ").arg(address);
        return m_shell.run(bus + QStringLiteral("embosserctl ") + arguments);
    }

    PrivateBus m_bus;
    /// Nobody may talk to the service.
    ConfiguredBus m_denyingBus{QStringLiteral(DENYING_BUS_CONFIGURATION)};
    RecordingService m_service{m_bus};
    Shell m_shell;
};

QTEST_GUILESS_MAIN(TestToolFailures)
#include "tst_tool_failures.moc"
