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
            UserSettings &userSettings, ServiceLog &log, Faults &faults,
            const MethodTable &methods);

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

Q_SIGNALS:
    /// A fault has the service leave the bus, for 0 milliseconds until it is told to return.
    void leaveRequested(int milliseconds);

private:
    void answerFaultily(const Fault &fault, const QDBusMessage &message,
                        const QDBusConnection &connection);
    QDBusMessage answerTo(const QDBusMessage &message);
    QVariant carryOut(const Call &call);

    const contract::Interface &m_interface;
    Configuration &m_configuration;
    UserSettings &m_userSettings;
    ServiceLog &m_log;
    Faults &m_faults;
    const MethodTable m_methods;
};

} // namespace simulator

#endif
