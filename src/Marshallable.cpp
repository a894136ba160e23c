// SPDX-License-Identifier: MIT

#include "Marshallable.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QAssociativeIterable>
#include <QtCore/QPair>
#include <QtCore/QSequentialIterable>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusVariant>

namespace libconfigurationmanager {
namespace detail {

namespace {

// D-Bus allows 64 containers in each other; the innermost value may itself be two.
constexpr int maximumDepth = 62;
// An array of entries, each with a variant; an array of variants or of structures.
constexpr int mapDepth = 3;
constexpr int listDepth = 2;

QString problemOf(const QVariant &value, int depth);

template<typename List>
QString problemInList(const List &list, int depth)
{
    for (const auto &element : list) {
        QString problem = problemOf(QVariant(element), depth + listDepth);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

QString problemInMap(const QAssociativeIterable &map, int depth)
{
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        QString problem = problemOf(entry.value(), depth + mapDepth);
        if (!problem.isEmpty())
            return entry.key().toString() + QStringLiteral(": ") + problem;
    }
    return {};
}

QString problemOf(const QVariant &value, int depth)
{
    const int type = value.userType();
    if (type == QMetaType::UnknownType)
        return QStringLiteral("there is no value to send");
    if (depth > maximumDepth)
        return QStringLiteral("too many maps and lists in each other");
    // A part of a message that was received.
    if (type == qMetaTypeId<QDBusArgument>()) {
        return value.value<QDBusArgument>().currentSignature().isEmpty()
                   ? QStringLiteral("there is no value to send")
                   : QString();
    }
    if (!QDBusMetaType::typeToSignature(type)) {
        return QStringLiteral("a value of the type %1 cannot be sent")
            .arg(QString::fromLatin1(value.typeName()));
    }
    if (type == qMetaTypeId<QDBusVariant>())
        return problemOf(value.value<QDBusVariant>().variant(), depth + 1);
    if (type == qMetaTypeId<lcm::PropList>())
        return problemInList(value.value<lcm::PropList>(), depth);
    if (value.canConvert<QVariantMap>())
        return problemInMap(value.value<QAssociativeIterable>(), depth);
    if (value.canConvert<QVariantList>())
        return problemInList(value.value<QSequentialIterable>(), depth);
    if (value.canConvert<QPair<QVariant, QVariant>>())
        return problemOf(value.value<QPair<QVariant, QVariant>>().second, depth);
    return {};
}

} // namespace

QString marshallingProblem(const QVariantList &arguments)
{
    for (const QVariant &argument : arguments) {
        // The other parameters have types that can always be sent.
        if (argument.userType() != QMetaType::QVariantMap)
            continue;
        QString problem = problemOf(argument, 0);
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

} // namespace detail
} // namespace libconfigurationmanager
