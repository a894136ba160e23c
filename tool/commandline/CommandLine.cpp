// SPDX-License-Identifier: MIT

#include "commandline/CommandLine.h"

#include "common/Failure.h"
#include "common/Suggestion.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

#include <algorithm>

namespace tool {

namespace {

const QString collectionOption = QStringLiteral("collection");
const QString jsonOption = QStringLiteral("json");
const QString quietOption = QStringLiteral("quiet");
const QString noColorOption = QStringLiteral("no-color");
const QString helpOption = QStringLiteral("help");
const QString versionOption = QStringLiteral("version");
const QString generateOption = QStringLiteral("generate");

// Stands for the minus of a negative number, which QCommandLineParser would take for an option.
const QChar minusMark(0xE000);

[[noreturn]] void throwUsage(const QString &message)
{
    throw Failure(ExitStatus::Usage, message);
}

QString markMinus(QString argument)
{
    static const QRegularExpression negativeNumber(QStringLiteral("^-[0-9.]"));
    if (negativeNumber.match(argument).hasMatch())
        argument[0] = minusMark;
    return argument;
}

QStringList unmarkMinus(QStringList arguments)
{
    for (QString &argument : arguments) {
        if (argument.startsWith(minusMark))
            argument[0] = QLatin1Char('-');
    }
    return arguments;
}

QStringList namesOf(const Option &option)
{
    return option.name == helpOption ? QStringList{QStringLiteral("h"), option.name}
                                     : QStringList{option.name};
}

QStringList namesOf(const QVector<Option> &options)
{
    QStringList names;
    for (const Option &option : options)
        names.append(option.name);
    return names;
}

const Command &commandNamed(const QString &name, const QVector<Command> &commands)
{
    QStringList names;
    for (const Command &command : commands) {
        if (command.name == name)
            return command;
        names.append(command.name);
    }
    throwUsage(QStringLiteral("there is no command '%1'%2").arg(name, didYouMean(name, names)));
}

QString dashed(const QString &option)
{
    return (option.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + option;
}

void checkOptions(const QStringList &given, const Command &command)
{
    const QStringList known = namesOf(commonOptions() + command.options);
    for (const QString &name : given) {
        if (!known.contains(name)) {
            throwUsage(QStringLiteral("%1 has no option '%2'").arg(command.name, dashed(name)));
        }
    }
}

// The arguments are not repeated: one of them may be a secret.
void checkArguments(const QStringList &given, const Command &command)
{
    if (given.size() < command.minArguments)
        throwUsage(QStringLiteral("too few arguments; usage: %1").arg(synopsis(command)));
    if (given.size() > command.maxArguments)
        throwUsage(QStringLiteral("too many arguments; usage: %1").arg(synopsis(command)));
    if (given.mid(0, command.maxNames()).contains(QString()))
        throwUsage(QStringLiteral("an argument is empty; usage: %1").arg(synopsis(command)));
}

void parse(QCommandLineParser *parser, const QStringList &arguments, const QVector<Option> &options)
{
    for (const Option &option : options)
        parser->addOption({namesOf(option), option.description, option.valueName});
    parser->addOption({generateOption, QString(), QStringLiteral("KIND")});

    if (parser->parse(arguments))
        return;
    if (parser->unknownOptionNames().isEmpty())
        throwUsage(parser->errorText());
    const QString unknown = dashed(parser->unknownOptionNames().constFirst());
    QStringList known = namesOf(options);
    std::transform(known.begin(), known.end(), known.begin(), dashed);
    throwUsage(
        QStringLiteral("there is no option '%1'%2").arg(unknown, didYouMean(unknown, known)));
}

} // namespace

const QVector<Option> &commonOptions()
{
    static const QVector<Option> options{
        {collectionOption, QStringLiteral("ID"),
         QStringLiteral("work on this collection instead of masterCollectionKey")},
        {jsonOption, {}, QStringLiteral("print the result as JSON")},
        {quietOption, {}, QStringLiteral("print only results and errors")},
        {noColorOption, {}, QStringLiteral("do not colour the output")},
        {helpOption, {}, QStringLiteral("print this help, or that of the command")},
        {versionOption, {}, QStringLiteral("print the version")},
    };
    return options;
}

QVector<Option> allOptions(const QVector<Command> &commands)
{
    QVector<Option> options = commonOptions();
    for (const Command &command : commands)
        options += command.options;
    return options;
}

CommandLine parseCommandLine(const QStringList &arguments, const QVector<Command> &commands)
{
    QStringList marked;
    std::transform(arguments.begin(), arguments.end(), std::back_inserter(marked), markMinus);
    QCommandLineParser parser;
    parse(&parser, marked, allOptions(commands));

    CommandLine line;
    line.help = parser.isSet(helpOption);
    line.version = parser.isSet(versionOption);
    line.generate = parser.value(generateOption);
    line.output.json = parser.isSet(jsonOption);
    line.output.quiet = parser.isSet(quietOption);
    line.output.color = !parser.isSet(noColorOption);
    for (const QString &name : parser.optionNames())
        line.options.insert(name, unmarkMinus(parser.values(name)));
    if (parser.isSet(collectionOption))
        line.collection = line.options.value(collectionOption).last();

    QStringList given = unmarkMinus(parser.positionalArguments());
    const bool runsNothing = line.help || line.version || !line.generate.isEmpty();
    if (given.isEmpty() && runsNothing)
        return line;
    if (given.isEmpty())
        throwUsage(QStringLiteral("no command given"));
    line.command = &commandNamed(given.takeFirst(), commands);
    line.arguments = given;
    if (runsNothing)
        return line;
    checkOptions(parser.optionNames(), *line.command);
    checkArguments(line.arguments, *line.command);
    return line;
}

} // namespace tool
