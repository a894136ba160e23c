// SPDX-License-Identifier: MIT

#ifndef TOOL_PROGRAM_H
#define TOOL_PROGRAM_H

#include <QtCore/QByteArray>
#include <QtCore/QVector>

namespace tool {

/// What the program does with its arguments, of which the first is its name. Returns the status
/// with which to exit. Needs an application object with a name and a version.
int runProgram(const QVector<QByteArray> &arguments);

} // namespace tool

#endif
