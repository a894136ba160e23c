// SPDX-License-Identifier: MIT

// The program behind the class RecordingService. It prints the bus name under which it takes what
// the test tells it, once it is ready.

#include "Recording.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QHash>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

#include <cstdio>
#include <unistd.h>
#include <utility>

class Recorder : public QDBusVirtualObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "tests.RecordingService")
public:
    QString introspect(const QString &) const override { return QString(); }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        m_calls.append({message.path(), message.interface(), message.member(), message.signature(),
                        message.arguments()});
        m_mostInFlight = qMax(m_mostInFlight, ++m_inFlight);
        const Answer answer = m_answers.value(message.member(), m_answers.value(QString()));
        if (answer.delayInMilliseconds == 0) {
            give(answer, message, connection);
        } else {
            QTimer::singleShot(answer.delayInMilliseconds, Qt::PreciseTimer, this,
                               [=] { give(answer, message, connection); });
        }
        return true;
    }

public Q_SLOTS:
    void setAnswer(const QString &member, const Answer &answer) { m_answers[member] = answer; }
    QVector<RecordedCall> takeCalls() { return std::exchange(m_calls, {}); }
    int mostCallsInFlight() const { return m_mostInFlight; }

private:
    void give(const Answer &answer, const QDBusMessage &call, const QDBusConnection &connection)
    {
        switch (answer.kind) {
        case Answer::Reply:
            connection.send(call.createReply(answer.values));
            break;
        case Answer::Error:
            connection.send(call.createErrorReply(answer.values.at(0).toString(),
                                                  answer.values.at(1).toString()));
            break;
        case Answer::Silence:
            return;
        case Answer::Exit:
            _exit(EXIT_FAILURE);
        }
        --m_inFlight;
    }

    QVector<RecordedCall> m_calls;
    QHash<QString, Answer> m_answers;
    int m_inFlight = 0;
    int m_mostInFlight = 0;
};

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    registerRecordingTypes();

    Recorder recorder;
    QDBusConnection control =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, QStringLiteral("control"));
    QDBusConnection recorded = QDBusConnection::systemBus();
    if (!control.registerObject(recordingPath, &recorder, QDBusConnection::ExportAllSlots) ||
        !recorded.registerVirtualObject(QStringLiteral("/"), &recorder, QDBusConnection::SubPath) ||
        !recorded.registerService(QStringLiteral("com.tavelornbraille.ConfigurationManager"))) {
        std::fprintf(stderr, "%s\n", qPrintable(recorded.lastError().message()));
        return EXIT_FAILURE;
    }
    std::printf("%s\n", qPrintable(control.baseService()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}

#include "recording_service.moc"
