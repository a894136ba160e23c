// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_EDITOR_H
#define TOOL_TERMINAL_EDITOR_H

#include <QtCore/QString>

namespace tool {

/// Has the user edit a file, in the editor of $VISUAL or $EDITOR, and waits until it is left.
/// Throws a Failure if the editor has failed.
void editFile(const QString &name);

} // namespace tool

#endif
