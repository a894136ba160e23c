// SPDX-License-Identifier: MIT

// Connects the facade's signals by their addresses, which in a program that is not position
// independent are the program's own: the library must know them.

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>

using libconfigurationmanager::detail::ConfigurationManager;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const ConfigurationManager manager;
    const auto quit = [] { QCoreApplication::quit(); };
    const bool isConnected =
        QObject::connect(&manager, &ConfigurationManager::connected, &application, quit) &&
        QObject::connect(&manager, &ConfigurationManager::disconnected, &application, quit);
    return isConnected ? EXIT_SUCCESS : EXIT_FAILURE;
}
