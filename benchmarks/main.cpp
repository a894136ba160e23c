// SPDX-License-Identifier: MIT

#include "Benchmarks.h"
#include "ChildProcess.h"
#include "PrivateBus.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>

#include <benchmark/benchmark.h>

using libconfigurationmanager::detail::ConfigurationManager;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;

    const PrivateBus bus;
    // There is no event loop to tell it that the service has come.
    ConfigurationManager unconnected;
    ChildProcess service(QStringLiteral(BENCHMARK_SERVICE_PROGRAM),
                         {QStringLiteral(INTERFACE_FILE)});
    service.startAndReadLine();

    registerCallBenchmarks();
    registerLibraryBenchmarks(unconnected);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
