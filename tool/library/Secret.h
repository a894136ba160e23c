// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_SECRET_H
#define TOOL_LIBRARY_SECRET_H

#include <QtCore/QJsonValue>
#include <QtCore/QString>

namespace tool {

/// Whether what has this name is secret: a setting that the contract says so of, or something that
/// it does not know but whose name says so.
bool isSecret(const QString &name);

/// The value with null in the place of every secret that a map in it holds.
QJsonValue withoutSecrets(const QJsonValue &value);

} // namespace tool

#endif
