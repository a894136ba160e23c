// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_SESSION_H
#define TOOL_LIBRARY_SESSION_H

#include "library/LibraryLog.h"
#include "library/Operation.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <optional>

namespace tool {

/// The result of an operation, or why the service has refused it.
struct Reply
{
    QVariant value;
    std::optional<QString> error;
};

/// The library, with its operations called by way of its meta-object.
class Session
{
public:
    /// Without a collection id, the library's own is used.
    explicit Session(const std::optional<QString> &collection);

    libconfigurationmanager::detail::ConfigurationManager &library() { return m_library; }

    // These throw a Failure that says what is missing.
    void requireBus() const;
    void requireConnection() const;

    void setCollection(const QString &id) { m_library.setCatalogsCollectionId(id); }

    /// Calls the operation with as many of its arguments as are given.
    ///
    /// Throws a Failure when nothing more is to be had from the service: it has gone, does not
    /// answer, or may not be talked to.
    Reply call(const Operation &operation, const QVariantList &arguments = {});

private:
    /// Throws a Failure unless a call that has failed was refused by a service that is there. The
    /// library tells only what the message of the error was.
    void requireService() const;

    LibraryLog m_log;
    libconfigurationmanager::detail::ConfigurationManager m_library;
    /// Whether the service has left since the last call was begun.
    bool m_hasLeft = false;
};

} // namespace tool

#endif
