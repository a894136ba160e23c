// SPDX-License-Identifier: MIT

#include "PrivateBus.h"

#include <QtCore/QTextStream>

#include <cstdlib>

namespace {

QStringList commandOf(const QString &socket, const QString &configuration)
{
    if (isDBusBroker()) {
        if (!canMount()) {
            QTextStream(stdout) << "SKIPPED: this machine lets nobody mount, as the launcher of "
                                   "dbus-broker needs"
                                << Qt::endl;
            std::exit(EXIT_SUCCESS);
        }
        return {QStringLiteral("unshare"),
                QStringLiteral("--mount"),
                QStringLiteral("--pid"),
                QStringLiteral("--fork"),
                QStringLiteral("--kill-child"),
                QStringLiteral("python3"),
                QStringLiteral(DBUS_BROKER_SCRIPT),
                socket,
                configuration};
    }
    return libconfigurationmanager::dbusDaemonCommand(socket, configuration);
}

} // namespace

bool isDBusBroker()
{
    return qEnvironmentVariable("TEST_BUS") == QLatin1String("dbus-broker");
}

bool canMount()
{
    ChildProcess mount(QStringLiteral("unshare"),
                       {QStringLiteral("--mount"), QStringLiteral("--pid"),
                        QStringLiteral("--fork"), QStringLiteral("mount"), QStringLiteral("-t"),
                        QStringLiteral("tmpfs"), QStringLiteral("tmpfs"), QStringLiteral("/run")});
    mount.setProcessChannelMode(QProcess::SeparateChannels);
    mount.start();
    return mount.waitForFinished() && mount.exitStatus() == QProcess::NormalExit &&
           mount.exitCode() == 0;
}

PrivateBus::PrivateBus()
    : PrivateBus(qEnvironmentVariableIsSet("TEST_BUS") ? QStringLiteral(BUS_CONFIGURATION)
                                                       : QString())
{
}

PrivateBus::PrivateBus(const QString &configuration)
    : m_command(commandOf(m_directory.filePath(QStringLiteral("bus")), configuration)),
      m_daemon(m_command.constFirst(), m_command.mid(1)),
      m_address(m_daemon.startAndReadLine())
{
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_address.toUtf8());
}

QString PrivateBus::address() const
{
    return m_address;
}

QDBusConnection PrivateBus::connect(const QString &name) const
{
    return QDBusConnection::connectToBus(m_address, name);
}

void PrivateBus::kill()
{
    m_daemon.killAndWait();
}
