// SPDX-License-Identifier: MIT

#include "../CommandLine.h"
#include "Documentation.h"

namespace {

/// A text in the single quotes of a specification, in which a colon ends a field.
QString quoted(QString text)
{
    text.replace(QLatin1Char('\''), QStringLiteral("'\\''"));
    text.replace(QLatin1Char(':'), QStringLiteral("\\:"));
    return text;
}

QString optionSpecification(const Option &option)
{
    const QString name = QStringLiteral("--") + option.name;
    const QString value =
        option.valueName.isEmpty() ? QString() : QStringLiteral(":%1:").arg(option.valueName);
    return QStringLiteral("    '%1[%2]%3' \\\n").arg(name, quoted(option.description), value);
}

/// What completes one argument, as the action of _arguments.
QString action(Completion completion, const Catalogue &catalogue)
{
    const QStringList words = candidates(completion, catalogue);
    const QString choice = QStringLiteral("(%1)").arg(words.join(QLatin1Char(' ')));
    switch (completion) {
    case Completion::None:
        return {};
    case Completion::File:
        return QStringLiteral("_files");
    case Completion::FileOrLive:
        return QStringLiteral("{compadd -S '' -- %1; _files}")
            .arg(words.join(QLatin1Char(' ')));
    default:
        return choice;
    }
}

QString branch(const Command &command, const Catalogue &catalogue)
{
    QString text = QStringLiteral("%1)\n  _arguments \\\n").arg(command.name);
    for (const Option &option : command.options + commonOptions())
        text += optionSpecification(option);
    const bool completesAll = command.completedArguments == Command::AnyNumber;
    text += QStringLiteral("    \"%1:%2:%3\"\n  ;;\n")
                .arg(completesAll ? QStringLiteral("*") : QStringLiteral("1"),
                     quoted(command.arguments), action(command.completion, catalogue));
    return text;
}

} // namespace

QString zshCompletion(const QVector<Command> &commands, const Catalogue &catalogue)
{
    QString descriptions;
    QString branches;
    QString options;
    for (const Command &command : commands) {
        descriptions += QStringLiteral("  '%1:%2'\n").arg(command.name, quoted(command.summary));
        branches += branch(command, catalogue);
    }
    for (const Option &option : commonOptions())
        options += optionSpecification(option);
    return QStringLiteral(R"(#compdef embosserctl

local context state state_descr line
typeset -A opt_args
local -a commands
commands=(
%1)

_arguments -C \
%2    '1:command:->command' \
    '*::argument:->argument'

case $state in
command)
  _describe command commands
  return
  ;;
argument) ;;
*) return ;;
esac

case $words[1] in
%3esac
)")
        .arg(descriptions, options, branches);
}
