// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_DESCRIPTION_H
#define TOOL_LIBRARY_DESCRIPTION_H

#include "library/Operation.h"

#include <QtCore/QJsonObject>

namespace tool {

/// What there is to tell about an operation, as list and describe print it with --json.
QJsonObject describe(const Operation &operation);

} // namespace tool

#endif
