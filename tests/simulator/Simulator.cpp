// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QUuid>
#include <QtDBus/QDBusArgument>

namespace {

QDBusMessage callOf(const QString &method, const QVariantList &arguments)
{
    const QString service = Simulator::serviceName();
    QDBusMessage message =
        QDBusMessage::createMethodCall(service, QStringLiteral("/"), service, method);
    message.setArguments(arguments);
    return message;
}

QVariant resultOf(const QDBusMessage &reply)
{
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("The simulator: %s", qPrintable(reply.errorMessage()));
    const QVariant result = reply.arguments().value(0);
    if (result.userType() != qMetaTypeId<QDBusArgument>())
        return result;
    const auto argument = result.value<QDBusArgument>();
    if (argument.currentSignature() == QLatin1String("a{sv}"))
        return qdbus_cast<QVariantMap>(argument);
    QVariantList list;
    for (const QVariantMap &map : qdbus_cast<QList<QVariantMap>>(argument))
        list << map;
    return list;
}

} // namespace

QString simulatorProgram()
{
    return QStringLiteral(SIMULATOR_PROGRAM);
}

QString Simulator::serviceName()
{
    return QStringLiteral("com.tavelornbraille.ConfigurationManager");
}

Simulator::Simulator(const PrivateBus &bus)
    : m_connection(bus.connect(QUuid::createUuid().toString()))
{
}

void Simulator::start(const QStringList &arguments)
{
    // The former one must have left the bus.
    m_process.reset();
    m_process = std::make_unique<ChildProcess>(simulatorProgram(), arguments);
    m_process->startAndReadLine();
}

QDBusMessage Simulator::call(const QString &method, const QVariantList &arguments) const
{
    return m_connection.call(callOf(method, arguments));
}

QDBusPendingCall Simulator::asyncCall(const QString &method, const QVariantList &arguments) const
{
    return m_connection.asyncCall(callOf(method, arguments));
}

QVariant Simulator::value(const QString &method, const QVariantList &arguments) const
{
    return resultOf(call(method, arguments));
}

QString Simulator::error(const QString &method, const QVariantList &arguments) const
{
    return call(method, arguments).errorMessage();
}

QVariant Simulator::control(const QString &interface, const QString &method,
                            const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        controlName(), controlPath(), controlName() + QLatin1Char('.') + interface, method);
    message.setArguments(arguments);
    return resultOf(m_connection.call(message));
}

Ended waitForEnd(QProcess &process)
{
    if (!process.waitForFinished())
        qFatal("%s does not end", qPrintable(process.program()));
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

Ended runSimulator(const QStringList &arguments)
{
    ChildProcess process(simulatorProgram(), arguments);
    process.setProcessChannelMode(QProcess::SeparateChannels);
    process.start();
    return waitForEnd(process);
}
