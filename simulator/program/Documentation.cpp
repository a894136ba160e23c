// SPDX-License-Identifier: MIT

#include "program/Documentation.h"

#include "bus/Faults.h"
#include "model/Profile.h"
#include "program/Options.h"
#include "state/Printer.h"

#include <support/ManualPage.h>

#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace simulator {

namespace {

const QString program = QStringLiteral("embosser-simulator");

QString typed(const QCommandLineOption &option)
{
    const QString name = QStringLiteral("--") + option.names().constLast();
    return option.valueName().isEmpty() ? name
                                        : name + QLatin1Char(' ') + option.valueName().toUpper();
}

QString manualPage(const QList<QCommandLineOption> &options)
{
    support::ManualPage page(
        program, QStringLiteral("simulated configuration service of a Braille embosser"),
        program + QStringLiteral(" [OPTION...]"));
    page.addSection(QStringLiteral("DESCRIPTION"));
    page.addParagraphs(
        {QStringLiteral(
             "Answers the calls of a Braille embosser's applications as the configuration service "
             "of an embosser does, on the system bus or on the bus that DBUS_SYSTEM_BUS_ADDRESS "
             "names, so that they can be developed and tested without an embosser. A line on "
             "standard output says when it is ready. SIGTERM and SIGINT end it."),
         QStringLiteral("The numbers are its own: plausible, but nobody's calibration.")});

    page.addSection(QStringLiteral("OPTIONS"));
    QVector<QStringList> rows;
    for (const QCommandLineOption &option : options)
        rows.append({typed(option), option.description()});
    page.addDefinitions(rows);

    page.addSection(QStringLiteral("FAULTS"));
    page.addParagraphs(
        {QStringLiteral("A call meets the first fault that waits for its method. CALLS is how many "
                        "calls meet it: 1 if it is left out, 0 for all.")});
    page.addDefinitions(Faults::kinds());
    page.addSection(QStringLiteral("CONTROL"));
    page.addParagraphs(
        {QStringLiteral("The object /com/tavelornbraille/Simulator, at the bus name "
                        "com.tavelornbraille.Simulator, is for tests. Its interfaces begin with "
                        "that name; busctl introspect shows all their methods, among them:")});
    page.addDefinitions(
        {{QStringLiteral("Faults.Inject(ssus: KIND, METHOD, CALLS, DETAIL)"),
          QStringLiteral("the same as --fault")},
         {QStringLiteral("Faults.Answer(suv: METHOD, CALLS, VALUE)"),
          QStringLiteral("the next calls are answered with a value of any type")},
         {QStringLiteral("Faults.Refuse(suss: METHOD, CALLS, NAME, MESSAGE)"),
          QStringLiteral("the next calls are answered with an error")},
         {QStringLiteral("Faults.Clear()"), QStringLiteral("forgets the faults that wait")},
         {QStringLiteral("Faults.Return()"), QStringLiteral("ends a drop-name")},
         {QStringLiteral("Calls.Calls(s: METHOD)"),
          QStringLiteral("the last calls of a method, or of all, with arguments and outcome")},
         {QStringLiteral("Calls.Reset()"), QStringLiteral("has the model's values again")},
         {QStringLiteral("Printer.Print(uuu: PAGES, COPIES, MILLISECONDS)"),
          QStringLiteral("prints a job, so long for a page; at 0, by Printer.Step() alone")},
         {QStringLiteral("Printer.Step(u: PAGES)"),
          QStringLiteral("prints the next pages at once")},
         {QStringLiteral("Printer.Interrupt(su: CONDITION, PAGES)"),
          QStringLiteral("has a condition come after so many more pages; at 0, now")},
         {QStringLiteral("Printer.Resolve(), Printer.Cancel(), Printer.Job()"),
          QStringLiteral("ends the condition; ends the job; tells of it")}});
    page.addParagraphs(
        {QStringLiteral(
             "Counters, printed pages and copies, sensors and DocumentStatus follow the job, which "
             "PrintingPaused holds. The values of DocumentStatus, from 0, are %1. The conditions "
             "are:")
             .arg(Printer::statusNames().join(QStringLiteral(", ")))});
    page.addDefinitions(Printer::conditions());

    page.addSection(QStringLiteral("PROFILES"));
    page.addParagraphs(
        {QStringLiteral("A profile is a JSON object that names its base, a model or a file beside "
                        "it, and changes it as a merge patch (RFC 7396) does:"),
         QStringLiteral(
             R"({ "base": "Kestan", "settings": { "Baudrate": { "default": 19200 } } })"),
         QStringLiteral("One that does not fit the service, or itself, is refused with file, line "
                        "and reason. The models are: %1.")
             .arg(Profile::builtInModels().join(QStringLiteral(", ")))});

    page.addSection(QStringLiteral("EXIT STATUS"));
    page.addDefinitions(
        {{QStringLiteral("0"), QStringLiteral("ended by SIGTERM or SIGINT")},
         {QStringLiteral("1"),
          QStringLiteral(
              "it could not do what the command line says, there is no bus, the bus went "
              "away, or another process owns the name")},
         {QStringLiteral("2"), QStringLiteral("the command line is wrong")}});
    page.addSection(QStringLiteral("ENVIRONMENT"));
    page.addDefinitions({{QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                          QStringLiteral("the address of the bus to use as the system bus")}});
    page.addSeeAlso({QStringLiteral("busctl"), QStringLiteral("embosserctl")});
    return page.text();
}

/// The names of all options, or of those whose value has that name.
QStringList namesOf(const QList<QCommandLineOption> &options, const QString &valueName = {})
{
    QStringList names;
    for (const QCommandLineOption &option : options) {
        if (valueName.isNull() || option.valueName() == valueName)
            names << QStringLiteral("--") + option.names().constLast();
    }
    return names;
}

QStringList faultNames()
{
    QStringList names;
    for (const QStringList &kind : Faults::kinds())
        names << kind[0];
    return names;
}

QString bashCompletion(const QList<QCommandLineOption> &options)
{
    return QStringLiteral(R"(# bash completion for embosser-simulator

_embosser_simulator() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    case $previous in
    %1)
        mapfile -t COMPREPLY < <(compgen -W '%2' -- "$current")
        ;;
    %3)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        ;;
    %4)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        ;;
    --fault)
        compopt -o nospace 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -S : -W '%5' -- "$current")
        ;;
    *)
        mapfile -t COMPREPLY < <(compgen -W '%6' -- "$current")
        ;;
    esac
}
complete -F _embosser_simulator embosser-simulator
)")
        .arg(namesOf(options, ValueName::model()).join(QStringLiteral(" | ")),
             Profile::builtInModels().join(QLatin1Char(' ')),
             namesOf(options, ValueName::file()).join(QStringLiteral(" | ")),
             namesOf(options, ValueName::directory()).join(QStringLiteral(" | ")),
             faultNames().join(QLatin1Char(' ')), namesOf(options).join(QLatin1Char(' ')));
}

/// What completes the value of an option, as the action of _arguments.
QString action(const QString &valueName)
{
    if (valueName == ValueName::model())
        return QStringLiteral("(%1)").arg(Profile::builtInModels().join(QLatin1Char(' ')));
    if (valueName == ValueName::file())
        return QStringLiteral("_files");
    if (valueName == ValueName::directory())
        return QStringLiteral("_directories");
    return QStringLiteral("{compadd -S \\: -- %1}").arg(faultNames().join(QLatin1Char(' ')));
}

QString zshCompletion(const QList<QCommandLineOption> &options)
{
    QString specifications;
    for (const QCommandLineOption &option : options) {
        const QString name = option.names().constLast();
        specifications +=
            QStringLiteral(" \\\n    '*--%1%2[%3]%4'")
                .arg(name, option.valueName().isEmpty() ? QString() : QStringLiteral("="),
                     QString(option.description())
                         .remove(QLatin1Char('\''))
                         .replace(QLatin1Char(':'), QStringLiteral("\\:")),
                     option.valueName().isEmpty()
                         ? QString()
                         : QStringLiteral(":%1:%2").arg(
                               option.valueName().section(QLatin1Char(':'), 0, 0),
                               action(option.valueName())));
    }
    return QStringLiteral("#compdef embosser-simulator\n\n_arguments%1\n").arg(specifications);
}

} // namespace

QString documentation(const QString &kind, const QList<QCommandLineOption> &options)
{
    if (kind == QLatin1String("man"))
        return manualPage(options);
    if (kind == QLatin1String("bash"))
        return bashCompletion(options);
    if (kind == QLatin1String("zsh"))
        return zshCompletion(options);
    throw UsageError("cannot generate \"" + kind.toStdString() + "\", only man, bash and zsh");
}

} // namespace simulator
