// SPDX-License-Identifier: MIT

#include "PrivateBus.h"

#include <QtCore/QFile>

namespace {

const char configuration[] = R"(<!DOCTYPE busconfig PUBLIC
    "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
    "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:dir=%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
  </policy>
</busconfig>
)";

QString configurationFile(const QTemporaryDir &directory)
{
    QFile file(directory.filePath(QStringLiteral("bus.conf")));
    if (!file.open(QFile::WriteOnly))
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    file.write(QString::fromLatin1(configuration).arg(directory.path()).toUtf8());
    return file.fileName();
}

} // namespace

PrivateBus::PrivateBus()
    : m_daemon(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                QStringLiteral("--config-file=") + configurationFile(m_directory)}),
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
