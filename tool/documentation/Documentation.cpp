// SPDX-License-Identifier: MIT

#include "documentation/Documentation.h"

#include "common/Failure.h"
#include "library/Catalogue.h"
#include "library/Lookup.h"

namespace tool {

QString ProgramText::summary()
{
    return QStringLiteral("reads and writes the configuration of a Braille embosser");
}

QStringList ProgramText::description()
{
    return {
        QStringLiteral(
            "Everything goes through the configuration service on the system bus, which knows the "
            "embosser's model, its limits and its units. embosserctl only passes on what it is "
            "given and what the service answers; it does not start the service."),
        QStringLiteral("The values of an enumeration are shown by key. Where a number is expected, "
                       "a key of its enumeration (Landscape) or a qualified key of any enumeration "
                       "(PrintSpeed::Draft) is accepted as well. A map is given as a JSON object. "
                       "Text that begins with a minus sign must follow '--'."),
        QStringLiteral(
            "The values of secret settings (Passphrase) are shown only by the command get. On the "
            "command line they are visible to other users and stay in the shell's history: omit "
            "the value, and set reads it from standard input, or prompts for it without echo."),
        QStringLiteral("On a terminal, the output is aligned and coloured. Otherwise it is plain, "
                       "with columns separated by tabs."),
        QStringLiteral("With --terse, each row is a line whose fields are separated by colons, on "
                       "a terminal too, without the names of the columns. A heading is the first "
                       "field of the rows below it. In a field, a colon is written \\: and a "
                       "backslash \\\\; a line break is \\n, a tabulator \\t, and another "
                       "control character \\x and two digits."),
        QStringLiteral("What list, settings, describe, values, report and --help print is shown "
                       "by a pager if it is higher than the terminal and standard input is a "
                       "terminal too, unless TERM is dumb, JSON is printed or --no-pager is "
                       "given."),
    };
}

QVector<QStringList> ProgramText::exitStatus()
{
    return {
        {QStringLiteral("0"), QStringLiteral("done")},
        {QStringLiteral("1"),
         QStringLiteral("the service refused or failed; its message is on standard error")},
        {QStringLiteral("2"), QStringLiteral("the command line or an input file is invalid")},
        {QStringLiteral("3"),
         QStringLiteral("not connected: the system bus or the service on it is missing, or has "
                        "been lost")},
        {QStringLiteral("4"), QStringLiteral("the service has not answered in time")},
        {QStringLiteral("5"), QStringLiteral("the bus does not permit to talk to the service")},
    };
}

QVector<QStringList> ProgramText::environment()
{
    return {
        {QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
         QStringLiteral("the address of the bus to use as the system bus")},
        {QStringLiteral("EMBOSSERCTL_PAGER, PAGER"),
         QStringLiteral("the pager, less if neither is set; cat or an empty text for none")},
        {QStringLiteral("LESS"),
         QStringLiteral("the options of less; FRX for the pager if it is not set")},
        {QStringLiteral("VISUAL, EDITOR"),
         QStringLiteral("the editor, editor or vi if neither is set")},
        {QStringLiteral("NO_COLOR"), QStringLiteral("if not empty, same as --no-color")},
    };
}

QVector<QStringList> ProgramText::examples()
{
    return {
        {QStringLiteral("embosserctl list speed"),
         QStringLiteral("lists all operations related to speed")},
        {QStringLiteral("embosserctl get PrintSpeed OddHighPulseTime"),
         QStringLiteral("shows two settings")},
        {QStringLiteral("embosserctl set AlignLow -3 --flag"),
         QStringLiteral("writes a setting and sets the service's flag")},
        {QStringLiteral("embosserctl call getReleaseTime Tray"),
         QStringLiteral("calls an operation that takes arguments")},
        {QStringLiteral("embosserctl set Passphrase < FILE"),
         QStringLiteral("writes a secret without showing it")},
        {QStringLiteral("embosserctl dump > before.json"),
         QStringLiteral("saves the configuration")},
        {QStringLiteral("embosserctl diff before.json"),
         QStringLiteral("shows what has changed since then")},
        {QStringLiteral("embosserctl restore before.json"), QStringLiteral("restores it")},
    };
}

QStringList candidates(Completion completion, const Catalogue &catalogue)
{
    switch (completion) {
    case Completion::None:
    case Completion::File:
        return {};
    case Completion::Operation:
        return catalogue.operationNames();
    case Completion::OperationOrSetting:
        return catalogue.operationNames() + catalogue.settingNames();
    case Completion::ReadableSetting:
        return catalogue.readableSettings();
    case Completion::WritableSetting:
        return catalogue.writableSettings();
    case Completion::ValueList:
        return operationFor(catalogue, QStringLiteral("getValueList"), 1)
            .parameters[0]
            .type.enumeration.keys();
    case Completion::FileOrLive:
        return {QStringLiteral("live"), QStringLiteral("collection:")};
    }
    Q_UNREACHABLE();
}

QString documentation(const QString &kind, const QVector<Command> &commands,
                      const Catalogue &catalogue)
{
    if (kind == QLatin1String("man"))
        return manualPage(commands);
    if (kind == QLatin1String("bash"))
        return bashCompletion(commands, catalogue);
    if (kind == QLatin1String("zsh"))
        return zshCompletion(commands, catalogue);
    throw Failure(ExitStatus::Usage,
                  QStringLiteral("cannot generate '%1', only man, bash and zsh").arg(kind));
}

} // namespace tool
