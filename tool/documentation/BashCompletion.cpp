// SPDX-License-Identifier: MIT

#include "commandline/CommandLine.h"
#include "documentation/Documentation.h"

namespace tool {

namespace {

QString optionNames(const QVector<Option> &options)
{
    QStringList names;
    for (const Option &option : options)
        names.append(QStringLiteral("--") + option.name);
    return names.join(QLatin1Char(' '));
}

/// A pattern for the options after which a value stands.
QString optionsWithValue(const QVector<Command> &commands)
{
    QStringList names;
    for (const Option &option : allOptions(commands)) {
        if (!option.valueName.isEmpty())
            names.append(QStringLiteral("--") + option.name);
    }
    return names.join(QStringLiteral(" | "));
}

bool takesFiles(Completion completion)
{
    return completion == Completion::File || completion == Completion::FileOrLive;
}

/// The branch of a command: what its options are, and its arguments where they can be told.
QString bashBranch(const Command &command, const Catalogue &catalogue)
{
    QString text = QStringLiteral("    %1)\n").arg(command.name);
    if (!command.options.isEmpty())
        text += QStringLiteral("        options+=' %1'\n").arg(optionNames(command.options));
    const QStringList words = candidates(command.completion, catalogue);
    if (!words.isEmpty())
        text += QStringLiteral("        words='%1'\n").arg(words.join(QLatin1Char(' ')));
    if (takesFiles(command.completion))
        text += QStringLiteral("        files=yes\n");
    if (command.maxNames() != Command::AnyNumber)
        text += QStringLiteral("        limit=%1\n").arg(command.maxNames());
    return text + QStringLiteral("        ;;\n");
}

} // namespace

QString bashCompletion(const QVector<Command> &commands, const Catalogue &catalogue)
{
    QStringList names;
    QString branches;
    for (const Command &command : commands) {
        names.append(command.name);
        branches += bashBranch(command, catalogue);
    }
    return QStringLiteral(R"(# bash completion for embosserctl

_embosserctl() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options='%1'
    local words='' files='' limit=1000 command='' given=0 i
    COMPREPLY=()
    # bash takes an argument apart at = and : by default.
    case $previous in
    %4 | [=:]*) return ;;
    esac
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        %4) [[ ${COMP_WORDS[i + 1]} == = ]] || ((i++)) ;;
        [=:]*) ((i++)) ;;
        -*) ;;
        *)
            if [[ $command ]]; then
                ((++given))
            else
                command=${COMP_WORDS[i]}
            fi
            ;;
        esac
    done
    case $command in
    '')
        words='%2'
        ;;
%3    esac
    if [[ $current == -* ]]; then
        words=$options files=
    elif ((given >= limit)); then
        return
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    if [[ $files ]]; then
        compopt -o filenames 2>/dev/null
        local file
        while IFS= read -r file; do
            COMPREPLY+=("$file")
        done < <(compgen -f -- "$current")
    fi
}
complete -F _embosserctl embosserctl
)")
        .arg(optionNames(commonOptions()), names.join(QLatin1Char(' ')), branches,
             optionsWithValue(commands));
}

} // namespace tool
