// SPDX-License-Identifier: MIT

#include "BusName.h"
#include "Configuration.h"
#include "Control.h"
#include "Faults.h"
#include "GeometryQueries.h"
#include "Interface.h"
#include "Options.h"
#include "ParameterQueries.h"
#include "Profile.h"
#include "Refusal.h"
#include "Service.h"
#include "ServiceCommands.h"
#include "ServiceLog.h"
#include "Settings.h"
#include "Store.h"
#include "TerminationSignals.h"
#include "Types.h"
#include "UserSettings.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>

#include <cstdio>
#include <sys/stat.h>

using namespace simulator;

namespace {

// How long a restart keeps the service off the bus.
const int restartMilliseconds = 500;

int fail(const QString &reason)
{
    std::fprintf(stderr, "embosser-simulator: %s\n", qPrintable(reason));
    return EXIT_FAILURE;
}

QByteArray resource(const QString &path)
{
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    return file.readAll();
}

int run(const Options &options)
{
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::received, qApp, &QCoreApplication::quit);

    const Interface interface(
        resource(QStringLiteral(":/com.tavelornbraille.ConfigurationManager.xml")));
    const Settings settings(interface);
    const Profile profile(options.profileFile, interface, settings);
    Store store(options.stateFile);
    store.bindTo(profile.name());
    Configuration configuration(settings, profile, store);
    UserSettings userSettings(configuration, store, options.usbDirectory);
    ServiceLog log;
    Faults faults(interface);
    for (const QString &fault : options.faults) {
        try {
            faults.inject(fault);
        } catch (const Refusal &refusal) {
            return fail(QStringLiteral("--fault: ") + refusal.message);
        }
    }

    registerListTypes();
    // Not QDBusConnection::systemBus(): it holds calls back until events are processed, and then
    // lets others overtake them.
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus,
                                                        QCoreApplication::applicationName());
    if (!bus.isConnected())
        return fail(QStringLiteral("no bus: %1").arg(bus.lastError().message()));
    BusName name(bus, interface.name());
    BusName controlName(bus, Control::busName());
    QObject::connect(&name, &BusName::lost, qApp,
                     [](const QString &reason) { QCoreApplication::exit(fail(reason)); });

    // The caller gets its answer first.
    const auto restart = [&] {
        QTimer::singleShot(0, &name, [&name] { name.leave(restartMilliseconds); });
    };
    const QString legacyFile =
        options.stateFile.isEmpty() ? QString() : options.stateFile + QStringLiteral(".json");
    Handlers handlers = geometryQueries(configuration);
    handlers.insert(parameterQueries(configuration));
    handlers.insert(serviceCommands({configuration, userSettings, log, legacyFile, restart}));
    Service service(interface, configuration, userSettings, log, faults, handlers);
    QObject::connect(&service, &Service::leaveRequested, &name, &BusName::leave);
    Control control(faults, log);
    QObject::connect(&control, &Control::returnRequested, &name, &BusName::takeAgain);
    if (!bus.registerVirtualObject(QStringLiteral("/"), &service) ||
        !bus.registerObject(Control::path(), &control))
        return fail(bus.lastError().message());

    // The control's first: it is never given up, so that a second simulator, which a bus starts
    // when it is called while this one has left it, ends before it takes the service's name.
    for (BusName *each : {&controlName, &name}) {
        const QString reason = each->take();
        if (!reason.isEmpty())
            return fail(reason);
    }
    std::printf("embosser-simulator: on the bus as %s\n", qPrintable(interface.name()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    // What is kept in files may be secret.
    umask(S_IRWXG | S_IRWXO);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("embosser-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION));
    try {
        return run(optionsFrom(application));
    } catch (const std::runtime_error &error) {
        return fail(QString::fromUtf8(error.what()));
    }
}
