// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_TERMINALSIZE_H
#define TOOL_TERMINAL_TERMINALSIZE_H

#include <sys/ioctl.h>
#include <unistd.h>

namespace tool {

/// The size of the terminal that standard output is; 0 in either direction if it is not known.
inline winsize terminalSize()
{
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size : winsize();
}

} // namespace tool

#endif
