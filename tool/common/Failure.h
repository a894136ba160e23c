// SPDX-License-Identifier: MIT

#ifndef TOOL_COMMON_FAILURE_H
#define TOOL_COMMON_FAILURE_H

#include <QtCore/QString>

#include <exception>
#include <utility>

namespace tool {

/// The exit status of the program.
enum class ExitStatus {
    Done = 0,
    Failed = 1,
    Usage = 2,
    NotConnected = 3,
    NoAnswer = 4,
    NotPermitted = 5,
};

/// What JSON calls a status other than Done.
inline QString kindOf(ExitStatus status)
{
    switch (status) {
    case ExitStatus::Done:
        break;
    case ExitStatus::Failed:
        return QStringLiteral("refused");
    case ExitStatus::Usage:
        return QStringLiteral("invalid");
    case ExitStatus::NotConnected:
        return QStringLiteral("absent");
    case ExitStatus::NoAnswer:
        return QStringLiteral("noAnswer");
    case ExitStatus::NotPermitted:
        return QStringLiteral("notPermitted");
    }
    return {};
}

/// Ends a command: what to say on standard error and with which status to exit.
class Failure : public std::exception
{
public:
    Failure(ExitStatus status, QString message) : m_status(status), m_message(std::move(message)) {}

    ExitStatus status() const { return m_status; }
    const QString &message() const { return m_message; }
    const char *what() const noexcept override { return "Failure"; }

private:
    ExitStatus m_status;
    QString m_message;
};

/// What a message says about something, without the name with which it may begin.
inline QString reason(const QString &name, const QString &message)
{
    const QString prefix = name + QStringLiteral(": ");
    return message.startsWith(prefix) ? message.mid(prefix.size()) : message;
}

/// A message about something, whose name the message itself may begin with.
inline QString about(const QString &name, const QString &message)
{
    return name + QStringLiteral(": ") + reason(name, message);
}

} // namespace tool

#endif
