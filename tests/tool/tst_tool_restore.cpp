// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "RecordingService.h"
#include "Shell.h"

#include <QtCore/QJsonArray>
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
        const Outcome outcome = run("restore quillon.json --json --force --with-identity");
        QCOMPARE(outcome.status, 1);

        // A Tolvek prints on one side only, and not as fast.
        const QStringList refused{QStringLiteral("DraftSpeed"), QStringLiteral("Duplexing"),
                                  QStringLiteral("PrintSpeed")};
        const QJsonObject result = QJsonDocument::fromJson(outcome.output).object();
        QCOMPARE(result[QStringLiteral("notApplied")].toObject().keys(), refused);
        for (const QString &name : refused) {
            QVERIFY(outcome.errors.contains("embosserctl: not applied: " + name.toUtf8() + ": "));
            const QString reason = result[QStringLiteral("notApplied")].toObject()[name].toString();
            QVERIFY2(!reason.startsWith(name), qPrintable(reason));
        }
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
        QVERIFY(outcome.errors.contains("embosserctl: 2 applied, "));
        QVERIFY(outcome.errors.endsWith(" unchanged, 0 not verified, 0 not applied\n"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(run("diff both.json --quiet").output, QByteArray());
    }

    void writesAgainWhatAnotherSettingHasUndone()
    {
        ChildProcess simulator(QStringLiteral(SIMULATOR), model("Dovrik"));
        simulator.startAndReadLine();
        QCOMPARE(run("set PaperSize A4").status, 0);
        QCOMPARE(run("set PaperWidth 150").status, 0);
        QCOMPARE(run("dump > own-width.json").status, 0);
        QCOMPARE(run("set PaperSize Legal").status, 0);
        QCOMPARE(run("set PaperWidth 150").status, 0);
        // The size is written, and thereby the width, which had the right value.
        QCOMPARE(run("restore own-width.json").status, 0);
        QCOMPARE(run("get PaperWidth").output, QByteArray("150\n"));
        QCOMPARE(run("diff own-width.json --quiet").output, QByteArray());
    }

    void tellsOfAValueThatTheServiceHasNotKept()
    {
        RecordingService service(m_bus);
        service.start();
        service.setAnswer(QStringLiteral("getAlignLow"), Answer::value(5));
        QVERIFY(
            restore(R"("AlignLow": 7)")
                .errors.startsWith("embosserctl: not applied: AlignLow: the service holds 5\n"));
    }

    void tellsWhatItHadWrittenWhenTheServiceWasLost()
    {
        ChildProcess simulator(QStringLiteral(SIMULATOR),
                               {QStringLiteral("--fault"), QStringLiteral("crash:setBaudrate")});
        simulator.startAndReadLine();
        QCOMPARE(run("dump | sed 's/\"AlignLow\": 0/\"AlignLow\": 3/; "
                     "s/\"Baudrate\": 9600/\"Baudrate\": 19200/; "
                     "s/\"Volume\": \"5\"/\"Volume\": \"6\"/' > three.json")
                     .status,
                 0);
        const Outcome outcome = run("restore three.json --json --with-identity");
        QCOMPARE(outcome.status, 3);
        QVERIFY(outcome.errors.contains("written, but not verified: AlignLow: not read back\n"));
        QVERIFY(outcome.errors.contains("not applied: Baudrate: "));
        QVERIFY(outcome.errors.contains("not applied: Volume: the service holds 5\n"));
        QVERIFY(outcome.errors.contains("not connected: "));

        const QJsonObject result = QJsonDocument::fromJson(outcome.output).object();
        QCOMPARE(result[QStringLiteral("unverified")].toObject().keys(),
                 QStringList{QStringLiteral("AlignLow")});
        QCOMPARE(result[QStringLiteral("notApplied")].toObject().keys(),
                 (QStringList{QStringLiteral("Baudrate"), QStringLiteral("Volume")}));
        QCOMPARE(result[QStringLiteral("applied")].toArray(), QJsonArray());
        const Outcome file = m_shell.run(QStringLiteral("cat three.json"));
        const QJsonValue settings =
            QJsonDocument::fromJson(file.output)[QStringLiteral("settings")];
        QCOMPARE(result[QStringLiteral("unchanged")], QJsonValue(settings.toObject().size() - 3));
    }

    void claimsNothingOfWhatItHasNotReached()
    {
        RecordingService service(m_bus);
        service.start();
        service.setAnswer(QStringLiteral("getAlignHigh"), Answer::value(1));
        // Once the answers before it are on their way.
        Answer exit = Answer::exit();
        exit.delayInMilliseconds = 200;
        service.setAnswer(QStringLiteral("getAlignLow"), exit);
        const Outcome outcome =
            restore(R"("AlignAdjustment": 1, "AlignHigh": 1, "AlignLow": 7, "Volume": "6")");
        QCOMPARE(outcome.status, 3);
        QVERIFY(outcome.errors.contains("not applied: 2 settings: not tried\n"));
        QVERIFY(outcome.errors.contains(
            "embosserctl: 0 applied, 1 unchanged, 0 not verified, 3 not applied\n"));
    }

    void tellsOfAValueThatCannotBeReadAgain()
    {
        RecordingService service(m_bus);
        service.start();
        service.setAnswer(QStringLiteral("getAlignLow"),
                          Answer::error(QStringLiteral("tests.Error"), QStringLiteral("no")));
        const Outcome outcome = restore(R"("AlignLow": 7)");
        QCOMPARE(outcome.status, 1);
        QVERIFY(outcome.errors.contains("written, but not verified: AlignLow: no\n"));
        QVERIFY(outcome.errors.contains("1 not verified, 0 not applied\n"));
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

    /// Restores the settings, given as they stand in a file.
    Outcome restore(const char *settings)
    {
        return m_shell.run(QStringLiteral("embosserctl restore - << end\n"
                                          "{\"format\": \"embosserctl configuration 1\", "
                                          "\"settings\": {%1}}\nend")
                               .arg(QString::fromUtf8(settings)));
    }

    PrivateBus m_bus;
    Shell m_shell;
};

QTEST_GUILESS_MAIN(TestToolRestore)
#include "tst_tool_restore.moc"
