// SPDX-License-Identifier: MIT

#ifndef TESTING_RECORDINGPROTOCOL_H
#define TESTING_RECORDINGPROTOCOL_H

#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>
#include <QtDBus/QDBusArgument>

// What a test and the recording service tell each other.

/// A call that has reached the recording service.
struct RecordedCall
{
    QString path;
    QString interface;
    QString member;
    QString signature;
    /// A compound value is a QDBusArgument: qdbus_cast() reads it.
    QVariantList arguments;
};

/// What the recording service does with a call: unless told otherwise it replies without a value.
struct Answer
{
    enum Kind {
        Reply,
        Error,
        Silence,
        Exit,
        Reconnect
    };

    int kind = Reply;
    /// The values of the reply, or the name and the message of the error.
    QVariantList values;
    int delayInMilliseconds = 0;

    static Answer value(const QVariant &value) { return {Reply, {value}}; }
    static Answer error(const QString &name, const QString &message)
    {
        return {Error, {name, message}};
    }
    /// No answer ever.
    static Answer silence() { return {Silence, {}}; }
    /// The service's process ends, as in a crash, with the call unanswered.
    static Answer exit() { return {Exit, {}}; }
    /// The service leaves the bus with the call unanswered and comes back at once: to the bus and
    /// to the caller, a process that ends and is started again, in a fraction of the time.
    static Answer reconnect() { return {Reconnect, {}}; }
};

Q_DECLARE_METATYPE(RecordedCall)
Q_DECLARE_METATYPE(Answer)

QDBusArgument &operator<<(QDBusArgument &argument, const RecordedCall &call);
const QDBusArgument &operator>>(const QDBusArgument &argument, RecordedCall &call);
QDBusArgument &operator<<(QDBusArgument &argument, const Answer &answer);
const QDBusArgument &operator>>(const QDBusArgument &argument, Answer &answer);

void registerRecordingTypes();

inline const QString recordingPath = QStringLiteral("/recording");
inline const QString recordingInterface = QStringLiteral("tests.RecordingService");

#endif
