// SPDX-License-Identifier: MIT

#include "SimulatedModels.h"

#include "ChildProcess.h"

QStringList simulatedModels()
{
    ChildProcess simulator(QStringLiteral(SIMULATOR), {QStringLiteral("--list-models")});
    simulator.setProcessChannelMode(QProcess::SeparateChannels);
    simulator.start();
    if (!simulator.waitForFinished())
        qFatal("%s: %s", SIMULATOR, qPrintable(simulator.errorString()));
    return QString::fromUtf8(simulator.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}
