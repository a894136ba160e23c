// SPDX-License-Identifier: MIT

#include "Shell.h"

#include "ChildProcess.h"

#include <QtCore/QProcessEnvironment>

Outcome Shell::run(const QString &commandLine, const QString &interpreter)
{
    const QString path = QStringLiteral("PATH");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(path, QStringLiteral(COMMAND_DIRECTORY ":") + environment.value(path));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));

    ChildProcess process(interpreter, {QStringLiteral("-c"), commandLine});
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_directory.path());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start();
    if (!process.waitForFinished())
        qFatal("%s: %s", qPrintable(commandLine), qPrintable(process.errorString()));
    return {process.readAllStandardOutput(), process.readAllStandardError(), process.exitCode()};
}
