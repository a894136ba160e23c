// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_SESSION_H
#define TOOL_LIBRARY_SESSION_H

#include "library/LibraryLog.h"
#include "library/Operation.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <chrono>
#include <future>
#include <optional>

namespace tool {

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

/// The library, with its operations called by way of its meta-object.
class Session
{
public:
    explicit Session(const SessionOptions &options);

    libconfigurationmanager::detail::ConfigurationManager &library() { return m_library; }

    // These throw a Failure that says what is missing.
    void requireBus() const;
    void requireConnection() const;

    /// Has the slot called when the bus is lost: nothing would ever come any more.
    static void whenBusIsLost(QObject *receiver, const char *slot);

    /// Has the bus start the service, and waits until it is there. Throws a Failure that says why
    /// the bus does not.
    void startService() const;

    void setCollection(const QString &id) { m_library.setCatalogsCollectionId(id); }

    /// Calls the operation with as many of its arguments as are given.
    ///
    /// Throws a Failure when nothing more is to be had from the service: it has gone, does not
    /// answer in time, or may not be talked to; and when a deferred signal comes meanwhile.
    Reply call(const Operation &operation, const QVariantList &arguments = {});

    /// Whether a call has not been waited for until its end. The library would have the process
    /// wait for it when it ends in the usual way.
    static bool hasAbandonedCall() { return s_hasAbandonedCall; }

private:
    /// Waits for the call, which goes on when this throws.
    QVariant resultOf(std::future<QVariant> call) const;

    /// Throws a Failure unless a call that has failed was refused by a service that is there. The
    /// library tells only what the message of the error was.
    void requireService() const;

    LibraryLog m_log;
    libconfigurationmanager::detail::ConfigurationManager m_library;
    /// Whether the service has left since the last call was begun.
    bool m_hasLeft = false;
    const std::chrono::milliseconds m_timeout;
    static bool s_hasAbandonedCall;
};

} // namespace tool

#endif
