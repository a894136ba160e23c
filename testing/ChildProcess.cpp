// SPDX-License-Identifier: MIT

#include "ChildProcess.h"

#include <csignal>
#include <sys/prctl.h>

ChildProcess::ChildProcess(const QString &program, const QStringList &arguments)
{
    // Programs of this build may be for another machine.
    QStringList command;
    if (program.startsWith(QStringLiteral(BUILD_DIRECTORY)))
        command = QStringLiteral(EMULATOR).split(QLatin1Char('|'), Qt::SkipEmptyParts);
    command << program << arguments;
    setProgram(command.takeFirst());
    setArguments(command);
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

ChildProcess::~ChildProcess()
{
    killAndWait();
}

QString ChildProcess::startAndReadLine()
{
    start();
    while (!canReadLine()) {
        if (!waitForReadyRead())
            qFatal("%s did not get ready: %s", qPrintable(program()), qPrintable(errorString()));
    }
    return QString::fromUtf8(readLine()).trimmed();
}

void ChildProcess::killAndWait()
{
    kill();
    waitForFinished();
}

void ChildProcess::terminateAndWait()
{
    terminate();
    waitForFinished();
}

void ChildProcess::setupChildProcess()
{
    // Also when the test itself is killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}
