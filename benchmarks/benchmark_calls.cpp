// SPDX-License-Identifier: MIT

// The same remote calls by this library, by Qt D-Bus itself and by other libraries.

#include "Benchmarks.h"
#include "Call.h"
#include "callers/Callers.h"

#include <benchmark/benchmark.h>

namespace {

const struct
{
    const char *name;
    Caller (*connect)();
} callers[] = {
    {"library", connectLibrary},
    {"library by name", connectLibraryByName},
    {"QDBusAbstractInterface", connectQDBusAbstractInterface},
    {"QDBusConnection", connectQDBusConnection},
    {"QDBusConnection, messages kept", connectQDBusConnectionWithKeptMessages},
    {"QDBusInterface", connectQDBusInterface},
    {"qdbusxml2cpp proxy", connectGeneratedProxy},
    {"libdbus", connectLibdbus},
    {"sd-bus", connectSdBus},
    {"sdbus-c++", connectSdbusCpp},
    {"GDBus", connectGDBus},
};

} // namespace

void registerCallBenchmarks()
{
    static const std::vector<Call> calls = makeCalls();
    for (const auto &[name, connect] : callers) {
        const Caller makeCall = connect();
        for (const Call &call : calls) {
            const auto run = [makeCall, &call](benchmark::State &state) {
                for (auto _ : state) {
                    if (!makeCall(call))
                        state.SkipWithError("there was no answer");
                }
            };
            auto *const registered =
                benchmark::RegisterBenchmark((call.name + '/' + name).c_str(), run)
                    ->MeasureProcessCPUTime()
                    ->UseRealTime();
            // Each of these calls takes longer than many others together.
            if (call.entries > 10000)
                registered->Repetitions(5);
        }
    }
}
