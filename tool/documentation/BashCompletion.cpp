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
        if (option.valueName.isEmpty())
            continue;
        names.append(QStringLiteral("--") + option.name);
        if (!option.shortName.isNull())
            names.append(QStringLiteral("-") + option.shortName);
    }
    return names.join(QStringLiteral(" | "));
}

/// The branches of the options whose values are known.
QString optionBranches(const QVector<Command> &commands, const Catalogue &catalogue)
{
    QString text;
    for (const Option &option : allOptions(commands)) {
        const bool hasForm = !option.form.isEmpty();
        const QStringList words =
            hasForm ? QStringList{option.form} : candidates(option.completion, catalogue);
        if (words.isEmpty())
            continue;
        const QString pattern =
            (hasForm ? QStringLiteral("yes--%1") : QStringLiteral("--%1 | yes--%1"))
                .arg(option.name);
        text += QStringLiteral("    %1)\n"
                               "        mapfile -t COMPREPLY < <(compgen -W '%2' -- \"$current\")\n"
                               "        return\n"
                               "        ;;\n")
                    .arg(pattern, words.join(QLatin1Char(' ')));
    }
    return text;
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
    if (command.candidates)
        text += QStringLiteral("        service=yes\n");
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
    return QStringLiteral(R"SCRIPT(# bash completion for embosserctl

# What the service has for an argument; nothing if it is not there.
_embosserctl_ask() {
    local candidate
    while IFS= read -r candidate; do
        case $current in
        [\"\']*) [[ $candidate != "${current:1}"* ]] || COMPREPLY+=("$candidate") ;;
        *)
            [[ $candidate != "${current//\\/}"* ]] || COMPREPLY+=("$(printf %q "$candidate")")
            ;;
        esac
    done < <("${COMP_WORDS[0]}" --timeout 1 --complete -- "$@" 2>/dev/null)
    [[ ${COMPREPLY[0]} != *= ]] || compopt -o nospace 2>/dev/null
}

_embosserctl() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options='%1'
    local words='' files='' service='' limit=1000 command='' i
    local assigned='' positional='' elsewhere=''
    local -a given=()
    COMPREPLY=()
    # bash takes an argument apart at = and : by default.
    if [[ $current == = ]]; then
        current='' assigned=yes
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]} assigned=yes
    fi
    case $assigned$previous in
%5    esac
    case $previous in
    %4 | :*) return ;;
    esac
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        # The service of another bus is not asked.
        --address | --host | -H) elsewhere=yes ;;&
        %4) [[ ${COMP_WORDS[i + 1]} == = ]] || ((i++)) ;;&
        [=:]*)
            [[ ! $positional ]] || given[-1]+=${COMP_WORDS[i]}${COMP_WORDS[i + 1]}
            ((i++))
            ;;
        -*) positional='' ;;
        *)
            if [[ $command ]]; then
                given+=("${COMP_WORDS[i]}") positional=yes
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
    [[ ! $elsewhere ]] || service=''
    if [[ $assigned ]]; then
        [[ ! $service || ! $positional ]] ||
            _embosserctl_ask "$command" "${given[@]::${#given[@]} - 1}" "${given[-1]%%=*}="
        return
    fi
    if [[ $current == -* ]]; then
        words=$options files=
    elif [[ $service ]] && { [[ ! $words ]] || ((${#given[@]} >= limit)); }; then
        _embosserctl_ask "$command" "${given[@]}" ''
        return
    elif ((${#given[@]} >= limit)); then
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
)SCRIPT")
        .arg(optionNames(commonOptions()), names.join(QLatin1Char(' ')), branches,
             optionsWithValue(commands), optionBranches(commands, catalogue));
}

} // namespace tool
