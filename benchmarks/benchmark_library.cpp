// SPDX-License-Identifier: MIT

// What only this library has: its lock, its answer without a service, and its construction.

#include "Benchmarks.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QLoggingCategory>

#include <benchmark/benchmark.h>

#include <array>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

constexpr int most = 8;

/// Threads that share as many managers as the argument says.
void readInThreads(benchmark::State &state)
{
    static std::array<ConfigurationManager, most> managers;
    const auto count = static_cast<size_t>(state.range(0));
    ConfigurationManager &manager = managers.at(static_cast<size_t>(state.thread_index()) % count);
    for (auto _ : state)
        benchmark::DoNotOptimize(manager.getBaudrate());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(readInThreads)
    ->ArgName("managers")
    ->Arg(1)
    ->Arg(most)
    ->Threads(1)
    ->Threads(most)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

/// With the line in the log, which goes nowhere, or without.
void readUnconnected(benchmark::State &state, ConfigurationManager &unconnected)
{
    if (unconnected.isConnected())
        state.SkipWithError("there is a service");
    const bool isLogged = state.range(0) != 0;
    const QtMessageHandler handler =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    if (!isLogged)
        QLoggingCategory::setFilterRules(
            QStringLiteral("libconfigurationmanager.ConfigurationManager=false"));
    for (auto _ : state)
        benchmark::DoNotOptimize(unconnected.getBaudrate());
    QLoggingCategory::setFilterRules({});
    qInstallMessageHandler(handler);
}

void construct(benchmark::State &state)
{
    for (auto _ : state)
        ConfigurationManager();
}
// Each of them leaves something behind, as it must.
BENCHMARK(construct)->Iterations(20)->MeasureProcessCPUTime()->UseRealTime();

} // namespace

void registerLibraryBenchmarks(ConfigurationManager &unconnected)
{
    benchmark::RegisterBenchmark("readUnconnected", readUnconnected, std::ref(unconnected))
        ->ArgName("logged")
        ->Arg(0)
        ->Arg(1);
}
