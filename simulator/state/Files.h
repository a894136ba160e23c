// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_FILES_H
#define SIMULATOR_STATE_FILES_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace simulator {

/// The content of a regular file. Throws a Refusal that names the file and the reason.
QByteArray readFile(const QString &path);

/// Replaces a file by one with this content. Throws a Refusal that names the file and the reason;
/// what was there before is still there then.
void writeFile(const QString &path, const QByteArray &content);

} // namespace simulator

#endif
