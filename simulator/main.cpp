// SPDX-License-Identifier: MIT

#include "program/Options.h"
#include "program/Simulation.h"

#include <QtCore/QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <sys/stat.h>

int main(int argc, char *argv[])
{
    // What is kept in files may be secret.
    umask(S_IRWXG | S_IRWXO);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("embosser-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION));
    try {
        simulator::runSimulation(simulator::optionsFrom(application));
    } catch (const std::runtime_error &error) {
        std::fprintf(stderr, "embosser-simulator: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
