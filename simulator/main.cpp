// SPDX-License-Identifier: MIT

#include "BusName.h"
#include "Configuration.h"
#include "Interface.h"
#include "Service.h"
#include "Settings.h"
#include "Store.h"
#include "TerminationSignals.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>

#include <cstdio>

using namespace simulator;

namespace {

[[noreturn]] void fail(const QString &reason)
{
    std::fprintf(stderr, "%s: %s\n", qPrintable(QCoreApplication::applicationName()),
                 qPrintable(reason));
    std::exit(EXIT_FAILURE);
}

QByteArray resource(const QString &path)
{
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    return file.readAll();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("embosser-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Simulates the configuration service of a Braille embosser on the system bus, or on the\n"
        "bus that DBUS_SYSTEM_BUS_ADDRESS names."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);
    if (!parser.positionalArguments().isEmpty())
        fail(QStringLiteral("unexpected argument \"%1\"; see --help")
                 .arg(parser.positionalArguments().constFirst()));

    const TerminationSignals signals_;
    QObject::connect(&signals_, &TerminationSignals::received, &application,
                     &QCoreApplication::quit);

    const Interface interface(
        resource(QStringLiteral(":/com.tavelornbraille.ConfigurationManager.xml")));
    const Settings settings(interface);
    try {
        Store store((QString()));
        Configuration configuration(settings, store);
        Service service(interface, configuration);

        QDBusConnection bus = QDBusConnection::systemBus();
        if (!bus.isConnected())
            fail(QStringLiteral("no bus: %1").arg(bus.lastError().message()));
        bus.registerVirtualObject(QStringLiteral("/"), &service);
        BusName name(bus, interface.name());
        const QString reason = name.take();
        if (!reason.isEmpty())
            fail(QStringLiteral("%1: %2").arg(interface.name(), reason));
        QObject::connect(&name, &BusName::lost, fail);

        std::printf("embosser-simulator: on the bus as %s\n", qPrintable(interface.name()));
        std::fflush(stdout);
        return QCoreApplication::exec();
    } catch (const StoreError &error) {
        fail(QString::fromUtf8(error.what()));
    }
}
