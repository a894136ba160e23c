// SPDX-License-Identifier: MIT

#include "Shell.h"
#include "Terminal.h"

#include <QtCore/QFile>
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
        row("files", "embosserctl restore conf", "config one.json\n");
        row("files or the service", "embosserctl diff li", "live\n");
    }

    void bashCompletes()
    {
        QFETCH(QString, words);
        QFETCH(QByteArray, completions);
        const Outcome outcome =
            m_shell.run(QStringLiteral("touch 'config one.json'; source '%1'; COMP_WORDS=(%2); "
                                       "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _embosserctl; "
                                       "for reply in \"${COMPREPLY[@]}\"; do echo \"$reply\"; done")
                            .arg(bashFile, words),
                        QStringLiteral("bash"));
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.output, completions);
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
        terminal.type("cd '" + directory.path().toUtf8() + "'; fpath=('" + zshDirectory.toUtf8() +
                      "' '" + simulatorDirectory.toUtf8() +
                      "/zsh' $fpath); autoload -U compinit; "
                      "compinit -u -D; PS1=; show() { print -r -- \"<$BUFFER>\" }; zle -N show; "
                      "bindkey '^X' show; print re''ady\n");
        QVERIFY(terminal.shows("ready"));
        terminal.type(typed + "\x18");
        QVERIFY(terminal.shows(completed));
    }

private:
    Shell m_shell;
};

QTEST_GUILESS_MAIN(TestToolDocumentation)
#include "tst_tool_documentation.moc"
