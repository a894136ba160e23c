// SPDX-License-Identifier: MIT

// Brings each embosser of a production line to the same settings, all or none, and looks whether it
// has them.

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDebug>
#include <QtCore/QTextStream>
#include <QtCore/QVariantMap>

#include <cstdlib>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    libconfigurationmanager::detail::ConfigurationManager manager;
    if (!manager.isConnected()) {
        qCritical("There is no embosser: scripts/demo --shell has one");
        return EXIT_FAILURE;
    }

    const QString speed = QStringLiteral("Medium");
    const int copies = 1;
    const int tabSize = 4;
    // Why the service refuses is in the library's log line.
    if (!manager.processSequence({{QStringLiteral("PrintSpeed"), speed},
                                  {QStringLiteral("NumberOfCopies"), copies},
                                  {QStringLiteral("TabSize"), tabSize}})) {
        qCritical("The embosser has refused; nothing has changed");
        return EXIT_FAILURE;
    }
    // A service may accept a value and hold another.
    if (manager.getPrintSpeed() != speed || manager.getNumberOfCopies() != copies ||
        manager.getTabSize() != tabSize) {
        qCritical("The embosser does not hold what it was given");
        return EXIT_FAILURE;
    }
    QTextStream(stdout) << manager.getSerialNo() << " is ready" << Qt::endl;
    return EXIT_SUCCESS;
}
