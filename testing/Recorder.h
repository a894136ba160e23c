// SPDX-License-Identifier: MIT

#ifndef TESTING_RECORDER_H
#define TESTING_RECORDER_H

#include "RecordingProtocol.h"

#include <QtCore/QHash>
#include <QtCore/QVector>
#include <QtDBus/QDBusVirtualObject>

/// Every object of the recording service, and the object by which the test controls it.
class Recorder : public QDBusVirtualObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "tests.RecordingService")
public:
    /// Joins the bus as the configuration service; returns whether that succeeds.
    bool join();

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

public Q_SLOTS:
    void setAnswer(const QString &member, const Answer &answer);
    QVector<RecordedCall> takeCalls();
    int forgetCalls();
    int mostCallsInFlight() const;
    void leaveTheBus();

private:
    void rejoin();
    void give(const Answer &answer, const QDBusMessage &call, const QDBusConnection &connection);

    QVector<RecordedCall> m_calls;
    QHash<QString, Answer> m_answers;
    int m_inFlight = 0;
    int m_mostInFlight = 0;
    int m_connections = 0;
    QString m_connection;
};

#endif
