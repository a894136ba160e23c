// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_SEQUENCE_H
#define TOOL_LIBRARY_SEQUENCE_H

#include <QtCore/QVariant>

namespace tool {

class Catalogue;
class Session;

/// Writes the settings of these names in one call: all of them or, with a Failure, none.
void writeTogether(const QVariantMap &values, const Catalogue &catalogue, Session *session);

} // namespace tool

#endif
