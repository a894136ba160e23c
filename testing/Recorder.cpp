// SPDX-License-Identifier: MIT

#include "Recorder.h"
#include "ServiceName.h"

#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <unistd.h>
#include <utility>

bool Recorder::join()
{
    m_connection = QStringLiteral("recorded %1").arg(++m_connections);
    QDBusConnection recorded =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_connection);
    return recorded.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath) &&
           recorded.registerService(serviceName);
}

QString Recorder::introspect(const QString & /*path*/) const
{
    return {};
}

bool Recorder::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    m_calls.append({message.path(), message.interface(), message.member(), message.signature(),
                    message.arguments()});
    m_mostInFlight = qMax(m_mostInFlight, ++m_inFlight);
    const Answer answer = m_answers.value(message.member(), m_answers.value(QString()));
    if (answer.delayInMilliseconds == 0) {
        give(answer, message, connection);
    } else {
        QTimer::singleShot(answer.delayInMilliseconds, this,
                           [=] { give(answer, message, connection); });
    }
    return true;
}

void Recorder::setAnswer(const QString &member, const Answer &answer)
{
    m_answers[member] = answer;
}

QVector<RecordedCall> Recorder::takeCalls()
{
    return std::exchange(m_calls, {});
}

int Recorder::forgetCalls()
{
    return takeCalls().size();
}

void Recorder::leaveTheBus()
{
    QDBusConnection(m_connection).unregisterService(serviceName);
}

int Recorder::mostCallsInFlight() const
{
    return m_mostInFlight;
}

void Recorder::rejoin()
{
    QDBusConnection::disconnectFromBus(m_connection);
    while (!join()) {
        // Qt closes a connection in a thread of its own: the name may be taken for a moment.
        QDBusConnection::disconnectFromBus(m_connection);
        QThread::msleep(1);
    }
}

void Recorder::give(const Answer &answer, const QDBusMessage &call,
                    const QDBusConnection &connection)
{
    switch (answer.kind) {
    case Answer::Reply:
        connection.send(call.createReply(answer.values));
        break;
    case Answer::Error:
        connection.send(
            call.createErrorReply(answer.values.at(0).toString(), answer.values.at(1).toString()));
        break;
    case Answer::Silence:
        return;
    case Answer::Exit:
        _exit(EXIT_FAILURE);
    case Answer::Reconnect:
        // Not before this connection is in nobody's hands, but before the test is answered again.
        QMetaObject::invokeMethod(this, &Recorder::rejoin, Qt::QueuedConnection);
        break;
    }
    --m_inFlight;
}
