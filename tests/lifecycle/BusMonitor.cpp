// SPDX-License-Identifier: MIT

#include "BusMonitor.h"

#include <QtDBus/QDBusMessage>

namespace {

enum Column {
    Type,
    Time,
    Serial,
    Sender,
    Destination,
    Path,
    Interface,
    Member
};

} // namespace

BusMonitor::BusMonitor(const PrivateBus &bus)
    : m_program(QStringLiteral("dbus-monitor"),
                {QStringLiteral("--address"), bus.address(), QStringLiteral("--profile")})
{
    m_program.startAndReadLine();
    // A connection that becomes a monitor loses its name.
    while (readMessage().value(Member) != QStringLiteral("NameLost")) {
    }
}

QStringList BusMonitor::takeCalls(QDBusConnection connection)
{
    QStringList calls;
    const QVector<QStringList> messages = takeMessages(connection);
    for (const QStringList &message : messages) {
        if (message.value(Type) == QStringLiteral("mc"))
            calls.append(message.value(Destination) + QLatin1Char(' ') + message.value(Member));
    }
    return calls;
}

int BusMonitor::countMessages(QDBusConnection connection)
{
    return takeMessages(connection).size();
}

QVector<QStringList> BusMonitor::takeMessages(QDBusConnection &connection)
{
    const QString mark = QStringLiteral("EndOfMessages");
    connection.send(
        QDBusMessage::createSignal(QStringLiteral("/"), QStringLiteral("tests.BusMonitor"), mark));
    QVector<QStringList> messages;
    for (;;) {
        const QStringList message = readMessage();
        if (message.value(Member) == mark)
            return messages;
        if (message.value(Sender) == connection.baseService() ||
            message.value(Destination) == connection.baseService())
            messages.append(message);
    }
}

QStringList BusMonitor::readMessage()
{
    while (!m_program.canReadLine()) {
        if (!m_program.waitForReadyRead())
            qFatal("dbus-monitor: %s", qPrintable(m_program.errorString()));
    }
    return QString::fromUtf8(m_program.readLine()).trimmed().split(QLatin1Char('\t'));
}
