// SPDX-License-Identifier: MIT

#ifndef TOOL_SECRET_H
#define TOOL_SECRET_H

#include <QtCore/QJsonValue>
#include <QtCore/QString>

namespace tool {

/// Whether the setting or operation of this name deals in a secret, such as a passphrase.
bool isSecret(const QString &name);

/// The value with null in the place of every secret that a map in it holds.
QJsonValue withoutSecrets(const QJsonValue &value);

/// Reads a secret: without echo after a prompt if standard input is a terminal, else the one line
/// of standard input. Throws a Failure if there is none, if it is not text, or if it is empty,
/// which may come from a pipe whose first program has failed.
QString readSecret(const QString &name);

} // namespace tool

#endif
