// SPDX-License-Identifier: MIT

#ifndef TESTS_TOOL_SHELL_H
#define TESTS_TOOL_SHELL_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

/// What a command has left behind.
struct Outcome
{
    QByteArray output;
    QByteArray errors;
    int status;
};

/// A shell in a directory of its own, which finds the tool as `embosserctl`.
class Shell
{
public:
    Outcome run(const QString &commandLine, const QString &interpreter = QStringLiteral("sh"));

    /// The whole name of a file in that directory.
    QString path(const QString &file) const { return m_directory.filePath(file); }

private:
    QTemporaryDir m_directory;
};

#endif
