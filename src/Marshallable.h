// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_MARSHALLABLE_H
#define LIBCONFIGURATIONMANAGER_MARSHALLABLE_H

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace libconfigurationmanager {
namespace detail {

/// Texts of so many characters can always be sent, as many of them as any operation has.
constexpr int shortText = 1024 * 1024;

inline bool isLong(const QString &text)
{
    return text.size() > shortText;
}

/// Whether it depends on what a value holds if it can be sent.
inline bool isInQuestion(int type, const void *value)
{
    return type == QMetaType::QVariantMap ||
           (type == QMetaType::QString && isLong(*static_cast<const QString *>(value)));
}

/// Says why the arguments cannot be sent over D-Bus; empty when they can. The vocabulary's
/// enumerations in them have then become the integers as which they are sent.
///
/// Neither Qt nor libdbus asks before it writes: a value without a D-Bus type inside a map stops
/// the process, and a message that is too large, is nested too deeply or has too many file
/// descriptors loses the connection. The text names keys and types, but no value.
///
/// What an application writes itself, by the operator of a type that it has registered or into a
/// QDBusArgument, is only compared with its signature: how large it is, and what its variants hold,
/// cannot be seen from here.
QString marshallingProblem(QVariantList &arguments);

} // namespace detail
} // namespace libconfigurationmanager

#endif
