// SPDX-License-Identifier: MIT

#include "BoundProcess.h"

#include <csignal>
#include <sys/prctl.h>

namespace libconfigurationmanager {

BoundProcess::BoundProcess(const QStringList &command)
{
    setProgram(command.constFirst());
    setArguments(command.mid(1));
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

BoundProcess::~BoundProcess()
{
    killAndWait();
}

QString BoundProcess::startAndReadLine()
{
    start();
    while (!canReadLine()) {
        if (!waitForReadyRead())
            return {};
    }
    return QString::fromUtf8(readLine()).trimmed();
}

void BoundProcess::killAndWait()
{
    kill();
    waitForFinished();
}

void BoundProcess::terminateAndWait()
{
    terminate();
    waitForFinished();
}

void BoundProcess::setupChildProcess()
{
    // Also when this process itself is killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

QStringList dbusDaemonCommand(const QString &socket, const QString &configuration)
{
    return {QStringLiteral("dbus-daemon"), QStringLiteral("--nofork"),
            QStringLiteral("--print-address"), QStringLiteral("--address=unix:path=") + socket,
            configuration.isEmpty() ? QStringLiteral("--session")
                                    : QStringLiteral("--config-file=") + configuration};
}

} // namespace libconfigurationmanager
