// SPDX-License-Identifier: MIT

#include "SimulatedModels.h"

#include "ChildProcess.h"

QStringList simulatedModels()
{
    const QStringList few = QStringLiteral(FEW_MODELS).split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (!few.isEmpty())
        return few;
    ChildProcess simulator(QStringLiteral(SIMULATOR), {QStringLiteral("--list-models")});
    simulator.setProcessChannelMode(QProcess::SeparateChannels);
    simulator.start();
    if (!simulator.waitForFinished())
        qFatal("%s: %s", SIMULATOR, qPrintable(simulator.errorString()));
    return QString::fromUtf8(simulator.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}
