// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMANDLINE_COMMAND_H
#define TOOL_COMMANDLINE_COMMAND_H

#include "common/Failure.h"
#include "library/Session.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <limits>
#include <optional>

namespace tool {

class Catalogue;
class Output;

/// What the shell may complete an argument with.
enum class Completion {
    None,
    Operation,
    OperationOrSetting,
    ReadableSetting,
    WritableSetting,
    ValueList,
    File,
    FileOrLive,
};

/// An option, of one command or of all.
struct Option
{
    QString name;
    /// What the value is called; empty for a switch.
    QString valueName;
    QString description;
    bool isRepeatable = false;
    /// A letter that stands for the name after a single dash, if it is not null.
    QChar shortName = {};
    Completion completion = Completion::None;
    /// What a switch may be given after "=", if anything.
    QString form = {};
};

/// What a command is given.
struct Request
{
    QStringList arguments;
    /// The options given, with their values.
    QHash<QString, QStringList> options;
    SessionOptions session;
    Output &output;
    const Catalogue &catalogue;

    bool hasOption(const QString &name) const { return options.contains(name); }

    /// The value of an option; of one that is repeated, the last.
    std::optional<QString> option(const QString &name) const
    {
        return hasOption(name) ? std::optional(options.value(name).last()) : std::nullopt;
    }
};

/// A subcommand: the one source of its parsing, help, manual page and completion.
struct Command
{
    static constexpr int AnyNumber = std::numeric_limits<int>::max();

    QString name;
    /// The arguments as written in a synopsis: "NAME VALUE".
    QString arguments;
    int minArguments = 0;
    int maxArguments = 0;
    Completion completion = Completion::None;
    /// Whether only the first argument is a name, and not all.
    bool namesFirstOnly = false;
    /// Whether a person may want to page through what it prints.
    bool isLong = false;
    QVector<Option> options;
    QString summary;
    /// Paragraphs.
    QStringList description;
    ExitStatus (*run)(const Request &request) = nullptr;
    /// What the service has for the last one of the arguments, of which as much is given as stands
    /// before the value: nothing, or "NAME=". Null if the service has nothing for any.
    QStringList (*candidates)(const Request &request) = nullptr;

    /// How many of the arguments, from the first one, are names: completed, and never empty.
    int maxNames() const { return namesFirstOnly ? 1 : maxArguments; }
};

/// "embosserctl set NAME [VALUE] [--flag]"
QString synopsis(const Command &command);

/// An option as it is typed: "--collection ID".
QString typed(const Option &option);

} // namespace tool

#endif
