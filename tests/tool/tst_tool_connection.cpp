// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "RecordingService.h"
#include "Shell.h"

#include <QtCore/QDateTime>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtDBus/QDBusMetaType>
#include <QtTest/QTest>

#include <csignal>

/// What the tool does when the service or the bus is not there, fails, or goes.
class TestToolConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qDBusRegisterMetaType<QList<QVariantMap>>(); }

    void cleanup() { m_service.kill(); }

    void saysThatItIsNotConnected_data()
    {
        QTest::addColumn<QString>("command");
        for (const char *command :
             {"status", "get PrintSpeed", "set PrintSpeed Low", "call clearLog", "values Papers",
              "paper", "report", "dump", "diff live collection:other"})
            QTest::newRow(command) << QString::fromLatin1(command);
    }

    void saysThatItIsNotConnected()
    {
        QFETCH(QString, command);
        const Outcome withoutService = run(command);
        QCOMPARE(withoutService.status, 3);
        QCOMPARE(withoutService.errors,
                 QByteArray("embosserctl: not connected: the configuration service is not on the "
                            "system bus\n"));

        const Outcome withoutBus = runWithoutBus(command);
        QCOMPARE(withoutBus.status, 3);
        QVERIFY(withoutBus.errors.startsWith("embosserctl: not connected: no system bus: "));
    }

    void saysThatAProgramDoesNotLeadToABus()
    {
        const Outcome outcome = run(QStringLiteral("--address unixexec:path=false get TabSize"));
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.errors, QByteArray("embosserctl: not connected: no system bus: "
                                            "unixexec:path=false: the program that leads to it has "
                                            "ended\n"));
    }

    void monitorNeedsABus()
    {
        const Outcome outcome = runWithoutBus(QStringLiteral("monitor"));
        QCOMPARE(outcome.status, 3);
        QVERIFY(outcome.errors.startsWith("embosserctl: not connected: no system bus: "));
    }

    void needsNoServiceToTellAboutOperations_data()
    {
        QTest::addColumn<QString>("command");
        for (const char *command :
             {"list", "describe getModel", "--help", "set --help", "--version", "--generate man"})
            QTest::newRow(command) << QString::fromLatin1(command);
    }

    void needsNoServiceToTellAboutOperations()
    {
        QFETCH(QString, command);
        const Outcome outcome = runWithoutBus(command);
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.errors, QByteArray());
        QVERIFY(!outcome.output.isEmpty());
    }

    void passesOnTheMessageOfTheService_data()
    {
        QTest::addColumn<QString>("rules");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("shown");
        const QString text = QStringLiteral("the \"drum\" is open\n\u00e9");
        const QString shown = QStringLiteral("the \"drum\" is open\\n\u00e9");
        QTest::newRow("as usual") << QString() << text << shown;
        QTest::newRow("whatever is to be logged") << QStringLiteral("*=false") << text << shown;
        QTest::newRow("an empty one") << QString() << QString() << QString();
        QTest::newRow("control characters") << QString() << QStringLiteral("\b\f\r\t\u0001A")
                                            << QStringLiteral("\\x08\\x0c\\x0d\\t\\x01A");
        const QString aboveBmp = QString::fromUtf8("\U0001F600 \U0001FAE8A \U000E0001");
        QTest::newRow("above U+FFFF") << QString() << aboveBmp << aboveBmp;
    }

    void passesOnTheMessageOfTheService()
    {
        QFETCH(QString, rules);
        QFETCH(QString, message);
        QFETCH(QString, shown);
        m_service.start();
        m_service.setAnswer(Answer::error(QStringLiteral("tests.Error"), message));
        const Outcome outcome = m_shell.run(
            QStringLiteral("QT_LOGGING_RULES='%1' embosserctl get PrintSpeed").arg(rules));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(QString::fromUtf8(outcome.errors),
                 QStringLiteral("embosserctl: PrintSpeed: %1\n").arg(shown));
    }

    void showsWhatCouldBeReadBesideWhatFailed()
    {
        m_service.start();
        m_service.setAnswer(QStringLiteral("getPrintSpeed"), Answer::value(QStringLiteral("Low")));
        m_service.setAnswer(QStringLiteral("getRegion"),
                            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("no")));
        const Outcome outcome = run(QStringLiteral("get PrintSpeed Region --json"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(
            QJsonDocument::fromJson(outcome.output).object(),
            (QJsonObject{
                {QStringLiteral("PrintSpeed"), QStringLiteral("Low")},
                {QStringLiteral("errors"),
                 QJsonObject{{QStringLiteral("Region"),
                              QJsonObject{{QStringLiteral("kind"), QStringLiteral("refused")},
                                          {QStringLiteral("message"), QStringLiteral("no")}}}}}}));
        QCOMPARE(outcome.errors, QByteArray("embosserctl: Region: no\n"));
    }

    void tellsWhatADumpLacks()
    {
        ChildProcess simulator(
            QStringLiteral(SIMULATOR),
            {QStringLiteral("--fault"), QStringLiteral("error:getRegion:3:not now")});
        simulator.startAndReadLine();
        const Outcome dump =
            run(QStringLiteral("dump > dump.json; status=$?; cat dump.json; exit $status"));
        QCOMPARE(dump.status, 1);
        QCOMPARE(dump.errors, QByteArray("embosserctl: Region: not now\n"));
        const QJsonObject settings =
            QJsonDocument::fromJson(dump.output).object()[QStringLiteral("settings")].toObject();
        QVERIFY(!settings.contains(QStringLiteral("Region")));
        QVERIFY(settings.contains(QStringLiteral("PrintSpeed")));

        for (const char *sources : {"live dump.json", "dump.json live"}) {
            const Outcome diff = run(QStringLiteral("diff %1").arg(QLatin1String(sources)));
            QCOMPARE(diff.status, 1);
            QCOMPARE(diff.errors, QByteArray("embosserctl: Region: not now\n"
                                             "embosserctl: no difference\n"));
        }
    }

    void failsWhenTheOutputCannotBeWritten()
    {
        m_service.start();
        const Outcome outcome = run(QStringLiteral("list > /dev/full"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.errors, QByteArray("embosserctl: the output could not be written\n"));
    }

    void failsWhenStandardOutputIsClosed()
    {
        m_service.start();
        // With the newline, as many bytes as an eventfd, which Qt opens first, takes.
        m_service.setAnswer(QStringLiteral("getTabSize"), Answer::value(1234567));
        const Outcome outcome = run(QStringLiteral("get TabSize <&- >&-"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.errors, QByteArray("embosserctl: the output could not be written\n"));
    }

    void writesNoMessageToTheBusInsteadOfStandardError()
    {
        m_service.start();
        m_service.setAnswer(QStringLiteral("getTabSize"),
                            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("no")));
        QCOMPARE(run(QStringLiteral("get TabSize Region <&- >&- 2>&-")).status, 1);
        QCOMPARE(m_service.takeCalls().size(), 2);
    }

    void monitorEndsWhenItsOutputCannotBeWritten()
    {
        const Outcome outcome = run(QStringLiteral("monitor > /dev/full"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(outcome.errors, QByteArray("embosserctl: the output could not be written\n"));
    }

    void keepsThePassphraseOutOfEveryMessage_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("passphrase");
        const auto row = [](const char *name, const char *command, const char *passphrase) {
            QTest::newRow(name) << QString::fromUtf8(command) << QString::fromUtf8(passphrase);
        };
        row("set", "set Passphrase '%1'", "secret words");
        row("the quotes are forgotten", "set Passphrase %1", "secret words");
        row("standard input", "set Passphrase << end\n%1\nend", "secret words");
        row("call", "call setPassphrase '%1'", "secret words");
        row("map", R"(call processSequence '{"Passphrase": "%1"}')", "secret words");
        row("map in a list in a map",
            R"(call processSequence '{"Networks": [{"Passphrase": "%1"}]}')", "secret words");
        row("secret map", R"(call processSequence '{"Passwords": {"Ssid": ["%1"]}}')",
            "secret words");
        row("one that is part of another",
            R"(call processSequence '{"FtpPassword": "secret", "Passphrase": "%1"}')",
            "secret words");
        row("what QDebug escapes", "set Passphrase '%1'", "secret \"\\n\n\u0001\U0001FAE8words");
    }

    void keepsThePassphraseOutOfEveryMessage()
    {
        QFETCH(QString, command);
        QFETCH(QString, passphrase);
        m_service.start();
        m_service.setAnswer(Answer::error(QStringLiteral("tests.Error"),
                                          passphrase + QStringLiteral(" is too short")));
        const Outcome outcome = run(command.arg(passphrase));
        QVERIFY(outcome.status != 0);
        for (const char *part : {"secret", "words"})
            QVERIFY2(!outcome.errors.contains(part), outcome.errors.constData());
    }

    void showsThePassphraseToGetOnly()
    {
        const QString secret = QStringLiteral("secret words");
        const QVariantMap map{{QStringLiteral("Passphrase"), secret},
                              {QStringLiteral("Ssid"), QStringLiteral("workshop")}};
        m_service.start();
        m_service.setAnswer(QStringLiteral("getPassphrase"), Answer::value(secret));
        m_service.setAnswer(QStringLiteral("embosserInfoCmd"), Answer::value(map));
        m_service.setAnswer(QStringLiteral("getLayoutParameters"), Answer::value(map));
        m_service.setAnswer(QStringLiteral("getValueList"),
                            Answer::value(QVariant::fromValue(QList<QVariantMap>{map})));

        QCOMPARE(run(QStringLiteral("get Passphrase")).output, QByteArray("secret words\n"));
        QCOMPARE(run(QStringLiteral("values Papers")).output,
                 QByteArray("Passphrase\tSsid\n(not shown)\tworkshop\n"));
        for (const char *command :
             {"call getPassphrase", "call getPassphrase --json", "call embosserInfoCmd",
              "call getLayoutParameters --json", "call getValueList 0", "values Papers --json",
              "report", "report --json", "dump", "diff live collection:other"}) {
            const Outcome outcome = run(QString::fromLatin1(command));
            QVERIFY2(!(outcome.output + outcome.errors).contains("secret words"), command);
        }
    }

    void readsThePassphraseFromStandardInput_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("passphrase");
        QTest::newRow("a line") << QStringLiteral("two words\\n") << QStringLiteral("two words");
        QTest::newRow("no newline") << QStringLiteral("word") << QStringLiteral("word");
        QTest::newRow("not only ASCII") << QStringLiteral("\\303\\244") << QStringLiteral("\u00e4");
    }

    void readsThePassphraseFromStandardInput()
    {
        QFETCH(QString, input);
        QFETCH(QString, passphrase);
        m_service.start();
        const Outcome outcome = setPassphraseFrom(input);
        QCOMPARE(outcome.status, 0);
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls[0].member, QStringLiteral("setPassphrase"));
        QCOMPARE(calls[0].arguments[0].toString(), passphrase);
    }

    void refusesAPassphraseThatIsNotOneLine_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QByteArray>("message");
        const QByteArray empty = "Passphrase is empty; 'embosserctl set Passphrase \"\"' clears it";
        const QByteArray tooMuch = "Passphrase is more than one line on standard input";
        QTest::newRow("nothing") << QString() << empty;
        QTest::newRow("an empty line") << QStringLiteral("\\n") << empty;
        QTest::newRow("two lines") << QStringLiteral("one\\ntwo\\n") << tooMuch;
        const QByteArray noText = "Passphrase contains a NUL or is not valid UTF-8";
        QTest::newRow("a NUL") << QStringLiteral("a\\0b") << noText;
        QTest::newRow("Latin-1") << QStringLiteral("a\\351b") << noText;
        QTest::newRow("half a character") << QStringLiteral("a\\303") << noText;
        QTest::newRow("a line and an empty one") << QStringLiteral("one\\n\\n") << tooMuch;
    }

    void refusesAPassphraseThatIsNotOneLine()
    {
        QFETCH(QString, input);
        QFETCH(QByteArray, message);
        m_service.start();
        const Outcome outcome = setPassphraseFrom(input);
        QCOMPARE(outcome.status, 2);
        QCOMPARE(outcome.errors, "embosserctl: " + message + '\n');
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void refusesArgumentsThatAreNotText()
    {
        m_service.start();
        for (const char *argument : {R"(a\351b)", R"(\303)", R"(\355\240\200)"}) {
            const Outcome outcome =
                run(QStringLiteral("set FreeText \"$(printf '%1')\"").arg(QLatin1String(argument)));
            QCOMPARE(outcome.status, 2);
            QCOMPARE(outcome.errors, QByteArray("embosserctl: argument 3 is not valid UTF-8\n"
                                                "embosserctl: see 'embosserctl --help'\n"));
        }
        const Outcome map = run(QStringLiteral(R"(call processSequence '{"FreeText": "\u0000"}')"));
        QCOMPARE(map.status, 2);
        QCOMPARE(map.errors,
                 QByteArray("embosserctl: sequence: FreeText: a text with a NUL or an unpaired "
                            "surrogate cannot be sent\n"));
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void monitorPrintsWhenTheServiceComesAndGoesUntilCtrlC_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("a wish to terminate") << SIGTERM;
    }

    void monitorPrintsWhenTheServiceComesAndGoesUntilCtrlC()
    {
        QFETCH(int, signal);
        ChildProcess monitor(QStringLiteral(EMBOSSERCTL), {QStringLiteral("monitor")});
        QVERIFY(isStateWithTime(monitor.startAndReadLine(), QStringLiteral("disconnected")));
        m_service.start();
        QVERIFY(isStateWithTime(nextLine(monitor), QStringLiteral("connected")));
        m_service.kill();
        QVERIFY(isStateWithTime(nextLine(monitor), QStringLiteral("disconnected")));

        ::kill(pid_t(monitor.processId()), signal);
        QVERIFY(monitor.waitForFinished());
        QCOMPARE(monitor.exitStatus(), QProcess::NormalExit);
        QCOMPARE(monitor.exitCode(), 0);
        QCOMPARE(monitor.readAllStandardOutput(), QByteArray());
    }

    void monitorPrintsJsonLines()
    {
        m_service.start();
        ChildProcess monitor(QStringLiteral(EMBOSSERCTL),
                             {QStringLiteral("monitor"), QStringLiteral("--json")});
        const QJsonObject state =
            QJsonDocument::fromJson(monitor.startAndReadLine().toUtf8()).object();
        QCOMPARE(state.keys(), (QStringList{QStringLiteral("connected"), QStringLiteral("time")}));
        QCOMPARE(state.value(QStringLiteral("connected")), QJsonValue(true));
    }

    // The last one: the programs that it starts have another bus.
    void monitorEndsWhenTheBusIsLost()
    {
        PrivateBus ownBus;
        ChildProcess monitor(QStringLiteral(EMBOSSERCTL), {QStringLiteral("monitor")});
        monitor.setProcessChannelMode(QProcess::SeparateChannels);
        monitor.startAndReadLine();
        ownBus.kill();
        QVERIFY(monitor.waitForFinished());
        QCOMPARE(monitor.exitCode(), 3);
        QVERIFY(monitor.readAllStandardError().startsWith(
            "embosserctl: not connected: no system bus: "));
    }

private:
    Outcome run(const QString &arguments)
    {
        return m_shell.run(QStringLiteral("embosserctl ") + arguments);
    }

    /// With the input, as printf writes it, on standard input.
    Outcome setPassphraseFrom(const QString &input)
    {
        return m_shell.run(QStringLiteral("printf '%1' | embosserctl set Passphrase").arg(input));
    }

    Outcome runWithoutBus(const QString &arguments)
    {
        return m_shell.run(
            QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent embosserctl %1")
                .arg(arguments));
    }

    static QString nextLine(ChildProcess &process)
    {
        while (!process.canReadLine()) {
            if (!process.waitForReadyRead())
                return {};
        }
        return QString::fromUtf8(process.readLine()).trimmed();
    }

    static bool isStateWithTime(const QString &line, const QString &state)
    {
        const QStringList fields = line.split(QLatin1Char('\t'));
        return fields.size() == 2 && fields[1] == state &&
               QDateTime::fromString(fields[0], Qt::ISODateWithMs).isValid();
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Shell m_shell;
};

QTEST_GUILESS_MAIN(TestToolConnection)
#include "tst_tool_connection.moc"
