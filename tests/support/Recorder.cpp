// SPDX-License-Identifier: MIT

#include "Recorder.h"
#include "ServiceName.h"

#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <unistd.h>
#include <utility>

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

void Recorder::leaveTheBus()
{
    QDBusConnection::systemBus().unregisterService(serviceName);
}

int Recorder::mostCallsInFlight() const
{
    return m_mostInFlight;
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
    }
    --m_inFlight;
}
