// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMON_SUGGESTION_H
#define TOOL_COMMON_SUGGESTION_H

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace tool {

/// What to append to the complaint that a name is unknown: "; did you mean 'x' or 'y'?", or nothing
/// when no known name is similar.
QString didYouMean(const QString &given, const QStringList &known);

} // namespace tool

#endif
