// SPDX-License-Identifier: MIT

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QCoreApplication>

#include <cstdio>

/// Prints the embosser's model.
int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    libconfigurationmanager::AsyncConfigurationManager manager;
    manager.getModel().then(
        &application,
        [](const QString &model) {
            std::puts(qPrintable(model));
            QCoreApplication::quit();
        },
        [](const QDBusError &error) {
            std::fputs(qPrintable(error.name() + QLatin1Char('\n')), stderr);
            QCoreApplication::exit(1);
        });
    return QCoreApplication::exec();
}
