// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMANDS_COMMANDS_H
#define TOOL_COMMANDS_COMMANDS_H

#include "commandline/Command.h"

#include <QtCore/QVector>

namespace tool {

Command statusCommand();
Command listCommand();
Command describeCommand();
Command getCommand();
Command setCommand();
Command resetCommand();
Command editCommand();
Command settingsCommand();
Command callCommand();
Command valuesCommand();
Command paperCommand();
Command reportCommand();
Command dumpCommand();
Command diffCommand();
Command restoreCommand();
Command captureCommand();
Command verifyCommand();
Command monitorCommand();
Command watchCommand();
Command waitCommand();

/// All subcommands, in the order in which they are listed.
inline QVector<Command> allCommands()
{
    return {statusCommand(),  listCommand(),   describeCommand(), getCommand(),   setCommand(),
            resetCommand(),   editCommand(),   settingsCommand(), callCommand(),  valuesCommand(),
            paperCommand(),   reportCommand(), dumpCommand(),     diffCommand(),  restoreCommand(),
            captureCommand(), verifyCommand(), monitorCommand(),  watchCommand(), waitCommand()};
}

} // namespace tool

#endif
