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

QStringList optionSpecifications(const QVector<Option> &options, const Catalogue &catalogue)
{
    QStringList specifications;
    for (const Option &option : options) {
        QString text = QStringLiteral("[%1]").arg(quoted(option.description));
        if (!option.valueName.isEmpty()) {
            text += QStringLiteral(":%1:%2").arg(option.valueName,
                                                 action(option.completion, catalogue));
        }
        QString before = option.isRepeatable ? QStringLiteral("*") : QString();
        if (!option.shortName.isNull())
            before = QStringLiteral("(-%1 --%2)").arg(option.shortName).arg(option.name);
        // A value may be the next argument, or stand after "=" or the letter.
        const bool takesValue = !option.valueName.isEmpty();
        const auto add = [&](const QString &name, const QString &mark) {
            specifications.append(QStringLiteral("    '%1%2%3%4'").arg(before, name, mark, text));
        };
        if (!option.shortName.isNull()) {
            add(QStringLiteral("-") + option.shortName,
                takesValue ? QStringLiteral("+") : QString());
        }
        if (!option.form.isEmpty())
            text += QStringLiteral("::form:(%1)").arg(option.form);
        add(QStringLiteral("--") + option.name, takesValue              ? QStringLiteral("=")
                                                : option.form.isEmpty() ? QString()
                                                                        : QStringLiteral("=-"));
    }
    return specifications;
}

QString callOfArguments(const QStringList &specifications)
{
    return QStringLiteral("_arguments -C \\\n%1\n")
        .arg(specifications.join(QStringLiteral(" \\\n")));
}

/// The specification of an argument at a position, or at all others.
QString argument(const QString &position, const Command &command, const QString &action)
{
    return QStringLiteral("    \"%1:%2:%3\"").arg(position, quoted(command.arguments), action);
}

QString zshBranch(const Command &command, const Catalogue &catalogue)
{
    QStringList specifications = optionSpecifications(command.options + commonOptions(), catalogue);
    const QStringList words = candidates(command.completion, catalogue);
    if (command.candidates && !words.isEmpty()) {
        specifications.append(
            argument(QStringLiteral("1"), command,
                     QStringLiteral(" _embosserctl_name %1").arg(words.join(QLatin1Char(' ')))));
    }
    if (command.candidates) {
        specifications.append(
            argument(QStringLiteral("*"), command, QStringLiteral(" _embosserctl_ask")));
    } else if (!command.arguments.isEmpty()) {
        specifications.append(
            argument(command.maxNames() == 1 ? QStringLiteral("1") : QStringLiteral("*"), command,
                     action(command.completion, catalogue)));
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
    const QStringList specifications = optionSpecifications(commonOptions(), catalogue) +
                                       QStringList{QStringLiteral("    '1:command:->command'"),
                                                   QStringLiteral("    '*::argument:->argument'")};
    return QStringLiteral(R"SCRIPT(#compdef embosserctl

# What the service has for an argument; nothing if it is not there, or on another bus.
_embosserctl_ask() {
  [[ -z $elsewhere ]] || return 1
  local -a candidates
  local assigned=''
  [[ $PREFIX != *=* ]] || assigned=${PREFIX%%=*}=
  candidates=(${(f)"$(_call_program values $service --timeout 1 --complete -- \
    ${(q)command} ${(q)line[1,-2]} ${(qq)assigned} 2>/dev/null)"})
  compset -P 1 '*='
  compadd -S '' -- ${(M)candidates:#*=}
  compadd -- ${candidates:#*=}
}

# One of these names, or what is assigned to one.
_embosserctl_name() {
  if [[ $PREFIX == *=* ]]; then
    _embosserctl_ask
  else
    compadd -- $@
  fi
}

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

local command=$words[1] elsewhere=$opt_args[-H]$opt_args[--host]$opt_args[--address]
case $command in
%3esac
)SCRIPT")
        .arg(descriptions, callOfArguments(specifications), branches);
}

} // namespace tool
