// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_MARSHALLABLE_H
#define LIBCONFIGURATIONMANAGER_MARSHALLABLE_H

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace libconfigurationmanager {
namespace detail {

/// Says why the arguments cannot be sent over D-Bus; empty when they can.
///
/// Qt does not ask before it writes: a value without a D-Bus type inside a map stops the process,
/// and one that is nested too deeply loses the connection. The text names keys and types, but no
/// value.
QString marshallingProblem(const QVariantList &arguments);

} // namespace detail
} // namespace libconfigurationmanager

#endif
