// SPDX-License-Identifier: MIT

#ifndef TESTING_RECORDINGSERVICE_H
#define TESTING_RECORDINGSERVICE_H

#include "ChildProcess.h"
#include "PrivateBus.h"
#include "RecordingProtocol.h"

/// A configuration service that accepts every call, records it and answers as a test tells it.
///
/// It is a program of its own. The test talks to it over a connection of its own, so that the
/// recorded connection carries nothing but what is tested.
class RecordingService
{
public:
    explicit RecordingService(const PrivateBus &bus);

    /// Starts the program; when this returns, it owns the name of the configuration service.
    ///
    /// May be repeated after the program has ended: nothing is recorded then, and nothing told.
    void start();

    /// Ends the program at once, as a crash would; when this returns, the bus knows.
    void kill();

    /// Gives the name of the service up; calls that wait for an answer go on waiting.
    void leaveTheBus();

    /// Has the program stand still: it stays on the bus, but does nothing.
    void pause();
    void resume();

    /// Returns whether the program ends of itself, as with Answer::exit() it does.
    bool waitForExit();

    /// Tells what all calls get from now on.
    void setAnswer(const Answer &answer);

    /// Tells what the calls of one method get from now on, whatever the others get.
    void setAnswer(const QString &member, const Answer &answer);

    /// Returns the calls so far, of any interface (also an introspection), and forgets them.
    QVector<RecordedCall> takeCalls();

    /// Forgets the calls so far, and returns how many there were.
    ///
    /// For calls that are too large, or nested too deeply, to be passed on.
    int forgetCalls();

    /// Returns how many calls at most were unanswered at the same time.
    ///
    /// Says something only when the answers are delayed.
    int mostCallsInFlight();

private:
    QVariantList control(const QString &method, const QVariantList &arguments = {});

    QDBusConnection m_connection;
    ChildProcess m_program;
    QString m_controlName;
};

#endif
