// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMON_QUOTING_H
#define TOOL_COMMON_QUOTING_H

#include <QtCore/QString>

namespace tool {

/// The text with escapes for what would move the cursor, break a row, or make the terminal do
/// worse, and for the backslash, which would look like one of them.
QString printable(const QString &text);

} // namespace tool

#endif
