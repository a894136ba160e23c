// SPDX-License-Identifier: MIT

#ifndef LIBTAVELORN_DBUSSERVICE_P_H
#define LIBTAVELORN_DBUSSERVICE_P_H

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusServiceWatcher>

#include <atomic>

namespace libtavelorn {

class DBusService;

// QDBusInterface would introspect the service on construction.
class DBusServiceProxy : public QDBusAbstractInterface
{
public:
    DBusServiceProxy(const QString &service, const QString &path, const QString &interface,
                     const QDBusConnection &connection, QObject *parent);
};

class DBusServicePrivate : public QObject
{
    Q_OBJECT
public:
    DBusServicePrivate(const QDBusConnection &bus, const QString &name, DBusService *service);

    QDBusConnection connection;
    const QString serviceName;
    std::atomic<bool> present{false};
    DBusServiceProxy *proxy = nullptr;

private Q_SLOTS:
    void busLost();

private:
    void watchBus();
    void ownerChanged(const QString &name, const QString &oldOwner, const QString &newOwner);
    void expectOrder();
    void askForOwner();
    void setOwner(const QString &newOwner);

    DBusService *const q;
    QDBusServiceWatcher watcher;
    QString owner;
    bool isInOrder = false;
};

} // namespace libtavelorn

#endif
