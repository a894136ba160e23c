// SPDX-License-Identifier: MIT

#ifndef TESTS_SIMULATOR_SIMULATOR_H
#define TESTS_SIMULATOR_SIMULATOR_H

#include "ChildProcess.h"
#include "PrivateBus.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingReply>

#include <memory>

/// The simulator's program, in a process of its own, and a client of it that is not the library.
class Simulator
{
public:
    explicit Simulator(const PrivateBus &bus);

    /// Starts the program anew and waits until it is on the bus.
    void start(const QStringList &arguments = {});
    ChildProcess &process() { return *m_process; }

    /// Calls a method of the service. Numbers, texts and truth values are sent as what they are.
    QDBusMessage call(const QString &method, const QVariantList &arguments = {}) const;

    /// The same without waiting for the answer.
    QDBusPendingCall asyncCall(const QString &method, const QVariantList &arguments = {}) const;

    /// What a call answers; stops the test if that is an error.
    QVariant value(const QString &method, const QVariantList &arguments = {}) const;

    /// The message of the error that a call answers; empty if it is none.
    QString error(const QString &method, const QVariantList &arguments = {}) const;

    /// What the object answers by which the simulator itself is controlled.
    QVariant control(const QString &interface, const QString &method,
                     const QVariantList &arguments = {}) const;

    QDBusConnection connection() const { return m_connection; }

    static QString serviceName();
    /// The name and the path by which the simulator itself is controlled.
    static QString controlName() { return QStringLiteral("com.tavelornbraille.Simulator"); }
    static QString controlPath() { return QStringLiteral("/com/tavelornbraille/Simulator"); }
    static QString masterCollection() { return QStringLiteral("masterCollectionKey"); }

private:
    QDBusConnection m_connection;
    std::unique_ptr<ChildProcess> m_process;
};

/// A program that has come to its end.
struct Ended
{
    int exitCode;
    QString output;
    QString errors;
};

/// Runs the simulator until it ends by itself, which it must do.
Ended runSimulator(const QStringList &arguments);

/// Waits for the end of a process whose error channel is read.
Ended waitForEnd(QProcess &process);

QString simulatorProgram();

/// The profile of a captured embosser that has told nothing.
inline const QString nothingCaptured = QStringLiteral(
    R"({"capture": {}, "answers": {}, "settings": {}, "rows": {}, "papers": {}, "unprintable": {},
"cells": {}, "lineSpacings": {}, "documents": {}, "layoutParameters": [],
"temporaryProperties": [], "userSettings": {"names": []}, "recorded": []})");

#endif
