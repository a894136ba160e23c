// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>

#include <cstdio>

/// Prints the embosser's model.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    libconfigurationmanager::detail::ConfigurationManager manager;
    if (!manager.isConnected()) {
        std::fputs("There is no configuration service.\n", stderr);
        return 1;
    }
    std::puts(qPrintable(manager.getModel()));
    return 0;
}
