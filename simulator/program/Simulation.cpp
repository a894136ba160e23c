// SPDX-License-Identifier: MIT

#include "program/Simulation.h"

#include "bus/BusName.h"
#include "bus/CallRecord.h"
#include "bus/Control.h"
#include "bus/Faults.h"
#include "bus/Service.h"
#include "methods/GeometryQueries.h"
#include "methods/ParameterQueries.h"
#include "methods/ServiceCommands.h"
#include "model/DBusTypes.h"
#include "model/Profile.h"
#include "model/Settings.h"
#include "program/Options.h"
#include "state/Configuration.h"
#include "state/Printer.h"
#include "state/Refusal.h"
#include "state/ServiceLog.h"
#include "state/Store.h"
#include "state/UserSettings.h"

#include <contract/Interface.h>
#include <support/TerminationSignals.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>

#include <cstdio>
#include <stdexcept>

namespace simulator {

namespace {

// How long a restart keeps the service off the bus.
const int restartMilliseconds = 500;

[[noreturn]] void end(const QString &reason)
{
    throw std::runtime_error(reason.toStdString());
}

} // namespace

void runSimulation(const Options &options)
{
    const contract::Interface &interface = contract::Interface::configurationManager();
    const Settings settings(interface);
    const Profile profile(options.profileFile, interface, settings);
    Store store(options.stateFile);
    const QString warning = store.bindTo(profile.name());
    if (!warning.isEmpty())
        std::fprintf(stderr, "embosser-simulator: %s\n", qPrintable(warning));
    Configuration configuration(settings, profile, store);
    configuration.takeHeldValues();
    UserSettings userSettings(configuration, store, options.usbDirectory);
    Printer printer(configuration, store);
    ServiceLog log;
    CallRecord calls(interface);
    Faults faults(interface);
    for (const QString &fault : options.faults) {
        try {
            faults.inject(fault);
        } catch (const Refusal &refusal) {
            throw UsageError((QStringLiteral("--fault: ") + refusal.message).toStdString());
        }
    }

    registerMapListTypes();
    // Not QDBusConnection::systemBus(): it holds calls back until events are processed, and then
    // lets others overtake them.
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus,
                                                        QCoreApplication::applicationName());
    if (!bus.isConnected())
        end(QStringLiteral("no bus: %1").arg(bus.lastError().message()));
    BusName name(bus, interface.name());
    BusName controlName(bus, Control::busName());
    QString loss;
    QObject::connect(&name, &BusName::lost, qApp, [&loss](const QString &reason) {
        loss = reason;
        QCoreApplication::quit();
    });

    // The caller gets its answer first.
    const auto restart = [&] {
        QTimer::singleShot(0, &name, [&name] { name.leave(restartMilliseconds); });
    };
    const QString legacyFile =
        options.stateFile.isEmpty() ? QString() : options.stateFile + QStringLiteral(".json");
    MethodTable methods = geometryQueries(configuration);
    methods.insert(parameterQueries(configuration));
    methods.insert(serviceCommands({configuration, userSettings, log, legacyFile, restart}));
    Service service(interface, configuration, userSettings, log, calls, faults, methods);
    QObject::connect(&service, &Service::leaveRequested, &name, &BusName::leave);
    QObject::connect(&service, &Service::carriedOut, &printer, &Printer::refresh);
    Control control(faults, log, calls, configuration, printer);
    QObject::connect(&control, &Control::returnRequested, &name, &BusName::takeAgain);
    if (!bus.registerVirtualObject(QStringLiteral("/"), &service) ||
        !bus.registerObject(Control::path(), &control))
        end(bus.lastError().message());

    // The control's first: it is never given up, so that a second simulator, which a bus starts
    // when it is called while this one has left it, ends before it takes the service's name.
    for (BusName *each : {&controlName, &name}) {
        const QString reason = each->take();
        if (!reason.isEmpty())
            end(reason);
    }
    printer.resume();
    // Until here, a signal has the effect that it has on any process.
    const support::TerminationSignals termination;
    std::printf("embosser-simulator: on the bus as %s\n", qPrintable(interface.name()));
    std::fflush(stdout);
    QCoreApplication::exec();
    if (!loss.isEmpty())
        end(loss);
}

} // namespace simulator
