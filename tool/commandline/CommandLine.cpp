// SPDX-License-Identifier: MIT

#include "commandline/CommandLine.h"

#include "commandline/Arguments.h"
#include "commandline/Seconds.h"
#include "common/Failure.h"
#include "common/Suggestion.h"

#include <QtCore/QUrl>

namespace tool {

namespace {

const QString collectionOption = QStringLiteral("collection");
const QString jsonOption = QStringLiteral("json");
const QString shortForm = QStringLiteral("short");
const QString terseOption = QStringLiteral("terse");
const QString quietOption = QStringLiteral("quiet");
const QString noColorOption = QStringLiteral("no-color");
const QString noPagerOption = QStringLiteral("no-pager");
const QString addressOption = QStringLiteral("address");
const QString hostOption = QStringLiteral("host");
const QString timeoutOption = QStringLiteral("timeout");
const QString helpOption = QStringLiteral("help");
const QString versionOption = QStringLiteral("version");
const QString generateOption = QStringLiteral("generate");
const QString completeOption = QStringLiteral("complete");

[[noreturn]] void throwUsage(const QString &message)
{
    throw Failure(ExitStatus::Usage, message);
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

void checkOptions(const QStringList &given, const Command &command)
{
    const QStringList known = namesOf(commonOptions() + command.options);
    for (const QString &name : given) {
        if (!known.contains(name)) {
            throwUsage(QStringLiteral("%1 has no option '--%2'").arg(command.name, name));
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

/// The address of the system bus of another machine, by way of ssh, as D-Bus writes one.
QString addressOfHost(const QString &host)
{
    // It would be an option of ssh.
    if (host.isEmpty() || host.startsWith(QLatin1Char('-')))
        throwUsage(QStringLiteral("'%1' is not the name of a machine").arg(host));
    const QString escaped =
        QString::fromLatin1(QUrl::toPercentEncoding(host, QByteArray(), QByteArrayLiteral("~")));
    return QStringLiteral("unixexec:path=ssh,argv1=-xT,argv2=--,argv3=%1,"
                          "argv4=systemd-stdio-bridge")
        .arg(escaped);
}

/// What the build and the completions need, and no user.
const QVector<Option> &hiddenOptions()
{
    static const QVector<Option> options{{generateOption, QStringLiteral("KIND"), {}},
                                         {completeOption, {}, {}}};
    return options;
}

} // namespace

const QVector<Option> &commonOptions()
{
    static const QVector<Option> options{
        {collectionOption, QStringLiteral("ID"),
         QStringLiteral("work on this collection instead of masterCollectionKey"), false,
         QLatin1Char('c')},
        {jsonOption,
         {},
         QStringLiteral("print the result as JSON, the short form of it in one line"),
         false,
         QLatin1Char('j'),
         {},
         shortForm},
        {terseOption,
         {},
         QStringLiteral("print lines for programs, of fields separated by colons"),
         false,
         QLatin1Char('t')},
        {quietOption, {}, QStringLiteral("print only results and errors"), false, QLatin1Char('q')},
        {addressOption, QStringLiteral("ADDRESS"),
         QStringLiteral("use the bus at this address as the system bus")},
        {hostOption, QStringLiteral("HOST"),
         QStringLiteral("use the system bus of another machine by ssh: user@machine"), false,
         QLatin1Char('H')},
        {timeoutOption, QStringLiteral("SECONDS"),
         QStringLiteral("give up when the service has not answered for so long, 5 if not given; 0 "
                        "for the time-out of the bus"),
         false, QLatin1Char('w')},
        {noColorOption, {}, QStringLiteral("do not colour the output")},
        {noPagerOption,
         {},
         QStringLiteral("do not start a pager for what is long"),
         false,
         QLatin1Char('P')},
        {helpOption,
         {},
         QStringLiteral("print this help, or that of the command"),
         false,
         QLatin1Char('h')},
        {versionOption, {}, QStringLiteral("print the version"), false, QLatin1Char('V')},
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

CommandLine parseCommandLine(const QStringList &all, const QVector<Command> &commands)
{
    const Arguments given = parseArguments(all.mid(1), allOptions(commands) + hiddenOptions());
    CommandLine line;
    line.help = given.options.contains(helpOption);
    line.version = given.options.contains(versionOption);
    if (given.options.contains(generateOption))
        line.generate = given.options.value(generateOption).last();
    line.output.json = given.options.contains(jsonOption);
    line.output.compactJson = given.options.value(jsonOption).contains(shortForm);
    line.output.terse = given.options.contains(terseOption);
    if (line.output.terse && line.output.json)
        throwUsage(QStringLiteral("--terse and --json exclude each other"));
    line.output.quiet = given.options.contains(quietOption);
    line.output.pager = !given.options.contains(noPagerOption);
    line.output.color = !given.options.contains(noColorOption);
    if (given.options.contains(collectionOption))
        line.session.collection = given.options.value(collectionOption).last();
    if (given.options.contains(addressOption) && given.options.contains(hostOption))
        throwUsage(QStringLiteral("--address and --host exclude each other"));
    if (given.options.contains(addressOption))
        line.busAddress = given.options.value(addressOption).last();
    if (given.options.contains(hostOption))
        line.busAddress = addressOfHost(given.options.value(hostOption).last());
    if (given.options.contains(timeoutOption))
        line.session.timeout = secondsFrom(given.options.value(timeoutOption).last());
    line.options = given.options;
    line.arguments = given.positional;

    line.complete = given.options.contains(completeOption);
    const bool runsNothing = line.help || line.version || line.complete || !line.generate.isEmpty();
    if (line.arguments.isEmpty() && runsNothing)
        return line;
    if (line.arguments.isEmpty())
        throwUsage(QStringLiteral("no command given"));
    line.command = &commandNamed(line.arguments.takeFirst(), commands);
    if (runsNothing)
        return line;
    checkOptions(given.optionNames, *line.command);
    checkArguments(line.arguments, *line.command);
    return line;
}

} // namespace tool
