// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_PROGRAM_DOCUMENTATION_H
#define SIMULATOR_PROGRAM_DOCUMENTATION_H

#include <QtCore/QCommandLineOption>
#include <QtCore/QList>
#include <QtCore/QString>

namespace simulator {

/// "man", "bash" or "zsh": what the build generates of the command line's options. Throws
/// UsageError for another kind.
QString documentation(const QString &kind, const QList<QCommandLineOption> &options);

} // namespace simulator

#endif
