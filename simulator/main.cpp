// SPDX-License-Identifier: MIT

#include "program/Options.h"
#include "program/Simulation.h"

#include <QtCore/QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <sys/stat.h>

namespace {

const int usageStatus = 2;

int fail(const std::runtime_error &error, int status)
{
    std::fprintf(stderr, "embosser-simulator: %s\n", error.what());
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    // What is kept in files may be secret.
    umask(S_IRWXG | S_IRWXO);
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("embosser-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION));
    try {
        simulator::runSimulation(simulator::optionsFrom(QCoreApplication::arguments()));
    } catch (const simulator::UsageError &error) {
        return fail(error, usageStatus);
    } catch (const std::runtime_error &error) {
        return fail(error, EXIT_FAILURE);
    }
    return EXIT_SUCCESS;
}
