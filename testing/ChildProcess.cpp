// SPDX-License-Identifier: MIT

#include "ChildProcess.h"

namespace {

/// Programs of this build may be for another machine.
QStringList commandOf(const QString &program, const QStringList &arguments)
{
    QStringList command;
    if (program.startsWith(QStringLiteral(BUILD_DIRECTORY)))
        command = QStringLiteral(EMULATOR).split(QLatin1Char('|'), Qt::SkipEmptyParts);
    return command << program << arguments;
}

} // namespace

ChildProcess::ChildProcess(const QString &program, const QStringList &arguments)
    : BoundProcess(commandOf(program, arguments))
{
}

QString ChildProcess::startAndReadLine()
{
    const QString line = BoundProcess::startAndReadLine();
    if (line.isNull())
        qFatal("%s did not get ready: %s", qPrintable(program()), qPrintable(errorString()));
    return line;
}
