// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_PAGER_H
#define TOOL_TERMINAL_PAGER_H

#include <QtCore/QString>

namespace tool {

// The program with which a text is read that is higher than the terminal.

/// Whether there is a person at a terminal who can page.
bool isPagingPossible();

/// Whether the terminal has no room for the text and for the prompt that follows it.
bool isHigherThanTerminal(const QString &text);

/// Has the user's pager show the text until the user leaves it. Returns false if there is none, or
/// if it could not be started: nothing has been shown then.
bool showInPager(const QString &text);

} // namespace tool

#endif
