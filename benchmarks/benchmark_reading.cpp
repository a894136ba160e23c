// SPDX-License-Identifier: MIT

// What it takes embosserctl to read all settings, one at a time and with all reads on the way
// together: from the simulator, from the simulator when each of its answers comes 2 ms late, and
// from a service that takes 2 ms for one answer after the other.

#include "ChildProcess.h"
#include "PrivateBus.h"
#include "ServiceName.h"

#include "library/Catalogue.h"
#include "library/Session.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>
#include <QtDBus/QDBusConnectionInterface>

#include <benchmark/benchmark.h>

#include <cstdlib>

using namespace tool;

namespace {

struct Service
{
    const char *name;
    QString program;
    QStringList arguments;
    QVector<const Setting *> settings;
};

void awaitThatNobodyIsThere()
{
    while (QDBusConnection::systemBus().interface()->isServiceRegistered(serviceName))
        QThread::msleep(1);
}

void readOneAtATime(Session &session, const QVector<const Setting *> &settings)
{
    for (const Setting *setting : settings)
        benchmark::DoNotOptimize(session.call(*setting->getter));
}

void readTogether(Session &session, const QVector<const Setting *> &settings)
{
    for (const auto &[setting, call] : session.beginToRead(settings))
        benchmark::DoNotOptimize(session.finish(call));
}

void read(benchmark::State &state, const Service &service,
          void (*how)(Session &, const QVector<const Setting *> &))
{
    awaitThatNobodyIsThere();
    ChildProcess process(service.program, service.arguments);
    process.startAndReadLine();
    for (auto _ : state) {
        Session session({});
        how(session, service.settings);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;

    const PrivateBus bus;
    const Catalogue catalogue;
    QVector<const Setting *> readable;
    for (const Setting &setting : catalogue.settings()) {
        if (setting.getter)
            readable.append(&setting);
    }
    const Setting *const baudrate = catalogue.setting(QStringLiteral("Baudrate"));
    const QString simulator = QStringLiteral(SIMULATOR_PROGRAM);
    const Service services[] = {
        {"simulator", simulator, {}, readable},
        {"late simulator",
         simulator,
         {QStringLiteral("--fault"), QStringLiteral("delay:*:0:2")},
         readable},
        {"slow service",
         QStringLiteral(BENCHMARK_SERVICE_PROGRAM),
         {QStringLiteral(INTERFACE_FILE), QStringLiteral("2000")},
         QVector<const Setting *>(readable.size(), baudrate)},
    };
    for (const Service &service : services) {
        const auto name = [&](const char *how) {
            return "read" + std::to_string(readable.size()) + '/' + service.name + '/' + how;
        };
        benchmark::RegisterBenchmark(name("one at a time").c_str(), read, service, readOneAtATime)
            ->UseRealTime();
        benchmark::RegisterBenchmark(name("together").c_str(), read, service, readTogether)
            ->UseRealTime();
    }
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
