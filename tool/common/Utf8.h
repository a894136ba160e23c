// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMON_UTF8_H
#define TOOL_COMMON_UTF8_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace tool {

/// The text that the bytes are, or nothing if they are not UTF-8 or contain a NUL: no other text is
/// put in their place.
std::optional<QString> textFromUtf8(const QByteArray &bytes);

} // namespace tool

#endif
