// SPDX-License-Identifier: MIT

#include "library/Enumeration.h"

#include <libconfigurationmanager/lcm.h>

namespace tool {

namespace {

QMetaEnum enumerator(const QString &name)
{
    const QMetaObject &enumerations = lcm::EnumDetail::staticMetaObject;
    return enumerations.enumerator(enumerations.indexOfEnumerator(name.toLatin1().constData()));
}

} // namespace

Enumeration::Enumeration(const QString &name) : m_enum(enumerator(name)) {}

QStringList Enumeration::keys() const
{
    QStringList keys;
    for (int i = 0; i < m_enum.keyCount(); ++i)
        keys.append(QString::fromLatin1(m_enum.key(i)));
    return keys;
}

std::optional<QString> Enumeration::key(int value) const
{
    const char *key = m_enum.valueToKey(value);
    return key ? std::optional(QString::fromLatin1(key)) : std::nullopt;
}

std::optional<int> Enumeration::value(const QString &key) const
{
    bool found = false;
    const int value = m_enum.keyToValue(key.toLatin1().constData(), &found);
    return found ? std::optional(value) : std::nullopt;
}

} // namespace tool
