// SPDX-License-Identifier: MIT

// Asks the embosser what it is, and changes one setting.

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QTextStream>

#include <cstdlib>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    libconfigurationmanager::detail::ConfigurationManager manager;
    if (!manager.isConnected()) {
        qCritical("There is no embosser: scripts/demo --shell has one");
        return EXIT_FAILURE;
    }

    manager.setPrintSpeed(QStringLiteral("Draft"));
    QTextStream(stdout) << manager.getModel() << " prints at speed " << manager.getPrintSpeed()
                        << Qt::endl;
    return EXIT_SUCCESS;
}
