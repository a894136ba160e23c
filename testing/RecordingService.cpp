// SPDX-License-Identifier: MIT

#include "RecordingService.h"

#include "ServiceName.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>
#include <QtCore/QUuid>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>

#include <csignal>

RecordingService::RecordingService(const PrivateBus &bus)
    : m_connection(bus.connect(QUuid::createUuid().toString())),
      m_program(QStringLiteral(RECORDING_SERVICE_PROGRAM), {})
{
    registerRecordingTypes();
}

void RecordingService::start()
{
    m_controlName = m_program.startAndReadLine();
}

void RecordingService::kill()
{
    m_program.killAndWait();
    // The bus may be about to notice. Somebody else may have the name by now.
    const QDeadlineTimer deadline(1000);
    while (m_connection.isConnected() &&
           m_connection.interface()->isServiceRegistered(serviceName) && !deadline.hasExpired())
        QThread::msleep(1);
}

void RecordingService::leaveTheBus()
{
    control(QStringLiteral("leaveTheBus"));
}

void RecordingService::pause()
{
    ::kill(pid_t(m_program.processId()), SIGSTOP);
}

void RecordingService::resume()
{
    ::kill(pid_t(m_program.processId()), SIGCONT);
}

bool RecordingService::waitForExit()
{
    return m_program.waitForFinished();
}

void RecordingService::setAnswer(const Answer &answer)
{
    setAnswer(QString(), answer);
}

void RecordingService::setAnswer(const QString &member, const Answer &answer)
{
    control(QStringLiteral("setAnswer"), {member, QVariant::fromValue(answer)});
}

QVector<RecordedCall> RecordingService::takeCalls()
{
    const QVariantList reply = control(QStringLiteral("takeCalls"));
    return qdbus_cast<QVector<RecordedCall>>(reply.constFirst());
}

int RecordingService::forgetCalls()
{
    return control(QStringLiteral("forgetCalls")).constFirst().toInt();
}

int RecordingService::mostCallsInFlight()
{
    return control(QStringLiteral("mostCallsInFlight")).constFirst().toInt();
}

QVariantList RecordingService::control(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(m_controlName, recordingPath, recordingInterface, method);
    call.setArguments(arguments);
    const QDBusMessage reply = m_connection.call(call);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("The recording service: %s", qPrintable(reply.errorMessage()));
    return reply.arguments();
}
