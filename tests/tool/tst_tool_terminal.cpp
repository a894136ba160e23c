// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "RecordingService.h"
#include "Terminal.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTemporaryFile>
#include <QtTest/QTest>

#include <algorithm>
#include <csignal>
#include <utility>

namespace {

const QByteArray escape = "\x1b";
const QByteArray controlC = "\x03";
const QByteArray controlD = "\x04";
const QByteArray controlZ = "\x1a";

QStringList wordsOf(const QByteArray &shown)
{
    QStringList words = QString::fromUtf8(shown).simplified().split(QLatin1Char(' '));
    words.sort();
    return words;
}

/// A variable of the environment that is as before when the object goes.
class Variable
{
public:
    Variable(QByteArray name, const QByteArray &value)
        : m_name(std::move(name)), m_before(qgetenv(m_name.constData()))
    {
        qputenv(m_name.constData(), value);
    }
    ~Variable()
    {
        if (m_before.isNull())
            qunsetenv(m_name.constData());
        else
            qputenv(m_name.constData(), m_before);
    }
    Q_DISABLE_COPY(Variable)

private:
    QByteArray m_name;
    QByteArray m_before;
};

const QByteArray markingPager = "sed 's/^/paged: /'";

} // namespace

/// What is different when a person sits in front of the tool.
class TestToolTerminal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("TERM", "xterm");
        for (const char *variable : {"NO_COLOR", "EMBOSSERCTL_PAGER", "PAGER", "LESS"})
            qunsetenv(variable);
    }

    void init()
    {
        const bool needsTerminal = qstrcmp(QTest::currentTestFunction(), "keepsAPipePlain") != 0;
        if (needsTerminal && !Terminal::areThere()) {
            QTest::qSkip("this machine has no pseudo-terminal", __FILE__, __LINE__);
            return;
        }
        m_called.clear();
        m_service.start();
        m_service.setAnswer(QStringLiteral("getPrintSpeed"), Answer::value(QStringLiteral("Low")));
        m_service.setAnswer(QStringLiteral("getDraftSpeed"), Answer::value(2500));
        m_service.setAnswer(QStringLiteral("getFreeText"),
                            Answer::value(QStringLiteral("\x1b[2Jgone")));
    }

    void cleanup() { m_service.kill(); }

    void asksForThePassphraseWithoutEcho()
    {
        Terminal terminal({QStringLiteral("set"), QStringLiteral("Passphrase")});
        QVERIFY(terminal.shows("Passphrase: "));
        QTRY_VERIFY(!terminal.echoes());
        terminal.type("two words\n");
        const QByteArray shown = terminal.shownAtEnd();
        QVERIFY2(!shown.contains("two"), shown.constData());
        QCOMPARE(terminal.exitCode(), 0);

        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls[0].member, QStringLiteral("setPassphrase"));
        QCOMPARE(calls[0].arguments[0].toString(), QStringLiteral("two words"));
    }

    void bringsTheEchoBackWhenThePromptIsLeft()
    {
        Terminal terminal({QStringLiteral("set"), QStringLiteral("Passphrase")});
        QVERIFY(terminal.shows("Passphrase: "));
        QTRY_VERIFY(!terminal.echoes());
        terminal.type("half" + controlC);
        terminal.shownAtEnd();
        QCOMPARE(terminal.exitStatus(), QProcess::CrashExit); // by the signal, as a shell expects
        QVERIFY(terminal.echoes());
        QVERIFY(terminal.shownAtEnd().endsWith("\r\n"));
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void changesNothingWhenNothingIsEntered_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::newRow("Ctrl-D") << controlD;
        QTest::newRow("Enter") << QByteArray("\n");
    }

    void changesNothingWhenNothingIsEntered()
    {
        QFETCH(QByteArray, keys);
        Terminal terminal({QStringLiteral("set"), QStringLiteral("Passphrase")});
        QVERIFY(terminal.shows("Passphrase: "));
        QTRY_VERIFY(!terminal.echoes());
        terminal.type(keys);
        terminal.shownAtEnd();
        QCOMPARE(terminal.exitCode(), 2);
        QVERIFY(terminal.echoes());
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void takesControlZForNeitherASecretNorAnOrderToStop()
    {
        Terminal terminal({QStringLiteral("set"), QStringLiteral("Passphrase")});
        QVERIFY(terminal.shows("Passphrase: "));
        QTRY_VERIFY(!terminal.echoes());
        terminal.type("two" + controlZ + " words\n");
        terminal.shownAtEnd();
        QCOMPARE(terminal.exitCode(), 0);
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls[0].arguments[0].toString(), QStringLiteral("two words"));
    }

    void doesNotAskForThePassphraseInVain()
    {
        m_service.kill();
        Terminal terminal({QStringLiteral("set"), QStringLiteral("Passphrase")});
        const QByteArray shown = terminal.shownAtEnd();
        QVERIFY2(!shown.contains("Passphrase: "), shown.constData());
        QCOMPARE(terminal.exitCode(), 3);
    }

    void alignsAndColours()
    {
        Terminal terminal(getTwo());
        const QByteArray shown = terminal.shownAtEnd();
        QCOMPARE(shown, QByteArray("\x1b[1mPrintSpeed\x1b[0m  Low\r\n"
                                   "\x1b[1mDraftSpeed\x1b[0m  2500\r\n"));
    }

    void breaksProseIntoItsLines_data()
    {
        QTest::addColumn<int>("columns");
        for (const int columns : {80, 120, 200})
            QTest::addRow("%d", columns) << columns;
    }

    void breaksProseIntoItsLines()
    {
        QFETCH(const int, columns);
        const QStringList arguments{QStringLiteral("list"), QStringLiteral("--no-color")};
        const QByteArray whole = Terminal(arguments).shownAtEnd();
        const QByteArray shown = Terminal(arguments, columns).shownAtEnd();
        QVERIFY(whole.contains("getLineToLine("));
        int widest = 0;
        for (const QByteArray &line : shown.split('\n'))
            widest = std::max(widest, QString::fromUtf8(line).trimmed().size());
        QVERIFY2(widest <= columns, qPrintable(QString::number(widest)));
        // All the words are there.
        QCOMPARE(wordsOf(shown), wordsOf(whole));
    }

    void pagesThroughWhatIsHigherThanTheTerminal_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("line");
        const auto row = [](const char *arguments, const char *line) {
            QTest::newRow(arguments)
                << QString::fromLatin1(arguments).split(QLatin1Char(' ')) << QByteArray(line);
        };
        row("list clearLog", "paged: clearLog()");
        row("settings PrintSpeed", "paged: PrintSpeed");
        row("describe PrintSpeed", "paged: getPrintSpeed()");
        row("--help", "paged: Usage:");
        row("set --help", "paged: Usage:");
    }

    void pagesThroughWhatIsHigherThanTheTerminal()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, line);
        const QStringList plain = arguments + QStringList{QStringLiteral("--no-color")};
        const Variable pager("EMBOSSERCTL_PAGER", markingPager);
        const QByteArray fitting = Terminal(plain, 80, 200).shownAtEnd();
        QVERIFY2(!fitting.contains("paged: "), fitting.constData());
        // The prompt that follows takes a line as well.
        const int rows = fitting.count('\n');
        QCOMPARE(Terminal(plain, 80, rows + 1).shownAtEnd(), fitting);
        const QByteArray shown = Terminal(plain, 80, rows).shownAtEnd();
        QVERIFY2(shown.contains(line), shown.constData());
        QCOMPARE(shown.count("paged: "), rows);
        QCOMPARE(QByteArray(shown).replace("paged: ", ""), fitting);
    }

    void countsTheLinesThatATerminalBreaks()
    {
        const Variable pager("EMBOSSERCTL_PAGER", markingPager);
        // Colours take no room.
        const QStringList list{QStringLiteral("list"), QStringLiteral("clearLog")};
        const int rows = Terminal(list, 80, 200).shownAtEnd().count('\n') + 1;
        QVERIFY(!Terminal(list, 80, rows).shownAtEnd().contains("paged: "));
        // The name of the operation is wider.
        QVERIFY(Terminal(list, 5, rows).shownAtEnd().contains("paged: "));
    }

    void startsNoPager_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("command");
        const auto row = [](const char *name, const char *variable, const char *value,
                            const char *command) {
            QTest::newRow(name) << QByteArray(variable) << QByteArray(value)
                                << QString::fromLatin1(command);
        };
        row("dumb terminal", "TERM", "dumb", "embosserctl list clearLog");
        row("--no-pager", "TERM", "xterm", "embosserctl list clearLog --no-pager");
        row("JSON", "TERM", "xterm", "embosserctl list clearLog --json");
        row("no terminal to type at", "TERM", "xterm", "embosserctl list clearLog </dev/null");
        row("no terminal to read from", "TERM", "xterm", "embosserctl list clearLog | cat");
        row("what is short", "TERM", "xterm", "embosserctl get PrintSpeed");
        row("cat", "EMBOSSERCTL_PAGER", "cat", "embosserctl list clearLog");
        row("an empty text", "EMBOSSERCTL_PAGER", "", "embosserctl list clearLog");
        row("a pager that is missing", "EMBOSSERCTL_PAGER", "/nowhere/pager",
            "embosserctl list clearLog 2>/dev/null");
    }

    void startsNoPager()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, value);
        QFETCH(QString, command);
        const Variable pager("PAGER", markingPager);
        const Variable changed(variable, value);
        const QString line = QStringLiteral("PATH='" COMMAND_DIRECTORY "':$PATH; %1").arg(command);
        Terminal terminal(QStringLiteral("sh"), {QStringLiteral("-c"), line}, 80, 1);
        const QByteArray shown = terminal.shownAtEnd();
        QVERIFY2(shown.contains("clearLog") || shown.contains("Low"), shown.constData());
        QVERIFY2(!shown.contains("paged: "), shown.constData());
        QCOMPARE(terminal.exitCode(), 0);
    }

    void prefersThePagerOfItsOwn()
    {
        const Variable others("PAGER", "sed 's/^/other: /'");
        QVERIFY(Terminal(listOne(), 80, 1).shownAtEnd().contains("other: "));
        const Variable own("EMBOSSERCTL_PAGER", markingPager);
        QVERIFY(Terminal(listOne(), 80, 1).shownAtEnd().contains("paged: "));
    }

    void hasLessShowColours()
    {
        const Variable pager("PAGER", "echo \"LESS is $LESS\"; cat");
        QVERIFY(Terminal(listOne(), 80, 1).shownAtEnd().startsWith("LESS is FRX\r\n"));
        const Variable less("LESS", "i");
        QVERIFY(Terminal(listOne(), 80, 1).shownAtEnd().startsWith("LESS is i\r\n"));
    }

    void keepsItsStatusWhateverThePagerDoes_data()
    {
        QTest::addColumn<QByteArray>("pager");
        QTest::newRow("it reads no more") << QByteArray("head -n 1");
        QTest::newRow("it fails") << QByteArray("head -n 1; exit 3");
        QTest::newRow("it is killed") << QByteArray("head -n 1; kill -9 $$");
    }

    void keepsItsStatusWhateverThePagerDoes()
    {
        QFETCH(QByteArray, pager);
        const Variable changed("PAGER", pager);
        // Long enough for a pipe to be full.
        Terminal terminal({QStringLiteral("list"), QStringLiteral("--no-color")}, 80, 20);
        const QByteArray shown = terminal.shownAtEnd();
        QCOMPARE(shown.count('\n'), 1);
        QVERIFY2(!shown.contains("embosserctl"), shown.constData());
        QCOMPARE(terminal.exitStatus(), QProcess::NormalExit);
        QCOMPARE(terminal.exitCode(), 0);
    }

    void leavesControlCToThePager()
    {
        const Variable changed("PAGER", "caught=; trap 'caught=yes' INT; echo paging; "
                                        "until [ $caught ]; do sleep 0.1; done; cat");
        Terminal terminal(listOne(), 80, 1);
        QVERIFY(terminal.shows("paging\r\n"));
        terminal.type(controlC);
        const QByteArray shown = terminal.shownAtEnd();
        QVERIFY2(shown.contains("clearLog()"), shown.constData());
        QCOMPARE(terminal.exitStatus(), QProcess::NormalExit);
        QCOMPARE(terminal.exitCode(), 0);
    }

    void leavesTheColoursOut_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QStringList>("options");
        QTest::newRow("NO_COLOR") << QByteArray("NO_COLOR") << QByteArray("1") << QStringList();
        QTest::newRow("dumb terminal") << QByteArray("TERM") << QByteArray("dumb") << QStringList();
        QTest::newRow("--no-color") << QByteArray("TERM") << QByteArray("xterm")
                                    << QStringList{QStringLiteral("--no-color")};
    }

    void leavesTheColoursOut()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, value);
        QFETCH(QStringList, options);
        const Variable changed(variable, value);
        const QByteArray shown = Terminal(getTwo() + options).shownAtEnd();
        QCOMPARE(shown, QByteArray("PrintSpeed  Low\r\nDraftSpeed  2500\r\n"));
    }

    void isTerseOnATerminalAsElsewhere()
    {
        Terminal terminal(getTwo() +
                          QStringList{QStringLiteral("FreeText"), QStringLiteral("--terse")});
        QCOMPARE(terminal.shownAtEnd(),
                 QByteArray("PrintSpeed:Low\r\nDraftSpeed:2500\r\nFreeText:\\x1b[2Jgone\r\n"));
    }

    void isNotToldWhatToDoByAValue()
    {
        Terminal terminal({QStringLiteral("get"), QStringLiteral("FreeText")});
        QCOMPARE(terminal.shownAtEnd(), QByteArray("\\x1b[2Jgone\r\n"));
    }

    void isNotToldWhatToDoByAHeading()
    {
        m_service.kill();
        ChildProcess simulator(QStringLiteral(SIMULATOR), {});
        simulator.startAndReadLine();
        Terminal({QStringLiteral("set"), QStringLiteral("AlignLow"), QStringLiteral("3"),
                  QStringLiteral("--collection"), QStringLiteral("\x1b]0;gone\x07")})
            .shownAtEnd();
        const QByteArray shown = Terminal({QStringLiteral("report")}).shownAtEnd();
        QVERIFY2(shown.contains("\\x1b]0;gone\\x07"), shown.constData());
        QVERIFY2(!shown.contains("\x1b]"), shown.constData());
    }

    void showsProgress()
    {
        const QStringList dump{QStringLiteral("dump")};
        QVERIFY(Terminal(dump).shownAtEnd().contains("[####"));
        QVERIFY(!Terminal(dump + QStringList{QStringLiteral("--quiet")})
                     .shownAtEnd()
                     .contains("[####"));
    }

    void endsMonitorWithCtrlC()
    {
        Terminal terminal({QStringLiteral("monitor")});
        QVERIFY(terminal.shows("connected\r\n"));
        terminal.type(controlC);
        terminal.shownAtEnd();
        QCOMPARE(terminal.exitStatus(), QProcess::NormalExit);
        QCOMPARE(terminal.exitCode(), 0);
    }

    void leavesNoProgressBehindWhenInterrupted()
    {
        m_service.setAnswer(Answer::silence());
        Terminal terminal({QStringLiteral("dump")});
        QVERIFY(terminal.shows("["));
        terminal.type(controlC);
        QVERIFY(terminal.shows("^C"));
        m_service.kill();
        QVERIFY(terminal.shownAtEnd().endsWith("\r\x1b[K"));
        QCOMPARE(terminal.exitStatus(), QProcess::CrashExit);
        QCOMPARE(terminal.exitCode(), SIGINT);
    }

    void asksNoMoreWhenInterrupted_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("dump") << QStringList{QStringLiteral("dump")};
        QTest::newRow("diff") << QStringList{QStringLiteral("diff"), QStringLiteral("live"),
                                             QStringLiteral("collection:other")};
    }

    void asksNoMoreWhenInterrupted()
    {
        QFETCH(QStringList, arguments);
        m_service.setAnswer(Answer::silence());
        m_service.setAnswer(QStringLiteral("getArchitecture"), Answer::value(QStringLiteral("x")));
        Terminal terminal(arguments);
        // Those that are answered, getDraftSpeed among them, and those that wait together.
        int arrived = 0;
        QTRY_COMPARE_WITH_TIMEOUT(arrived += m_service.takeCalls().size(), 2 + 64, 30000);
        terminal.type(controlC);
        terminal.shownAtEnd();
        QCOMPARE(terminal.exitStatus(), QProcess::CrashExit);
        QCOMPARE(terminal.exitCode(), SIGINT);
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void goesOnIgnoringASignalThatWasIgnored()
    {
        m_service.setAnswer(QStringLiteral("getRegion"), delayed());
        Terminal terminal(
            QStringLiteral("sh"),
            {QStringLiteral("-c"),
             QStringLiteral("trap '' INT; exec " COMMAND_DIRECTORY "/embosserctl dump")});
        QTRY_VERIFY(isCalled(QStringLiteral("getRegion")));
        terminal.type(controlC);
        const QByteArray shown = terminal.shownAtEnd();
        QCOMPARE(terminal.exitStatus(), QProcess::NormalExit);
        QVERIFY2(shown.contains("\"leftOut\""), shown.constData());
    }

    void tellsWhatItHasRestoredWhenInterrupted_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("a wish to terminate") << SIGTERM;
    }

    void tellsWhatItHasRestoredWhenInterrupted()
    {
        QFETCH(int, signal);
        QTemporaryFile file;
        QVERIFY(file.open());
        file.write("{\"format\": \"embosserctl configuration 1\", \"settings\": "
                   "{\"AlignAdjustment\": 1, \"AlignHigh\": 2, \"AlignLow\": 3}}");
        file.close();
        for (const char *getter : {"getAlignAdjustment", "getAlignHigh", "getAlignLow"})
            m_service.setAnswer(QString::fromLatin1(getter), Answer::value(0));
        m_service.setAnswer(QStringLiteral("setAlignHigh"), Answer::silence());

        Terminal terminal({QStringLiteral("restore"), file.fileName()});
        QTRY_VERIFY(isCalled(QStringLiteral("setAlignHigh")));
        ::kill(pid_t(terminal.processId()), signal);
        m_service.kill();
        const QByteArray shown = terminal.shownAtEnd();
        QVERIFY2(
            shown.contains("\r\x1b[Kembosserctl: written, but not verified: AlignAdjustment: not "
                           "read back\r\n"),
            shown.constData());
        QVERIFY2(shown.contains("\r\nembosserctl: not applied: AlignHigh: "), shown.constData());
        QVERIFY2(shown.endsWith(
                     "\r\nembosserctl: not applied: AlignLow: the service holds 0\r\n"
                     "embosserctl: 0 applied, 0 unchanged, 1 not verified, 2 not applied\r\n"),
                 shown.constData());
        QCOMPARE(terminal.exitStatus(), QProcess::CrashExit); // by the signal, as a shell expects
        QCOMPARE(terminal.exitCode(), signal);
    }

    void keepsAnEditedTextWhenTheServiceHasLeft()
    {
        const QTemporaryDir directory;
        const Variable temporary("TMPDIR", directory.path().toUtf8());
        const Variable editor("EDITOR", "echo editing; read key; sed -i 's/2500/1600/'");
        Terminal terminal({QStringLiteral("edit"), QStringLiteral("DraftSpeed")});
        QVERIFY(terminal.shows("editing\r\n"));
        m_service.kill();
        terminal.type("\n");
        const QByteArray shown = terminal.shownAtEnd();
        QCOMPARE(terminal.exitCode(), 3);
        const QFileInfoList files = QDir(directory.path()).entryInfoList(QDir::Files);
        QCOMPARE(files.size(), 1);
        QVERIFY2(shown.contains("the edited text is in " + files[0].filePath().toUtf8() + "\r\n"),
                 shown.constData());
        QFile file(files[0].filePath());
        QVERIFY(file.open(QFile::ReadOnly));
        QVERIFY(file.readAll().endsWith("\nDraftSpeed = 1600\n"));
    }

    void keepsAPipePlain()
    {
        ChildProcess tool(QStringLiteral(EMBOSSERCTL), getTwo());
        tool.start();
        QVERIFY(tool.waitForFinished());
        const QByteArray output = tool.readAllStandardOutput();
        QVERIFY(!output.contains(escape));
        QCOMPARE(output, QByteArray("PrintSpeed\tLow\nDraftSpeed\t2500\n"));
    }

private:
    static QStringList getTwo()
    {
        return {QStringLiteral("get"), QStringLiteral("PrintSpeed"), QStringLiteral("DraftSpeed")};
    }

    static QStringList listOne() { return {QStringLiteral("list"), QStringLiteral("clearLog")}; }

    /// An answer that leaves time to interrupt the tool while it waits.
    static Answer delayed()
    {
        Answer answer = Answer::value(QStringLiteral("x"));
        answer.delayInMilliseconds = 3000;
        return answer;
    }

    bool isCalled(const QString &member)
    {
        for (const RecordedCall &call : m_service.takeCalls())
            m_called.append(call.member);
        return m_called.contains(member);
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    QStringList m_called;
};

QTEST_GUILESS_MAIN(TestToolTerminal)
#include "tst_tool_terminal.moc"
