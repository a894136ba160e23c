// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_SERVICE_H
#define SIMULATOR_SERVICE_H

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

namespace simulator {

class Call;
class Configuration;
class Interface;

/// Answers the calls of the configuration service's methods.
class Service : public QDBusVirtualObject
{
    Q_OBJECT
public:
    Service(const Interface &interface, Configuration &configuration);

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusMessage reply(const QDBusMessage &message);
    QVariant carryOut(const Call &call);

    const Interface &m_interface;
    Configuration &m_configuration;
};

} // namespace simulator

#endif
