// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMANDLINE_SECONDS_H
#define TOOL_COMMANDLINE_SECONDS_H

#include <QtCore/QString>

#include <chrono>

namespace tool {

/// A time that is given in seconds, also in fractions. Throws a Failure for what is not from 0 to a
/// day.
std::chrono::milliseconds secondsFrom(const QString &text);

} // namespace tool

#endif
