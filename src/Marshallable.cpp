// SPDX-License-Identifier: MIT

#include "Marshallable.h"

#include "WireTypes.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QAssociativeIterable>
#include <QtCore/QPair>
#include <QtCore/QScopeGuard>
#include <QtCore/QSequentialIterable>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVariant>

#include <algorithm>
#include <utility>

namespace libconfigurationmanager {
namespace detail {

namespace {

template<typename Container, typename Condition>
bool allOf(const Container &container, Condition condition)
{
    return std::all_of(container.begin(), container.end(), condition);
}

// What a system's bus takes: dbus-daemon a message of 32 MiB, of which what stands before the
// arguments takes less than 1 KiB, and 16 file descriptors; dbus-broker 63 of the 64 containers in
// each other that D-Bus allows.
constexpr qint64 maximumSize = 32 * 1024 * 1024 - 1024;
constexpr int maximumFileDescriptors = 16;
constexpr int maximumDepth = 63;

// What D-Bus itself allows in a signature.
constexpr int maximumSignatureLength = 255;
constexpr int maximumSignatureDepth = 32;

// An array of entries, each with a variant; an array of variants.
constexpr int mapDepth = 3;
constexpr int listDepth = 2;

template<typename T>
const T &contentOf(const QVariant &value)
{
    return *static_cast<const T *>(value.constData());
}

template<typename T>
T &contentOf(QVariant &value)
{
    return *static_cast<T *>(value.data());
}

template<typename Interface>
bool convert(const QVariant &value, Interface &to)
{
    return QMetaType::convert(value.constData(), value.userType(), &to, qMetaTypeId<Interface>());
}

QVariant memberOf(const QtMetaTypePrivate::VariantData &member)
{
    return QVariant(member.metaTypeId, member.data, member.flags);
}

bool isOfVocabulary(int type)
{
    return QMetaType::typeFlags(type).testFlag(QMetaType::IsEnumeration) &&
           QMetaType::metaObjectForType(type) == &lcm::EnumDetail::staticMetaObject;
}

/// How many containers the first type of the signature is at most in depth, or more than a message
/// may have if D-Bus does not allow it; moves the signature behind the type.
int depthOfType(const char *&signature, int arrays = 0, int structures = 0)
{
    if (*signature == '\0' || arrays > maximumSignatureDepth || structures > maximumSignatureDepth)
        return maximumDepth + 1;
    const char type = *signature++;
    if (type == 'a')
        return 1 + depthOfType(signature, arrays + 1, structures);
    if (type != '(' && type != '{')
        return type == 'v' ? 1 : 0;
    int depth = 0;
    while (depth <= maximumDepth && *signature != ')' && *signature != '}')
        depth = qMax(depth, depthOfType(signature, arrays, structures + (type == '(')));
    ++signature;
    return 1 + depth;
}

bool isAllowed(const QByteArray &signature)
{
    const char *type = signature.constData();
    while (*type != '\0') {
        if (depthOfType(type) > maximumDepth)
            return false;
    }
    return !signature.isEmpty() && signature.size() <= maximumSignatureLength;
}

/// The number of bytes that a value of the type takes in an array; 0 when that differs.
int widthOf(char type)
{
    switch (type) {
    case 'y':
        return 1;
    case 'n':
    case 'q':
        return 2;
    case 'b':
    case 'i':
    case 'u':
        return 4;
    case 'd':
    case 't':
    case 'x':
        return 8;
    default:
        return 0;
    }
}

/// Goes through the arguments of one call as they will be written, as far as a value that cannot
/// be.
class Inspection
{
public:
    enum Lengths {
        Longest, // a text is taken for as long as it can be, without a look at it
        Exact
    };

    explicit Inspection(Lengths lengths) : m_lengths(lengths) {}

    /// Whether the value can be sent that stands in as many containers as `depth` says.
    bool passes(const QVariant &value, int depth);

    bool isTooLarge() const { return m_size > maximumSize; }
    bool hasEnumerations() const { return m_hasEnumerations; }
    /// Why a value cannot be sent.
    QString problem() const { return m_problem; }

private:
    bool passesVariant(const QVariant &value, int depth);
    template<typename Map>
    bool passesMap(const Map &map, int depth);
    bool passesSection(const QPair<QString, QVariantMap> &section, int depth);
    bool passesOther(const QVariant &value, int depth);
    bool passesRegistered(const QVariant &value, const char *signature, int depth);
    bool passesPart(const QDBusArgument &part, int depth);

    bool refuse(const char *problem);
    bool refuseEmpty() { return refuse("there is no value to send"); }
    bool refuseDepth() { return refuse("too many maps and lists in each other"); }
    bool refuseType(int type);
    bool refuseIn(const QString &key);

    bool add(int alignment, qint64 size);
    bool addText(const QString &text);
    bool addFileDescriptors(int count);

    const Lengths m_lengths;
    qint64 m_size = 0;
    int m_fileDescriptors = 0;
    bool m_isInRegistered = false;
    bool m_hasEnumerations = false;
    QString m_problem;
};

bool Inspection::passes(const QVariant &value, int depth)
{
    const int type = value.userType();
    if (type == QMetaType::UnknownType)
        return refuseEmpty();
    // A simple value stands for the one container that any other is at least.
    if (depth >= maximumDepth)
        return refuseDepth();
    switch (type) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
        return add(4, 4);
    case QMetaType::Double:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return add(8, 8);
    case QMetaType::Short:
    case QMetaType::UShort:
        return add(2, 2);
    case QMetaType::UChar:
        return add(1, 1);
    case QMetaType::QString:
        return addText(contentOf<QString>(value));
    case QMetaType::QVariantMap:
        return passesMap(contentOf<QVariantMap>(value), depth);
    default:
        return passesOther(value, depth);
    }
}

bool Inspection::passesVariant(const QVariant &value, int depth)
{
    // A signature of one letter; what has more of them adds the others.
    add(1, 3);
    return passes(value, depth);
}

template<typename Map>
bool Inspection::passesMap(const Map &map, int depth)
{
    add(1, 4);
    add(4, 4);
    for (auto entry = map.cbegin(), end = map.cend(); entry != end; ++entry) {
        add(8, 0);
        addText(entry.key());
        if (!passesVariant(entry.value(), depth + mapDepth))
            return refuseIn(entry.key());
    }
    return true;
}

bool Inspection::passesSection(const QPair<QString, QVariantMap> &section, int depth)
{
    add(8, 0);
    addText(section.first);
    return passesMap(section.second, depth + 1);
}

bool Inspection::passesOther(const QVariant &value, int depth)
{
    const int type = value.userType();
    switch (type) {
    case QMetaType::QByteArray:
        add(1, 1);
        add(4, 4);
        return add(1, contentOf<QByteArray>(value).size());
    case QMetaType::QStringList:
        add(1, 1);
        add(4, 4);
        for (const QString &text : contentOf<QStringList>(value))
            addText(text);
        return true;
    case QMetaType::QVariantHash:
        return passesMap(contentOf<QVariantHash>(value), depth);
    case QMetaType::QVariantList:
        add(1, 1);
        add(4, 4);
        return allOf(contentOf<QVariantList>(value), [&](const QVariant &element) {
            return passesVariant(element, depth + listDepth);
        });
    default:
        break;
    }
    if (type == qMetaTypeId<QDBusArgument>())
        return passesPart(contentOf<QDBusArgument>(value), depth);
    if (!m_isInRegistered && isOfVocabulary(type)) {
        m_hasEnumerations = true;
        return add(4, 4);
    }
    const char *signature = QDBusMetaType::typeToSignature(type);
    if (!signature)
        return refuseType(type);
    // A letter stands for the one type of Qt that has it.
    switch (*signature) {
    case 'v':
        return passesVariant(contentOf<QDBusVariant>(value).variant(), depth + 1);
    case 'o': {
        const QString path = contentOf<QDBusObjectPath>(value).path();
        return path.isEmpty() ? refuseEmpty() : addText(path);
    }
    case 'g': {
        const QByteArray held = contentOf<QDBusSignature>(value).signature().toLatin1();
        if (held.isEmpty())
            return refuseEmpty();
        return isAllowed(held) ? add(1, 2 + held.size()) : refuseType(type);
    }
    case 'h':
        return contentOf<QDBusUnixFileDescriptor>(value).isValid() ? addFileDescriptors(1)
                                                                   : refuseEmpty();
    default:
        return passesRegistered(value, signature, depth);
    }
}

/// Of a value that is written by the operator of its type.
bool Inspection::passesRegistered(const QVariant &value, const char *signature, int depth)
{
    const int type = value.userType();
    if (!isAllowed(signature))
        return refuseType(type);
    const char *end = signature;
    if (depth + depthOfType(end) > maximumDepth)
        return refuseDepth();

    add(1, end - signature - 1);
    add(*signature == 'a' ? 4 : 8, *signature == 'a' ? 4 : 0);
    if (type == propListType()) {
        return allOf(contentOf<lcm::PropList>(value),
                     [&](const QVariantMap &map) { return passesMap(map, depth + 1); });
    }
    if (type == configurationListType()) {
        return allOf(contentOf<ConfigurationList>(value),
                     [&](const auto &section) { return passesSection(section, depth + 1); });
    }
    if (type == sectionType())
        return passesSection(contentOf<QPair<QString, QVariantMap>>(value), depth);

    const bool wasInRegistered = std::exchange(m_isInRegistered, true);
    const auto leave = qScopeGuard([&] { m_isInRegistered = wasInRegistered; });
    QtMetaTypePrivate::QSequentialIterableImpl list;
    if (convert(value, list)) {
        const QSequentialIterable elements(list);
        if (const int width = widthOf(signature[1]))
            return add(width, qint64(width) * elements.size());
        // Its iterators are none that std::all_of() takes.
        for (const QVariant &element : elements) { // NOLINT(readability-use-anyofallof)
            if (!passes(element, depth + 1))
                return false;
        }
        return true;
    }
    QtMetaTypePrivate::QAssociativeIterableImpl map;
    if (convert(value, map)) {
        const QAssociativeIterable entries(map);
        for (auto entry = entries.begin(), last = entries.end(); entry != last; ++entry) {
            add(8, 0);
            if (!passes(entry.key(), depth + 2) || !passes(entry.value(), depth + 2))
                return refuseIn(entry.key().toString());
        }
        return true;
    }
    QtMetaTypePrivate::QPairVariantInterfaceImpl pair;
    if (convert(value, pair))
        return passes(memberOf(pair.first()), depth + 1) &&
               passes(memberOf(pair.second()), depth + 1);
    // Qt's own types write what they say.
    if (type < QMetaType::User)
        return true;
    QDBusArgument written;
    QDBusMetaType::marshall(written, type, value.constData());
    return written.currentSignature() == QLatin1String(signature) || refuseType(type);
}

/// Whether a part that was received has been read to its end. Of an empty list Qt gives the type of
/// the elements there, as if there were one.
bool isAtEnd(QDBusArgument part)
{
    if (part.currentType() != QDBusArgument::UnknownType)
        return false;
    // Nobody can be asked which it is, but what is written by an application takes more.
    const QString signature = part.currentSignature();
    part << true;
    return part.currentSignature() == signature;
}

/// Of a part of a message that was received. One that somebody writes cannot be looked into.
bool Inspection::passesPart(const QDBusArgument &part, int depth)
{
    // What is begun is ended also after a refusal: otherwise Qt leaks it.
    // Reading from a copy leaves the caller's where it is.
    const QDBusArgument own = part; // NOLINT(performance-unnecessary-copy-initialization)
    bool passed = true;
    switch (own.currentType()) {
    case QDBusArgument::ArrayType:
        add(4, 4);
        own.beginArray();
        while (passed && !own.atEnd())
            passed = passes(own.asVariant(), depth + 1);
        own.endArray();
        return passed;
    case QDBusArgument::StructureType:
        add(8, 0);
        own.beginStructure();
        while (passed && !own.atEnd())
            passed = passes(own.asVariant(), depth + 1);
        own.endStructure();
        return passed;
    case QDBusArgument::MapType:
        add(4, 4);
        own.beginMap();
        while (passed && !own.atEnd()) {
            add(8, 0);
            own.beginMapEntry();
            passed = passes(own.asVariant(), depth + 2) && passes(own.asVariant(), depth + 2);
            own.endMapEntry();
        }
        own.endMap();
        return passed;
    case QDBusArgument::VariantType: {
        QDBusVariant held;
        own >> held;
        return passesVariant(held.variant(), depth + 1);
    }
    case QDBusArgument::MapEntryType:
        return refuseType(qMetaTypeId<QDBusArgument>());
    default:
        break;
    }
    const QByteArray signature = own.currentSignature().toLatin1();
    if (signature.isEmpty() || signature.contains("()") || isAtEnd(own))
        return refuseEmpty();
    if (!isAllowed(signature))
        return refuseType(qMetaTypeId<QDBusArgument>());
    const char *type = signature.constData();
    return depth + depthOfType(type) <= maximumDepth ? addFileDescriptors(signature.count('h'))
                                                     : refuseDepth();
}

bool Inspection::refuse(const char *problem)
{
    m_problem = QLatin1String(problem);
    return false;
}

bool Inspection::refuseType(int type)
{
    refuse("a value of the type %1 cannot be sent");
    m_problem = m_problem.arg(QLatin1String(QMetaType::typeName(type)));
    return false;
}

bool Inspection::refuseIn(const QString &key)
{
    m_problem.prepend(QLatin1String(": ")).prepend(key);
    return false;
}

bool Inspection::add(int alignment, qint64 size)
{
    m_size = ((m_size + alignment - 1) & -alignment) + size;
    return true;
}

bool Inspection::addText(const QString &text)
{
    qint64 length = text.size();
    if (m_lengths == Longest)
        length *= 3;                // UTF-8 has up to three bytes for a UTF-16 unit
    else if (length <= maximumSize) // otherwise even a copy might not be possible
        length = qint64(qstrlen(text.toUtf8().constData()));
    add(4, 4);
    return add(1, length + 1);
}

bool Inspection::addFileDescriptors(int count)
{
    m_fileDescriptors += count;
    return m_fileDescriptors <= maximumFileDescriptors
               ? add(4, qint64(4) * count)
               : refuse("more than 16 file descriptors cannot be sent");
}

void sendAsIntegers(QVariantMap &map);

/// Makes the enumerations integers in what an Inspection has passed.
void sendAsIntegers(QVariant &value)
{
    const int type = value.userType();
    if (type == QMetaType::QVariantHash)
        value = value.toMap();
    if (isOfVocabulary(type)) {
        value = value.toInt();
    } else if (value.userType() == QMetaType::QVariantMap) {
        sendAsIntegers(contentOf<QVariantMap>(value));
    } else if (type == QMetaType::QVariantList) {
        for (QVariant &element : contentOf<QVariantList>(value))
            sendAsIntegers(element);
    } else if (type == QDBusMetaType::signatureToType("v")) {
        QVariant held = contentOf<QDBusVariant>(value).variant();
        sendAsIntegers(held);
        contentOf<QDBusVariant>(value).setVariant(held);
    } else if (type == propListType()) {
        for (QVariantMap &map : contentOf<lcm::PropList>(value).maps)
            sendAsIntegers(map);
    } else if (type == configurationListType()) {
        for (auto &section : contentOf<ConfigurationList>(value))
            sendAsIntegers(section.second);
    } else if (type == sectionType()) {
        sendAsIntegers(contentOf<QPair<QString, QVariantMap>>(value).second);
    }
}

void sendAsIntegers(QVariantMap &map)
{
    for (QVariant &value : map)
        sendAsIntegers(value);
}

} // namespace

QString marshallingProblem(QVariantList &arguments)
{
    for (const auto lengths : {Inspection::Longest, Inspection::Exact}) {
        Inspection inspection(lengths);
        for (const QVariant &argument : qAsConst(arguments)) {
            if (!inspection.passes(argument, 0))
                return inspection.problem();
        }
        if (inspection.isTooLarge())
            continue;
        if (inspection.hasEnumerations()) {
            for (QVariant &argument : arguments)
                sendAsIntegers(argument);
        }
        return {};
    }
    return QLatin1String("a message of more than 32 MiB cannot be sent");
}

} // namespace detail
} // namespace libconfigurationmanager
