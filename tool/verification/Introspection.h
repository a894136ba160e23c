// SPDX-License-Identifier: MIT

#ifndef TOOL_VERIFICATION_INTROSPECTION_H
#define TOOL_VERIFICATION_INTROSPECTION_H

#include <QtCore/QHash>
#include <QtCore/QString>

#include <chrono>
#include <optional>

namespace tool {

/// The types of a method as a service tells them.
struct Signature
{
    QString arguments;
    QString results;
};

/// The methods of the service's interface by name; none if it does not offer it for introspection.
///
/// Waits so long for the answer, or with 0 as long as the bus does. Throws a Failure when there is
/// none.
std::optional<QHash<QString, Signature>> introspect(std::chrono::milliseconds timeout);

} // namespace tool

#endif
