// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_SESSION_H
#define TOOL_LIBRARY_SESSION_H

#include "library/Operation.h"

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <chrono>
#include <optional>

namespace tool {

struct Setting;

/// The result of an operation, or why the service has refused it.
struct Reply
{
    QVariant value;
    std::optional<QString> error;
};

/// What a session works on, and how long it waits.
struct SessionOptions
{
    /// Without one, the library's own is used.
    std::optional<QString> collection;
    /// For each answer; 0 for the bus's own time-out.
    std::chrono::milliseconds timeout{5000};
};

/// The service, with its operations called by way of the contract.
class Session
{
public:
    /// An operation on its way.
    struct Call
    {
        libconfigurationmanager::PendingReply<QVariant> reply;
        /// What the service was given and nobody may see.
        QStringList secrets;
        /// How often the service had left before.
        int departures;
    };

    explicit Session(const SessionOptions &options);

    libconfigurationmanager::AsyncConfigurationManager &library() { return m_library; }

    // These throw a Failure that says what is missing.
    void requireBus() const;
    void requireConnection() const;

    /// Has the slot called when the bus is lost: nothing would ever come any more.
    static void whenBusIsLost(QObject *receiver, const char *slot);

    /// Has the bus start the service, and waits until it is there. Throws a Failure that says why
    /// the bus does not.
    void startService() const;

    /// Begins to call the operation with as many of its arguments as are given.
    ///
    /// Calls wait for their answers together, but the first one alone: a service that does not
    /// answer, or may not be talked to, is asked once.
    Call begin(const Operation &operation, const QVariantList &arguments = {});

    /// Waits for the answer; the time-out is that of an answer after the one that was waited for
    /// before.
    ///
    /// Throws a Failure when nothing more is to be had from the service: it has gone, does not
    /// answer in time, or may not be talked to; and when a deferred signal comes meanwhile.
    Reply finish(const Call &call);

    /// Begins to read the settings.
    QVector<QPair<const Setting *, Call>> beginToRead(const QVector<const Setting *> &settings);

    Reply call(const Operation &operation, const QVariantList &arguments = {})
    {
        return finish(begin(operation, arguments));
    }

private:
    bool hasTimeout() const { return m_timeout.count() > 0; }
    void await(const Call &call) const;

    /// Throws a Failure unless the service is there, and has been since the call, and answers.
    void requireService(const Call &call) const;

    libconfigurationmanager::AsyncConfigurationManager m_library;
    const int m_maximumInFlight = m_library.maximumInFlight();
    const std::chrono::milliseconds m_timeout;
    /// How often the service has left.
    int m_departures = 0;
};

} // namespace tool

#endif
