// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_LOOKUP_H
#define TOOL_LIBRARY_LOOKUP_H

#include "library/Catalogue.h"

#include <QtCore/QString>
#include <QtCore/QVector>

namespace tool {

// What the user's names stand for. Each function throws a Failure that says why a name stands for
// nothing, and what may have been meant.

const Setting &readableSetting(const Catalogue &catalogue, const QString &name);
const Setting &writableSetting(const Catalogue &catalogue, const QString &name);

/// Whether the text stands for several names.
bool isWildcard(const QString &text);
bool matchesWildcard(const QString &name, const QString &wildcard);

/// The readable settings whose name matches a wildcard, or whose name or meaning contains a text.
QVector<const Setting *> settingsLike(const Catalogue &catalogue, const QString &pattern);

/// The setting of that name, or those that match it, but for secrets, which are shown only to
/// whoever asks for them.
QVector<const Setting *> settingsMeant(const Catalogue &catalogue, const QString &name);

/// The operations of a name or a signature.
QVector<const Operation *> operationsCalled(const Catalogue &catalogue, const QString &name);

/// The one of them that takes so many arguments.
const Operation &operationFor(const Catalogue &catalogue, const QString &name, int arguments);

} // namespace tool

#endif
