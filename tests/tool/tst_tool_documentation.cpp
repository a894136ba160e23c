// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "Shell.h"
#include "Terminal.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

namespace {

const QString bashFile = QStringLiteral(GENERATED_DIRECTORY "/bash/embosserctl");
const QString zshDirectory = QStringLiteral(GENERATED_DIRECTORY "/zsh");
const QString simulatorDirectory = QStringLiteral(SIMULATOR_GENERATED_DIRECTORY);

} // namespace

/// The manual page and the completions, as they are installed.
class TestToolDocumentation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_simulator.startAndReadLine();
        // A busy machine may take more time than the completions give.
        QFile patient(m_patient.filePath(QStringLiteral("embosserctl")));
        QVERIFY(patient.open(QFile::WriteOnly));
        patient.write("#!/bin/sh\n"
                      "case $1 in --timeout) shift 2; set -- --timeout 60 \"$@\" ;; esac\n"
                      "exec '" COMMAND_DIRECTORY "/embosserctl' \"$@\"\n");
        QVERIFY(patient.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    }

    void whatTheReadmeShowsCanBeTyped_data()
    {
        QTest::addColumn<QString>("line");
        QFile readme(QStringLiteral(README));
        QVERIFY(readme.open(QFile::ReadOnly));
        const QString text = QString::fromUtf8(readme.readAll());
        // Behind two spaces stands what it does.
        const QRegularExpression line(QStringLiteral("^    (embosserctl .*?)  +.*$"),
                                      QRegularExpression::MultilineOption);
        for (auto l = line.globalMatch(text); l.hasNext();) {
            const QString command = l.next().captured(1);
            QTest::newRow(qPrintable(command)) << command;
        }
    }

    /// In their order: some need what those before them have written.
    void whatTheReadmeShowsCanBeTyped()
    {
        QFETCH(QString, line);
        const Outcome outcome = m_shell.run(QStringLiteral("EDITOR=true ") + line);
        QCOMPARE(outcome.status, 0);
    }

    void manualPageIsWellFormed_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QVector<QByteArray>>("parts");
        QTest::newRow("tool") << QStringLiteral(GENERATED_DIRECTORY "/man/embosserctl.1")
                              << QVector<QByteArray>{"NAME\n",
                                                     "embosserctl call OPERATION [ARGUMENT...]",
                                                     "embosserctl set NAME [VALUE] [--flag]",
                                                     "--collection ID",
                                                     "EXIT STATUS",
                                                     "NO_COLOR",
                                                     "embosser-simulator(1)"};
        QTest::newRow("simulator")
            << simulatorDirectory + QStringLiteral("/man/embosser-simulator.1")
            << QVector<QByteArray>{
                   "NAME\n",     "--state FILE", "wrong-type",    "Faults.Inject(ssus",
                   "MarrenPlus", "EXIT STATUS",  "embosserctl(1)"};
    }

    void manualPageIsWellFormed()
    {
        QFETCH(QString, file);
        QFETCH(QVector<QByteArray>, parts);
        const Outcome outcome =
            m_shell.run(QStringLiteral("groff -man -ww -Tutf8 -P-cbou '%1'").arg(file));
        QCOMPARE(outcome.errors, QByteArray());
        for (const QByteArray &part : parts)
            QVERIFY2(outcome.output.contains(part), part);
        const Outcome lint = m_shell.run(QStringLiteral("mandoc -T lint '%1'").arg(file));
        QCOMPARE(lint.errors + lint.output, QByteArray());
        QCOMPARE(lint.status, 0);
    }

    void completionsAreValid_data()
    {
        QTest::addColumn<QString>("bash");
        QTest::addColumn<QString>("zsh");
        QTest::newRow("tool") << bashFile << zshDirectory + QStringLiteral("/_embosserctl");
        QTest::newRow("simulator")
            << simulatorDirectory + QStringLiteral("/bash/embosser-simulator")
            << simulatorDirectory + QStringLiteral("/zsh/_embosser-simulator");
    }

    void completionsAreValid()
    {
        QFETCH(QString, bash);
        QFETCH(QString, zsh);
        for (const QString &command :
             {QStringLiteral("bash -n '%1'").arg(bash), QStringLiteral("zsh -n '%1'").arg(zsh)}) {
            const Outcome outcome = m_shell.run(command);
            QCOMPARE(outcome.errors, QByteArray());
            QCOMPARE(outcome.status, 0);
        }
    }

    void bashCompletesTheSimulatorsOptions_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QByteArray>("completions");
        QTest::newRow("options") << QStringLiteral("--li") << QByteArray("--list-models\n");
        QTest::newRow("models") << QStringLiteral("--model Marr")
                                << QByteArray("Marren\nMarrenPlus\n");
        QTest::newRow("files") << QStringLiteral("--profile conf")
                               << QByteArray("config one.json\n");
        QTest::newRow("folders") << QStringLiteral("--usb st") << QByteArray("stick\n");
        QTest::newRow("faults") << QStringLiteral("--fault no") << QByteArray("no-answer:\n");
    }

    void bashCompletesTheSimulatorsOptions()
    {
        QFETCH(QString, words);
        QFETCH(QByteArray, completions);
        const Outcome outcome = m_shell.run(
            QStringLiteral("touch 'config one.json' stack; mkdir -p stick; "
                           "source '%1/bash/embosser-simulator'; "
                           "COMP_WORDS=(embosser-simulator %2); "
                           "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _embosser_simulator; "
                           "for reply in \"${COMPREPLY[@]}\"; do echo \"$reply\"; done")
                .arg(simulatorDirectory, words),
            QStringLiteral("bash"));
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.output, completions);
    }

    void bashCompletes_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QByteArray>("completions");
        const auto row = [](const char *name, const char *words, const char *completions) {
            QTest::newRow(name) << QString::fromLatin1(words) << QByteArray(completions);
        };
        row("commands", "embosserctl de", "describe\n");
        row("options", "embosserctl get --qu", "--quiet\n");
        row("own options", "embosserctl set PrintSpeed x --fl", "--flag\n");
        row("no options of others", "embosserctl get --fl", "");
        row("readable settings", "embosserctl get PrintSp", "PrintSpeed\n");
        row("several settings", "embosserctl get PrintSpeed FirmwareD", "FirmwareDate\n");
        row("writable settings", "embosserctl set KeepF", "KeepFormat\n");
        row("nothing that cannot be written", "embosserctl set FirmwareD", "");
        row("no value", "embosserctl set KeepFormat KeepF", "");
        row("operations", "embosserctl call clearL", "clearLog\n");
        row("operations to describe", "embosserctl describe getKeepF", "getKeepFormat\n");
        row("settings to describe", "embosserctl describe KeepF", "KeepFormat\n");
        row("value lists", "embosserctl values Baud", "BaudRate\n");
        row("after options", "embosserctl --json --collection other get PrintSp", "PrintSpeed\n");
        row("after an option with =", "embosserctl --collection = other get PrintSp",
            "PrintSpeed\n");
        row("no collection after =", "embosserctl get --collection = PrintSp", "");
        row("after a collection", "embosserctl diff collection : other conf", "config one.json\n");
        row("no collection after :", "embosserctl diff collection : conf", "");
        row("no collection", "embosserctl get --collection PrintSp", "");
        row("no value of an own option", "embosserctl restore --except conf", "");
        row("files after an own option", "embosserctl restore --except Model conf",
            "config one.json\n");
        row("names after an own option", "embosserctl restore --except KeepF", "KeepFormat\n");
        row("names after an own option with =", "embosserctl restore --except = KeepF",
            "KeepFormat\n");
        row("the form of an option", "embosserctl --json = ''", "short\n");
        row("nothing for an option with a form", "embosserctl --json stat", "status\n");
        row("after a form", "embosserctl --json = short stat", "status\n");
        row("after a short option", "embosserctl -c other get PrintSp", "PrintSpeed\n");
        row("values", "embosserctl set HammerImpact ''", "Soft\nNormal\nHard\n");
        row("values of an enumeration", "embosserctl set FormatOrientation La", "Landscape\n");
        row("values that are names", "embosserctl set PaperSize Leg", "Legal\n");
        row("truth", "embosserctl set SpeakCustomPaper ''", "yes\nno\n");
        row("what is assigned", "embosserctl set HammerImpact =", "Soft\nNormal\nHard\n");
        row("the beginning of what is assigned", "embosserctl set HammerImpact = H", "Hard\n");
        row("another name to assign to", "embosserctl set HammerImpact = Hard FormatOr",
            "FormatOrientation=\n");
        row("what is assigned to another",
            "embosserctl set HammerImpact = Hard FormatOrientation = La", "Landscape\n");
        row("a space", "embosserctl set StandbyPosition T", "Tear\\ off\n");
        row("no secret", "embosserctl set Passphrase ''", "");
        row("nothing of another bus", "embosserctl -H x set HammerImpact ''", "");
        row("papers", "embosserctl paper Leg", "Legal\n");
        row("one paper", "embosserctl paper Legal Leg", "");
        row("papers in a call", "embosserctl call getWidth Leg", "Legal\n");
        row("an enumeration in a call", "embosserctl call getValueList Baud", "BaudRate\n");
        row("settings in a call", "embosserctl call getMaxValue KeepF", "KeepFormat\n");
        row("the value in a call", "embosserctl call setHammerImpact H", "Hard\n");
        row("files", "embosserctl restore conf", "config one.json\n");
        row("files or the service", "embosserctl diff li", "live\n");
    }

    void bashCompletes()
    {
        QFETCH(QString, words);
        QFETCH(QByteArray, completions);
        const Outcome outcome = bashCompletions(words);
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.output, completions);
    }

    void completesNothingWithoutTheService()
    {
        const QString words = QStringLiteral("embosserctl set HammerImpact H");
        const Outcome outcome = bashCompletions(
            words, QStringLiteral("export DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere"));
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.output, QByteArray());
    }

    void bashCompletesOnATerminal_data()
    {
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<QByteArray>("completed");
        QTest::newRow("the form of an option") << QByteArray("embosserctl status --json=s\t")
                                               << QByteArray("<embosserctl status --json=short >");
        QTest::newRow("values") << QByteArray("embosserctl set HammerImpact H\t")
                                << QByteArray("<embosserctl set HammerImpact Hard >");
        QTest::newRow("values after =") << QByteArray("embosserctl set HammerImpact=H\t")
                                        << QByteArray("<embosserctl set HammerImpact=Hard >");
        QTest::newRow("another setting")
            << QByteArray("embosserctl set HammerImpact=Hard FormatOrient\t")
            << QByteArray("<embosserctl set HammerImpact=Hard FormatOrientation=>");
        QTest::newRow("a space") << QByteArray("embosserctl set StandbyPosition T\t")
                                 << QByteArray("<embosserctl set StandbyPosition Tear\\ off >");
        QTest::newRow("a quoted space")
            << QByteArray("embosserctl set StandbyPosition=\"T\t")
            << QByteArray("<embosserctl set StandbyPosition=\"Tear off\" >");
    }

    void bashCompletesOnATerminal()
    {
        if (!Terminal::areThere()) {
            QTest::qSkip("this machine has no pseudo-terminal", __FILE__, __LINE__);
            return;
        }
        QFETCH(QByteArray, typed);
        QFETCH(QByteArray, completed);
        Terminal terminal(QStringLiteral("bash"), {QStringLiteral("--noprofile"),
                                                   QStringLiteral("--norc"), QStringLiteral("-i")});
        complete(&terminal,
                 "PATH='" + m_patient.path().toUtf8() + "':$PATH; source '" + bashFile.toUtf8() +
                     R"('; bind -x '"\C-g": echo "<$READLINE_LINE>"')",
                 typed, completed);
    }

    void zshCompletes_data()
    {
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<QByteArray>("completed");
        QTest::newRow("commands") << QByteArray("embosserctl desc\t")
                                  << QByteArray("<embosserctl describe >");
        QTest::newRow("settings") << QByteArray("embosserctl get PrintSp\t")
                                  << QByteArray("<embosserctl get PrintSpeed >");
        QTest::newRow("several settings")
            << QByteArray("embosserctl get PrintSpeed FirmwareD\t")
            << QByteArray("<embosserctl get PrintSpeed FirmwareDate >");
        QTest::newRow("own options") << QByteArray("embosserctl set KeepFormat 1 --fl\t")
                                     << QByteArray("<embosserctl set KeepFormat 1 --flag >");
        QTest::newRow("operations") << QByteArray("embosserctl --json call clearL\t")
                                    << QByteArray("<embosserctl --json call clearLog >");
        QTest::newRow("after an option")
            << QByteArray("embosserctl --collection other get PrintSp\t")
            << QByteArray("<embosserctl --collection other get PrintSpeed >");
        QTest::newRow("after an option with =")
            << QByteArray("embosserctl --collection=other get PrintSp\t")
            << QByteArray("<embosserctl --collection=other get PrintSpeed >");
        QTest::newRow("after an own option with =")
            << QByteArray("embosserctl restore --except=Model conf\t")
            << QByteArray("<embosserctl restore --except=Model config\\ one.json >");
        QTest::newRow("files or the service")
            << QByteArray("embosserctl diff li\t") << QByteArray("<embosserctl diff live");
        QTest::newRow("files instead of the service")
            << QByteArray("embosserctl diff live conf\t")
            << QByteArray("<embosserctl diff live config\\ one.json >");
        QTest::newRow("value lists") << QByteArray("embosserctl values Baud\t")
                                     << QByteArray("<embosserctl values BaudRate >");
        QTest::newRow("values") << QByteArray("embosserctl set HammerImpact H\t")
                                << QByteArray("<embosserctl set HammerImpact Hard >");
        QTest::newRow("values after =") << QByteArray("embosserctl set HammerImpact=H\t")
                                        << QByteArray("<embosserctl set HammerImpact=Hard >");
        QTest::newRow("another setting")
            << QByteArray("embosserctl set HammerImpact=Hard PrintSp\t")
            << QByteArray("<embosserctl set HammerImpact=Hard PrintSpeed=>");
        QTest::newRow("values of another setting")
            << QByteArray("embosserctl -c one set HammerImpact=Hard StandbyPosition=T\t")
            << QByteArray("<embosserctl -c one set HammerImpact=Hard StandbyPosition=Tear\\ off >");
        QTest::newRow("truth") << QByteArray("embosserctl set SpeakCustomPaper y\t")
                               << QByteArray("<embosserctl set SpeakCustomPaper yes >");
        QTest::newRow("nothing from another bus")
            << QByteArray("embosserctl --host x set HammerImpact H\t")
            << QByteArray("<embosserctl --host x set HammerImpact H>");
        QTest::newRow("nothing from another bus, in short")
            << QByteArray("embosserctl -H x set HammerImpact H\t")
            << QByteArray("<embosserctl -H x set HammerImpact H>");
        QTest::newRow("papers") << QByteArray("embosserctl paper Leg\t")
                                << QByteArray("<embosserctl paper Legal >");
        QTest::newRow("papers in a call") << QByteArray("embosserctl call getWidth Leg\t")
                                          << QByteArray("<embosserctl call getWidth Legal >");
        QTest::newRow("exceptions") << QByteArray("embosserctl restore --except=HammerI\t")
                                    << QByteArray("<embosserctl restore --except=HammerImpact >");
        QTest::newRow("simulator's options") << QByteArray("embosser-simulator --li\t")
                                             << QByteArray("<embosser-simulator --list-models >");
        QTest::newRow("models") << QByteArray("embosser-simulator --model Tolvek_\t")
                                << QByteArray("<embosser-simulator --model Tolvek_V5 >");
        QTest::newRow("profiles") << QByteArray("embosser-simulator --profile conf\t")
                                  << QByteArray(
                                         "<embosser-simulator --profile config\\ one.json >");
        QTest::newRow("faults") << QByteArray("embosser-simulator --fault wro\t")
                                << QByteArray("<embosser-simulator --fault wrong-type:");
    }

    void zshCompletes()
    {
        if (!Terminal::areThere()) {
            QTest::qSkip("this machine has no pseudo-terminal", __FILE__, __LINE__);
            return;
        }
        QFETCH(QByteArray, typed);
        QFETCH(QByteArray, completed);
        QTemporaryDir directory;
        QFile file(directory.filePath(QStringLiteral("config one.json")));
        QVERIFY(file.open(QFile::WriteOnly));
        Terminal terminal(QStringLiteral("zsh"), {QStringLiteral("-f"), QStringLiteral("-i")});
        complete(&terminal,
                 "cd '" + directory.path().toUtf8() + "'; path=('" + m_patient.path().toUtf8() +
                     "' $path)" + "; fpath=('" + zshDirectory.toUtf8() + "' '" +
                     simulatorDirectory.toUtf8() +
                     "/zsh' $fpath); autoload -U compinit; compinit -u -D; PS1=; "
                     "show() { print -r -- \"<$BUFFER>\" }; zle -N show; bindkey '^G' show",
                 typed, completed);
    }

private:
    Outcome bashCompletions(const QString &words, const QString &preparation = QStringLiteral(":"))
    {
        return m_shell.run(
            QStringLiteral("%1; PATH='%2':$PATH; touch 'config one.json'; source '%3'; "
                           "COMP_WORDS=(%4); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _embosserctl; "
                           "for reply in \"${COMPREPLY[@]}\"; do echo \"$reply\"; done")
                .arg(preparation, m_patient.path(), bashFile, words),
            QStringLiteral("bash"));
    }

    /// Types into a shell that is ready to show its line when Ctrl-G is pressed, and waits for it.
    static void complete(Terminal *terminal, const QByteArray &preparation, const QByteArray &typed,
                         const QByteArray &completed)
    {
        terminal->type(preparation + "; echo re''ady\n");
        QVERIFY(terminal->shows("ready\r\n"));
        terminal->type(typed + '\a');
        QVERIFY2(terminal->shows(completed), completed.constData());
    }

    Shell m_shell;
    QTemporaryDir m_patient;
    PrivateBus m_bus;
    ChildProcess m_simulator{
        QStringLiteral(SIMULATOR),
        {QStringLiteral("--profile"), QStringLiteral(GOLDEN_DIRECTORY "/embosser.json")}};
};

QTEST_GUILESS_MAIN(TestToolDocumentation)
#include "tst_tool_documentation.moc"
