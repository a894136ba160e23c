// SPDX-License-Identifier: MIT

#include "commandline/Arguments.h"
#include "commandline/CommandLine.h"
#include "commands/Commands.h"

#include <QtTest/QTest>

using namespace tool;

namespace {

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// Kept: a command line points to the one that it names.
const QVector<Command> &commands()
{
    static const QVector<Command> all = allCommands();
    return all;
}

const QVector<Option> &knownOptions()
{
    static const QVector<Option> options{
        {QStringLiteral("switch"), {}, {}, false, QLatin1Char('s')},
        {QStringLiteral("other"), {}, {}, false, QLatin1Char('o')},
        {QStringLiteral("value"), QStringLiteral("X"), {}, true, QLatin1Char('v')},
    };
    return options;
}

/// What is wrong with a command line.
QString refusal(const QStringList &arguments)
{
    try {
        parseCommandLine(QStringList{QStringLiteral("embosserctl")} + arguments, commands());
    } catch (const Failure &failure) {
        return failure.status() == ExitStatus::Usage ? failure.message()
                                                     : QStringLiteral("another status");
    }
    return {};
}

} // namespace

/// The arguments of the program, taken apart.
class TestToolCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOptionsFromOtherArguments_data()
    {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QStringList>("positional");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("values");
        const auto row = [](const char *given, const char *positional, const char *names,
                            const char *values) {
            QTest::newRow(given) << words(given) << words(positional) << words(names)
                                 << words(values);
        };
        row("a b", "a b", "", "");
        row("a --switch b", "a b", "switch", "");
        row("--switch --other", "", "switch other", "");
        row("--value x a", "a", "value", "x");
        row("--value=x a", "a", "value", "x");
        row("--value=a=b", "", "value", "a=b");
        row("--value=x --value y", "", "value", "x y");
        row("--value --switch", "", "value", "--switch");
        row("--value -- a", "a", "value", "--");
        row("--value -3", "", "value", "-3");
        row("-s -o", "", "switch other", "");
        row("-so a", "a", "switch other", "");
        row("-vx", "", "value", "x");
        row("-sv x a", "a", "switch value", "x");
        row("-- --switch -s", "--switch -s", "", "");
        row("a -- -- b", "a -- b", "", "");
        row("-3 -.5 -1e3", "-3 -.5 -1e3", "", "");
        row("-", "-", "", "");
    }

    void tellsOptionsFromOtherArguments()
    {
        QFETCH(QStringList, given);
        QFETCH(QStringList, positional);
        QFETCH(QStringList, names);
        QFETCH(QStringList, values);
        const Arguments arguments = parseArguments(given, knownOptions());
        QCOMPARE(arguments.positional, positional);
        QCOMPARE(arguments.optionNames, names);
        QCOMPARE(arguments.options.value(QStringLiteral("value")), values);
    }

    void keepsEveryTextAsItIs_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text :
             {"", "\ue000", "\ue000hello", "\ue0005", " ", "\n", "a=b", "\ufeff"})
            QTest::newRow(text) << QString::fromUtf8(text);
    }

    void keepsEveryTextAsItIs()
    {
        QFETCH(QString, text);
        const Arguments arguments =
            parseArguments({text, QStringLiteral("--value"), text}, knownOptions());
        QCOMPARE(arguments.positional, QStringList{text});
        QCOMPARE(arguments.options.value(QStringLiteral("value")), QStringList{text});
    }

    void saysWhatIsWrongWithAnOption_data()
    {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *given, const char *message) {
            QTest::newRow(given) << words(given) << QString::fromUtf8(message);
        };
        row("get --jsn", "there is no option '--jsn'; did you mean '--json'?");
        row("get --frobnicate",
            "there is no option '--frobnicate'; a value that begins with a dash stands after '--'");
        row("get --colection=x", "there is no option '--colection'; did you mean '--collection'?");
        row("get -Z", "there is no option '-Z'; a value that begins with a dash stands after '--'");
        row("get A --quiet=x", "--quiet takes no value");
        row("get A --quiet=", "--quiet takes no value");
        row("get A --json=x", "--json takes no value other than 'short'");
        row("get A --json=", "--json takes no value other than 'short'");
        row("get A --json --terse", "--terse and --json exclude each other");
        row("get A --collection", "--collection needs a value: --collection ID");
        row("get A --flag", "get has no option '--flag'");
        row("--json", "no command given");
        row("gett", "there is no command 'gett'; did you mean 'get'?");
        row("get", "too few arguments; usage: embosserctl get NAME...");
        row("status now", "too many arguments; usage: embosserctl status");
    }

    void saysWhatIsWrongWithAnOption()
    {
        QFETCH(QStringList, given);
        QFETCH(QString, message);
        QCOMPARE(refusal(given), message);
    }

    void refusesEmptyNamesAndNoOtherEmptyArguments()
    {
        const QString get = QStringLiteral("get");
        const QString set = QStringLiteral("set");
        const QString name = QStringLiteral("FreeText");
        QCOMPARE(refusal({get, QString()}),
                 QStringLiteral("an argument is empty; usage: embosserctl get NAME..."));
        QVERIFY(refusal({set, QString(), name}).startsWith(QLatin1String("an argument is empty")));
        QCOMPARE(refusal({set, name, QString()}), QString());
    }

    void takesTheLastOfSeveralCollections()
    {
        const CommandLine line = parseCommandLine(
            words("embosserctl --collection one get A --collection two"), commands());
        QCOMPARE(line.session.collection, std::optional(QStringLiteral("two")));
        QCOMPARE(line.command->name, QStringLiteral("get"));
        QCOMPARE(line.arguments, QStringList{QStringLiteral("A")});
    }

    void knowsWhatTheUserWantsOfTheOutput()
    {
        const CommandLine plain = parseCommandLine(words("embosserctl get A"), commands());
        QVERIFY(!plain.output.json);
        QVERIFY(!plain.output.terse);
        QVERIFY(plain.output.pager);
        QVERIFY(!plain.output.quiet);
        QVERIFY(plain.output.color);
        QVERIFY(!plain.session.collection);
        const CommandLine other =
            parseCommandLine(words("embosserctl get A -j -q --no-color -c one"), commands());
        QCOMPARE(other.session.collection, std::optional(QStringLiteral("one")));
        QVERIFY(other.output.json);
        QVERIFY(!other.output.compactJson);
        QVERIFY(other.output.quiet);
        QVERIFY(!other.output.color);
        QVERIFY(!parseCommandLine(words("embosserctl list -P"), commands()).output.pager);
        QVERIFY(parseCommandLine(words("embosserctl list -t"), commands()).output.terse);
        const CommandLine compact =
            parseCommandLine(words("embosserctl list --json=short -w 7"), commands());
        QVERIFY(compact.output.json);
        QVERIFY(compact.output.compactJson);
        QCOMPARE(compact.session.timeout, std::chrono::milliseconds(7000));
        QVERIFY(parseCommandLine(words("embosserctl -V"), commands()).version);
    }

    void makesTheAddressOfAnotherMachine()
    {
        const CommandLine line =
            parseCommandLine(words("embosserctl status -H user@machine~1"), commands());
        QCOMPARE(line.busAddress,
                 QStringLiteral("unixexec:path=ssh,argv1=-xT,argv2=--,argv3=user%40machine%7E1,"
                                "argv4=systemd-stdio-bridge"));
        QCOMPARE(refusal(words("status -H -oProxyCommand=x")),
                 QStringLiteral("'-oProxyCommand=x' is not the name of a machine"));
        QCOMPARE(refusal({QStringLiteral("status"), QStringLiteral("--host"), QString()}),
                 QStringLiteral("'' is not the name of a machine"));
        QCOMPARE(refusal(words("status -H a --address b")),
                 QStringLiteral("--address and --host exclude each other"));
    }

    void runsNothingWhenHelpIsAskedFor()
    {
        QVERIFY(parseCommandLine(words("embosserctl -h"), commands()).help);
        const CommandLine line =
            parseCommandLine(words("embosserctl get --help --flag"), commands());
        QVERIFY(line.help);
        QCOMPARE(line.command->name, QStringLiteral("get"));
        QVERIFY(parseCommandLine(words("embosserctl --version"), commands()).version);
    }
};

QTEST_GUILESS_MAIN(TestToolCommandLine)
#include "tst_tool_commandline.moc"
