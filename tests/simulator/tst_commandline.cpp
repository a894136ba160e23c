// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <csignal>
#include <sys/stat.h>

class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itTellsWhatItIs()
    {
        const Ended help = runSimulator({QStringLiteral("--help")});
        QCOMPARE(help.exitCode, 0);
        for (const char *option : {"--model", "--list-models", "--profile", "--state", "--usb",
                                   "--fault", "DBUS_SYSTEM_BUS_ADDRESS"})
            QVERIFY2(help.output.contains(QLatin1String(option)), option);
        const Ended version = runSimulator({QStringLiteral("--version")});
        QCOMPARE(version.exitCode, 0);
        QCOMPARE(version.output,
                 QStringLiteral("embosser-simulator %1\n").arg(QStringLiteral(PROJECT_VERSION)));
    }

    void itListsItsModels()
    {
        const Ended ended = runSimulator({QStringLiteral("--list-models")});
        QCOMPARE(ended.exitCode, 0);
        QCOMPARE(ended.output,
                 QStringLiteral("Arvo\nArvo_V5\nDovrik\nDovrik_V5\nFeyra\nHalvik\nKestan\n"
                                "Kestan_V5\nMarren\nMarrenPlus\nQuillon\nTolvek\nTolvek_V5\n"));
    }

    void itSaysWhatItCannotDo_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("said");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const QStringList &arguments, const char *said,
                            int status = 2) {
            QTest::newRow(name) << arguments << QString::fromLatin1(said) << status;
        };
        row("unknown option", {QStringLiteral("--modle")}, "Unknown option 'modle'.");
        row("unexpected argument", {QStringLiteral("Arvo")}, "unexpected argument \"Arvo\"");
        row("unknown model", {QStringLiteral("--model"), QStringLiteral("Avro")},
            "there is no model \"Avro\"; there are: Arvo, Arvo_V5, ");
        row("the base of all models", {QStringLiteral("--model"), QStringLiteral("Embosser")},
            "there is no model \"Embosser\"");
        row("model and profile",
            {QStringLiteral("--model=Arvo"), QStringLiteral("--profile=/dev/null")},
            "--model and --profile exclude each other");
        row("profile of no name", {QStringLiteral("--profile"), QString()},
            "--profile needs the name of a file");
        row("state of no name", {QStringLiteral("--state"), QString()},
            "--state needs the name of a file");
        row("medium of no name", {QStringLiteral("--usb=")}, "--usb needs the name of a directory");
        row("no such profile", {QStringLiteral("--profile=/nonexistent.json")},
            "/nonexistent.json: No such file or directory", 1);
        row("state in no folder", {QStringLiteral("--state=/nonexistent/state")},
            "/nonexistent/state: No such file or directory", 1);
        row("unknown fault", {QStringLiteral("--fault=slow:getModel")},
            "--fault: there is no fault \"slow\"; there are: error, ");
        row("fault of no method", {QStringLiteral("--fault=error")},
            "--fault: error needs the name of a method, or * for any");
        row("fault of no method and no detail", {QStringLiteral("--fault=delay")},
            "--fault: delay needs the name of a method, or * for any");
        row("fault of an unknown method", {QStringLiteral("--fault=error:getModle")},
            "--fault: the service has no method getModle");
        row("fault without its detail", {QStringLiteral("--fault=delay:getModel")},
            "--fault: delay takes a number of milliseconds");
        row("fault for no number of calls", {QStringLiteral("--fault=error:getModel:few")},
            "--fault: \"few\" is not a number of calls");
    }

    void itSaysWhatItCannotDo()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, said);
        QFETCH(int, status);
        const Ended ended = runSimulator(arguments);
        QCOMPARE(ended.exitCode, status);
        QVERIFY2(ended.errors.startsWith(QLatin1String("embosser-simulator: ") + said),
                 qPrintable(ended.errors));
        QCOMPARE(ended.errors.count(QLatin1Char('\n')), 1);
        QCOMPARE(ended.output, QString());
    }

    void itSaysWhenItIsReady()
    {
        ChildProcess process(simulatorProgram(), {});
        QCOMPARE(process.startAndReadLine(),
                 QStringLiteral("embosser-simulator: on the bus as ") + Simulator::serviceName());
    }

    void twoCannotOwnTheName()
    {
        Simulator first(m_bus);
        first.start();
        const Ended second = runSimulator({});
        QCOMPARE(second.exitCode, 1);
        QCOMPARE(second.errors,
                 QStringLiteral("embosser-simulator: %1: another process owns the name (process "
                                "%2)\n")
                     .arg(Simulator::controlName())
                     .arg(first.process().processId()));
        QCOMPARE(first.value("getType").toInt(), 3);
    }

    void anotherServicesNameIsLeftToIt()
    {
        QDBusConnection other = m_bus.connect(QStringLiteral("other"));
        QVERIFY(other.registerService(Simulator::serviceName()));
        const Ended ended = runSimulator({});
        QCOMPARE(ended.exitCode, 1);
        QVERIFY2(ended.errors.startsWith(
                     QStringLiteral("embosser-simulator: %1: another process owns the name")
                         .arg(Simulator::serviceName())),
                 qPrintable(ended.errors));
        QVERIFY(other.unregisterService(Simulator::serviceName()));
    }

    void itEndsCleanlyWhenAsked_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void itEndsCleanlyWhenAsked()
    {
        QFETCH(int, number);
        ChildProcess process(simulatorProgram(), {});
        process.setProcessChannelMode(QProcess::SeparateChannels);
        process.startAndReadLine();
        ::kill(pid_t(process.processId()), number);
        const Ended ended = waitForEnd(process);
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(ended.exitCode, 0);
        QCOMPARE(ended.output + ended.errors, QString());
    }

    void aSignalEndsItWhileItReadsItsProfile()
    {
        const QTemporaryDir directory;
        const QString pipe = directory.filePath(QStringLiteral("profile.json"));
        QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
        ChildProcess process(simulatorProgram(), {QStringLiteral("--profile"), pipe});
        process.start();
        // Opened by both, the pipe shows that the simulator waits for what is never written.
        QFile writer(pipe);
        QVERIFY(writer.open(QFile::WriteOnly));
        ::kill(pid_t(process.processId()), SIGTERM);
        QVERIFY(process.waitForFinished());
    }

    // The last ones: afterwards there is no bus.
    void itEndsWhenTheBusDoes()
    {
        ChildProcess process(simulatorProgram(), {});
        process.setProcessChannelMode(QProcess::SeparateChannels);
        process.startAndReadLine();
        m_bus.kill();
        const Ended ended = waitForEnd(process);
        QCOMPARE(ended.exitCode, 1);
        QCOMPARE(ended.errors, QStringLiteral("embosser-simulator: the bus is gone\n"));
    }

    void itSaysThatThereIsNoBus()
    {
        const Ended ended = runSimulator({});
        QCOMPARE(ended.exitCode, 1);
        QVERIFY2(ended.errors.startsWith(QLatin1String("embosser-simulator: no bus: ")),
                 qPrintable(ended.errors));
    }

private:
    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
