// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMANDLINE_COMMANDLINE_H
#define TOOL_COMMANDLINE_COMMANDLINE_H

#include "commandline/Command.h"
#include "terminal/Output.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace tool {

/// The options that every command takes.
const QVector<Option> &commonOptions();

/// These and those of each command.
QVector<Option> allOptions(const QVector<Command> &commands);

/// The command line, taken apart and checked.
struct CommandLine
{
    bool help = false;
    bool version = false;
    /// The documentation to print instead of running a command.
    QString generate;
    /// Whether to print what completes the last argument instead of running the command.
    bool complete = false;
    /// Null only if one of the above is asked for.
    const Command *command = nullptr;
    QStringList arguments;
    QHash<QString, QStringList> options;
    SessionOptions session;
    /// Empty for the system bus as the environment has it.
    QString busAddress;
    OutputOptions output;
};

/// From all arguments, the name of the program first. Throws a Failure that says what is wrong and
/// what may have been meant.
CommandLine parseCommandLine(const QStringList &all, const QVector<Command> &commands);

} // namespace tool

#endif
