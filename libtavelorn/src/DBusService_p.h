// SPDX-License-Identifier: MIT

#ifndef LIBTAVELORN_DBUSSERVICE_P_H
#define LIBTAVELORN_DBUSSERVICE_P_H

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusServiceWatcher>

#include <atomic>

namespace libtavelorn {

class DBusService;

class DBusServicePrivate : public QObject
{
    Q_OBJECT
public:
    DBusServicePrivate(const QDBusConnection &bus, const QString &name, DBusService *service);

    QDBusConnection connection;
    const QString serviceName;
    std::atomic<bool> present{false};

private Q_SLOTS:
    void busLost();

private:
    void askForOwner();
    void setOwner(const QString &newOwner);

    DBusService *const q;
    QDBusServiceWatcher watcher;
    QString owner;
};

} // namespace libtavelorn

#endif
