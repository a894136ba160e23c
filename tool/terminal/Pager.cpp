// SPDX-License-Identifier: MIT

#include "terminal/Pager.h"

#include "terminal/Columns.h"
#include "terminal/ShellCommand.h"
#include "terminal/TerminalSize.h"

#include <QtCore/QByteArray>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>

#include <algorithm>

namespace tool {

namespace {

/// The command line of the pager; empty for none.
QByteArray pagerCommand()
{
    for (const char *variable : {"EMBOSSERCTL_PAGER", "PAGER"}) {
        if (!qEnvironmentVariableIsSet(variable))
            continue;
        const QByteArray command = qgetenv(variable).trimmed();
        return command == "cat" ? QByteArray() : command;
    }
    const QString less = QStringLiteral("less");
    return QStandardPaths::findExecutable(less).isEmpty() ? QByteArray() : less.toLatin1();
}

/// How many lines of the terminal a line takes; the colours in it take no room.
int height(QString line, int columns)
{
    static const QRegularExpression color(QStringLiteral("\x1b\\[[0-9;]*m"));
    if (columns == 0)
        return 1;
    return std::max(1, (displayWidth(line.remove(color)) + columns - 1) / columns);
}

} // namespace

bool isPagingPossible()
{
    return isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) && qgetenv("TERM") != "dumb";
}

bool isHigherThanTerminal(const QString &text)
{
    const winsize size = terminalSize();
    int lines = 0;
    for (const QString &line : text.split(QLatin1Char('\n')))
        lines += height(line, size.ws_col);
    // What follows the last line break is the prompt's.
    return size.ws_row > 0 && lines > size.ws_row;
}

bool showInPager(const QString &text)
{
    const QByteArray command = pagerCommand();
    if (command.isEmpty())
        return false;
    // Ends at the end of the text, leaves colours as they are, and leaves the text on the screen.
    if (!qEnvironmentVariableIsSet("LESS"))
        qputenv("LESS", "FRX");
    return runInShell(command, text.toUtf8()) != commandNotFound;
}

} // namespace tool
