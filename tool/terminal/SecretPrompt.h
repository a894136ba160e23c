// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_SECRETPROMPT_H
#define TOOL_TERMINAL_SECRETPROMPT_H

#include <QtCore/QString>

namespace tool {

/// Reads a secret: without echo after a prompt if standard input is a terminal, else the one line
/// of standard input. Throws a Failure if there is none, if it is not text, or if it is empty,
/// which may come from a pipe whose first program has failed.
QString readSecret(const QString &name);

} // namespace tool

#endif
