// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_SHELLCOMMAND_H
#define TOOL_TERMINAL_SHELLCOMMAND_H

#include <QtCore/QByteArray>

namespace tool {

/// What a shell has as the status of a command that it does not find.
constexpr int commandNotFound = 127;

/// Has the shell run a command line that the user has chosen, such as that of a pager, and waits
/// until it has ended. It has the terminal, and Ctrl-C, for itself; its standard input is the input
/// or, without one, our own.
///
/// Returns its exit status, with 128 added to the number of a signal that has ended it.
int runInShell(const QByteArray &commandLine, const QByteArray &input = {});

} // namespace tool

#endif
