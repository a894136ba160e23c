// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_LIBRARYLOG_H
#define TOOL_LIBRARY_LIBRARYLOG_H

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <optional>

namespace tool {

/// What the library has logged: the only place where it tells that an operation failed.
///
/// While an object lives, the library's lines come here, whatever the user's logging rules are, and
/// are not printed. All other lines go where they went before.
class LibraryLog
{
public:
    struct Failure
    {
        bool notConnected;
        QString message;
    };

    LibraryLog();
    ~LibraryLog();
    Q_DISABLE_COPY(LibraryLog)

    /// Returns the failure since the last call, if there was one, and forgets it.
    std::optional<Failure> takeFailure();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    static LibraryLog *s_current;
    const QtMessageHandler m_previous;
    std::optional<Failure> m_failure;
};

} // namespace tool

#endif
