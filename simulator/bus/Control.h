// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_BUS_CONTROL_H
#define SIMULATOR_BUS_CONTROL_H

#include "model/DBusTypes.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusContext>
#include <QtDBus/QDBusVariant>

#include <functional>

namespace simulator {

class CallRecord;
class Configuration;
class Faults;
class Printer;
class ServiceLog;

/// The object on the bus by which a test controls the simulator itself.
class Control : public QObject, protected QDBusContext
{
    Q_OBJECT
public:
    Control(Faults &faults, const ServiceLog &log, CallRecord &calls, Configuration &configuration,
            Printer &printer);

    /// Where it is found, also while the service has left the bus.
    static QString busName() { return QStringLiteral("com.tavelornbraille.Simulator"); }
    static QString path() { return QStringLiteral("/com/tavelornbraille/Simulator"); }

    /// Answers the call in hand with an error.
    void refuse(const QString &name, const QString &message);

    /// Carries the call in hand out, or answers it with why that cannot be.
    void carryOut(const std::function<void()> &action);

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

    /// The next calls of a method are not carried out, but answered with a value of any type.
    void Answer(const QString &method, uint calls, const QDBusVariant &value);

    /// The same with an error.
    void Refuse(const QString &method, uint calls, const QString &errorName,
                const QString &message);

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

class CallsAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tavelornbraille.Simulator.Calls")
public:
    CallsAdaptor(CallRecord &calls, Configuration &configuration, Printer &printer,
                 Control *control);

public Q_SLOTS:
    /// Maps with method, arguments and outcome, one for each of the last 1000 calls of the service,
    /// the oldest first; of one method, or, if that is empty, of all. Secrets are withheld.
    simulator::MapList Calls(const QString &method = {}) const;

    /// Forgets the calls.
    void Clear();

    /// Has the model's values again for all settings, and forgets what has been saved and the job.
    void Reset();

private:
    CallRecord &m_calls;
    Configuration &m_configuration;
    Printer &m_printer;
    Control *const m_control;
};

class PrinterAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.tavelornbraille.Simulator.Printer")
public:
    PrinterAdaptor(Printer &printer, Control *control);

public Q_SLOTS:
    /// See Printer.
    void Print(uint pages, uint copies, uint milliseconds);
    uint Step(uint pages);
    void Cancel();
    void Interrupt(const QString &condition, uint afterPages);
    void Resolve();
    QVariantMap Job();

Q_SIGNALS:
    void Changed(const QString &status);

private:
    Printer &m_printer;
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
