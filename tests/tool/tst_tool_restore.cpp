// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "RecordingService.h"
#include "Shell.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

/// What restore does with a service that does not take everything.
class TestToolRestore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void appliesToAnotherModelWhatItCan()
    {
        {
            ChildProcess simulator(QStringLiteral(SIMULATOR), model("Quillon"));
            simulator.startAndReadLine();
            QCOMPARE(run("set AlignLow 3").status, 0);
            QCOMPARE(run("dump > quillon.json").status, 0);
        }
        ChildProcess simulator(QStringLiteral(SIMULATOR), model("Tolvek"));
        simulator.startAndReadLine();
        const Outcome outcome = run("restore quillon.json --json");
        QCOMPARE(outcome.status, 1);

        // A Tolvek prints on one side only, and not as fast.
        const QStringList refused{QStringLiteral("DraftSpeed"), QStringLiteral("Duplexing"),
                                  QStringLiteral("PrintSpeed")};
        const QJsonObject result = QJsonDocument::fromJson(outcome.output).object();
        QCOMPARE(result[QStringLiteral("notApplied")].toObject().keys(), refused);
        for (const QString &name : refused)
            QVERIFY(outcome.errors.contains("embosserctl: not applied: " + name.toUtf8() + ": "));
        const QJsonObject differences =
            QJsonDocument::fromJson(
                run("diff quillon.json --json").output)[QStringLiteral("differences")]
                .toObject();
        QCOMPARE(differences.keys(), refused);
        QCOMPARE(run("get AlignLow").output, QByteArray("3\n"));
    }

    void triesAgainWhatAnotherSettingHadToMakeRoomFor()
    {
        ChildProcess simulator(QStringLiteral(SIMULATOR),
                               {QStringLiteral("--fault"), QStringLiteral("error:setAlignLow:1")});
        simulator.startAndReadLine();
        QCOMPARE(run("dump | sed 's/\"AlignLow\": 0/\"AlignLow\": 3/; "
                     "s/\"AlignHigh\": 0/\"AlignHigh\": 4/' > both.json")
                     .status,
                 0);
        const Outcome outcome = run("restore both.json");
        QCOMPARE(outcome.errors, QByteArray("embosserctl: 2 applied, 208 unchanged, 0 not "
                                            "applied\n"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(run("diff both.json --quiet").output, QByteArray());
    }

    void tellsOfAValueThatTheServiceHasNotKept()
    {
        RecordingService service(m_bus);
        service.start();
        service.setAnswer(QStringLiteral("getAlignLow"), Answer::value(5));
        QCOMPARE(
            run("restore - --json << end\n"
                "{\"format\": \"embosserctl configuration 1\", \"settings\": {\"AlignLow\": 7}}"
                "\nend")
                .errors,
            QByteArray("embosserctl: not applied: AlignLow: the service holds 5\n"));
    }

    void endsWhenTheServiceIsLost()
    {
        ChildProcess simulator(QStringLiteral(SIMULATOR),
                               {QStringLiteral("--fault"), QStringLiteral("crash:setBaudrate")});
        simulator.startAndReadLine();
        QCOMPARE(run("dump | sed 's/\"AlignLow\": 0/\"AlignLow\": 3/; "
                     "s/\"Baudrate\": 9600/\"Baudrate\": 19200/' > both.json")
                     .status,
                 0);
        const Outcome outcome = run("restore both.json");
        QCOMPARE(outcome.status, 3);
        // Neither can be read again.
        QVERIFY(outcome.errors.contains("not applied: AlignLow: "));
        QVERIFY(outcome.errors.contains("not applied: Baudrate: "));
        QVERIFY(outcome.errors.contains("not connected: "));
    }

private:
    static QStringList model(const char *name)
    {
        return {QStringLiteral("--model"), QString::fromLatin1(name)};
    }

    Outcome run(const char *arguments)
    {
        return m_shell.run(QStringLiteral("embosserctl ") + QString::fromUtf8(arguments));
    }

    PrivateBus m_bus;
    Shell m_shell;
};

QTEST_GUILESS_MAIN(TestToolRestore)
#include "tst_tool_restore.moc"
