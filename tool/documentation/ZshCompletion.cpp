// SPDX-License-Identifier: MIT

#include "commandline/CommandLine.h"
#include "documentation/Documentation.h"

namespace tool {

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
    const QString name =
        (option.isRepeatable ? QStringLiteral("*--") : QStringLiteral("--")) + option.name;
    const QString description = quoted(option.description);
    // With "=", the value may be the next argument all the same.
    return option.valueName.isEmpty()
               ? QStringLiteral("    '%1[%2]'").arg(name, description)
               : QStringLiteral("    '%1=[%2]:%3:'").arg(name, description, option.valueName);
}

/// What completes one argument, as the action of _arguments.
QString action(Completion completion, const Catalogue &catalogue)
{
    const QString words = candidates(completion, catalogue).join(QLatin1Char(' '));
    switch (completion) {
    case Completion::None:
        return {};
    case Completion::File:
        return QStringLiteral("_files");
    case Completion::FileOrLive:
        return QStringLiteral("{compadd -S '' -- %1; _files}").arg(words);
    default:
        return QStringLiteral("(%1)").arg(words);
    }
}

QStringList optionSpecifications(const QVector<Option> &options)
{
    QStringList specifications;
    for (const Option &option : options)
        specifications.append(optionSpecification(option));
    return specifications;
}

QString callOfArguments(const QStringList &specifications)
{
    return QStringLiteral("_arguments -C \\\n%1\n")
        .arg(specifications.join(QStringLiteral(" \\\n")));
}

QString zshBranch(const Command &command, const Catalogue &catalogue)
{
    QStringList specifications = optionSpecifications(command.options + commonOptions());
    if (!command.arguments.isEmpty()) {
        specifications.append(
            QStringLiteral("    \"%1:%2:%3\"")
                .arg(command.maxNames() == 1 ? QStringLiteral("1") : QStringLiteral("*"),
                     quoted(command.arguments), action(command.completion, catalogue)));
    }
    return QStringLiteral("%1)\n  %2  ;;\n").arg(command.name, callOfArguments(specifications));
}

} // namespace

QString zshCompletion(const QVector<Command> &commands, const Catalogue &catalogue)
{
    QString descriptions;
    QString branches;
    for (const Command &command : commands) {
        descriptions += QStringLiteral("  '%1:%2'\n").arg(command.name, quoted(command.summary));
        branches += zshBranch(command, catalogue);
    }
    const QStringList specifications = optionSpecifications(commonOptions()) +
                                       QStringList{QStringLiteral("    '1:command:->command'"),
                                                   QStringLiteral("    '*::argument:->argument'")};
    return QStringLiteral(R"(#compdef embosserctl

local context state state_descr line
typeset -A opt_args
local -a commands
commands=(
%1)

%2
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
        .arg(descriptions, callOfArguments(specifications), branches);
}

} // namespace tool
