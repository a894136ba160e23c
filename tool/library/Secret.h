// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_SECRET_H
#define TOOL_LIBRARY_SECRET_H

#include <QtCore/QJsonValue>
#include <QtCore/QString>

namespace tool {

/// Whether the setting or operation of this name deals in a secret, such as a passphrase.
bool isSecret(const QString &name);

/// The value with null in the place of every secret that a map in it holds.
QJsonValue withoutSecrets(const QJsonValue &value);

} // namespace tool

#endif
