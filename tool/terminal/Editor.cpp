// SPDX-License-Identifier: MIT

#include "terminal/Editor.h"

#include "common/Failure.h"
#include "terminal/ShellCommand.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

namespace tool {

namespace {

/// A command line, since options may follow the name of the program.
QByteArray editorCommand()
{
    for (const char *variable : {"VISUAL", "EDITOR"}) {
        const QByteArray command = qgetenv(variable).trimmed();
        if (!command.isEmpty())
            return command;
    }
    // Debian's name for the one that the administrator has chosen.
    const bool isChosen = !QStandardPaths::findExecutable(QStringLiteral("editor")).isEmpty();
    return isChosen ? QByteArrayLiteral("editor") : QByteArrayLiteral("vi");
}

QByteArray quotedForShell(QByteArray text)
{
    return '\'' + text.replace('\'', "'\\''") + '\'';
}

} // namespace

void editFile(const QString &name)
{
    const QByteArray command = editorCommand();
    const int status = runInShell(command + ' ' + quotedForShell(QFile::encodeName(name)));
    if (status != 0) {
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("the editor '%1' has ended with status %2; nothing has been "
                                     "written")
                          .arg(QString::fromLocal8Bit(command), QString::number(status)));
    }
}

} // namespace tool
