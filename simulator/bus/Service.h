// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_BUS_SERVICE_H
#define SIMULATOR_BUS_SERVICE_H

#include "methods/MethodTable.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

namespace contract {
class Interface;
} // namespace contract

namespace simulator {

class Call;
class CallRecord;
class Configuration;
class Faults;
class ServiceLog;
class UserSettings;
struct Fault;

/// Answers the calls of the configuration service's methods.
class Service : public QDBusVirtualObject
{
    Q_OBJECT
public:
    /// `methods` are of the methods that neither read or write one setting nor have their answer
    /// in the profile. Throws JsonError if that leaves a method without an answer.
    Service(const contract::Interface &interface, Configuration &configuration,
            UserSettings &userSettings, ServiceLog &log, CallRecord &calls, Faults &faults,
            const MethodTable &methods);

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

Q_SIGNALS:
    /// A fault has the service leave the bus, for 0 milliseconds until it is told to return.
    void leaveRequested(int milliseconds);

    /// A call has been carried out, which may have set something.
    void carriedOut();

private:
    void answerFaultily(const Fault &fault, const QDBusMessage &message,
                        const QDBusConnection &connection);
    void answerWith(const QDBusMessage &answer, const QDBusMessage &message,
                    const QDBusConnection &connection);
    /// There are none: what lists the interface may ask nevertheless.
    bool answerAboutProperties(const QDBusMessage &message, const QDBusConnection &connection);
    /// For the service's log and for whoever controls the simulator.
    void note(const QDBusMessage &message, const QString &outcome);
    QDBusMessage answerTo(const QDBusMessage &message);
    QVariant carryOut(const Call &call);

    const contract::Interface &m_interface;
    Configuration &m_configuration;
    UserSettings &m_userSettings;
    ServiceLog &m_log;
    CallRecord &m_calls;
    Faults &m_faults;
    const MethodTable m_methods;
};

} // namespace simulator

#endif
