// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_BUS_CONTROL_H
#define SIMULATOR_BUS_CONTROL_H

#include "model/DBusTypes.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusContext>

namespace simulator {

class Faults;
class ServiceLog;

/// The object on the bus by which a test controls the simulator itself.
class Control : public QObject, protected QDBusContext
{
    Q_OBJECT
public:
    Control(Faults &faults, const ServiceLog &log);

    /// Where it is found, also while the service has left the bus.
    static QString busName() { return QStringLiteral("com.tavelornbraille.Simulator"); }
    static QString path() { return QStringLiteral("/com/tavelornbraille/Simulator"); }

    /// Answers the call in hand with an error.
    void refuse(const QString &name, const QString &message);

Q_SIGNALS:
    /// The service is to come back to the bus.
    void returnRequested();
};

class FaultsAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tavelornbraille.Simulator.Faults")
public:
    FaultsAdaptor(Faults &faults, Control *control);

public Q_SLOTS:
    /// See Faults::inject().
    void Inject(const QString &kind, const QString &method, uint calls, const QString &detail);

    /// Forgets what waits and what has happened.
    void Clear();

    /// Maps with kind, method, calls and detail.
    simulator::MapList Pending() const;

    /// Maps with kind and method, one for each of the last 1000 calls that met a fault.
    simulator::MapList History() const;

    /// Has the service come back that a fault has made leave the bus.
    void Return();

Q_SIGNALS:
    void Happened(const QString &kind, const QString &method);

private:
    Faults &m_faults;
    Control *const m_control;
};

class LogAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tavelornbraille.Simulator.Log")
public:
    LogAdaptor(const ServiceLog &log, Control *control);

public Q_SLOTS:
    bool IsEnabled() const;

    /// The last lines, the oldest first.
    QStringList Lines() const;

private:
    const ServiceLog &m_log;
};

} // namespace simulator

#endif
