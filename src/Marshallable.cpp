// SPDX-License-Identifier: MIT

#include "Marshallable.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QAssociativeIterable>
#include <QtCore/QPair>
#include <QtCore/QSequentialIterable>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusUnixFileDescriptor>
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

/// Of a part of a message that was received. One that somebody writes cannot be looked into.
QString problemInPart(const QDBusArgument &part, int depth)
{
    const bool isArray = part.currentType() == QDBusArgument::ArrayType;
    QString problem;
    switch (part.currentType()) {
    case QDBusArgument::ArrayType:
    case QDBusArgument::StructureType:
        isArray ? part.beginArray() : part.beginStructure();
        while (!part.atEnd() && problem.isEmpty())
            problem = problemOf(part.asVariant(), depth + 1);
        isArray ? part.endArray() : part.endStructure();
        break;
    case QDBusArgument::MapType:
        part.beginMap();
        while (!part.atEnd() && problem.isEmpty()) {
            part.beginMapEntry();
            part.asVariant();
            problem = problemOf(part.asVariant(), depth + 2);
            part.endMapEntry();
        }
        part.endMap();
        break;
    default:
        break;
    }
    return problem;
}

/// Whether the value is one of a type that D-Bus knows, and has nothing in it.
bool isEmpty(const QVariant &value)
{
    const int type = value.userType();
    if (type == qMetaTypeId<QDBusArgument>()) {
        const QString signature = value.value<QDBusArgument>().currentSignature();
        return signature.isEmpty() || signature.contains(QLatin1String("()"));
    }
    return type == QMetaType::UnknownType ||
           (type == qMetaTypeId<QDBusObjectPath>() &&
            value.value<QDBusObjectPath>().path().isEmpty()) ||
           (type == qMetaTypeId<QDBusSignature>() &&
            value.value<QDBusSignature>().signature().isEmpty()) ||
           (type == qMetaTypeId<QDBusUnixFileDescriptor>() &&
            !value.value<QDBusUnixFileDescriptor>().isValid());
}

QString problemOf(const QVariant &value, int depth)
{
    const int type = value.userType();
    if (isEmpty(value))
        return QStringLiteral("there is no value to send");
    if (depth > maximumDepth)
        return QStringLiteral("too many maps and lists in each other");
    if (type == qMetaTypeId<QDBusArgument>())
        return problemInPart(value.value<QDBusArgument>(), depth);
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
