// SPDX-License-Identifier: MIT

#ifndef TOOL_DOCUMENTATION_DOCUMENTATION_H
#define TOOL_DOCUMENTATION_DOCUMENTATION_H

#include "commandline/Command.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace tool {

class Catalogue;

/// What all forms of the documentation say about the program as a whole.
struct ProgramText
{
    static QString summary();
    /// Paragraphs.
    static QStringList description();
    /// Rows of a status and its meaning.
    static QVector<QStringList> exitStatus();
    /// Rows of a variable and its meaning.
    static QVector<QStringList> environment();
    /// Rows of a command line and what it does.
    static QVector<QStringList> examples();
};

QString programHelp(const QVector<Command> &commands);
QString commandHelp(const Command &command);
QString manualPage(const QVector<Command> &commands);
QString bashCompletion(const QVector<Command> &commands, const Catalogue &catalogue);
QString zshCompletion(const QVector<Command> &commands, const Catalogue &catalogue);

/// What the arguments of a command may be; empty where only the user, or the file system, knows.
QStringList candidates(Completion completion, const Catalogue &catalogue);

/// "man", "bash" or "zsh": what the build generates. Throws a Failure for another kind.
QString documentation(const QString &kind, const QVector<Command> &commands,
                      const Catalogue &catalogue);

} // namespace tool

#endif
