// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_ENUMERATION_H
#define TOOL_LIBRARY_ENUMERATION_H

#include <QtCore/QMetaEnum>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace tool {

/// An enumeration of lcm::EnumDetail, by name; invalid when there is none of that name.
class Enumeration
{
public:
    Enumeration() = default;
    explicit Enumeration(const QString &name);

    bool isValid() const { return m_enum.isValid(); }
    QString name() const { return QString::fromLatin1(m_enum.name()); }
    QStringList keys() const;

    /// The key of a number, if it has one.
    std::optional<QString> key(int value) const;

    /// The number of a key.
    std::optional<int> value(const QString &key) const;

private:
    QMetaEnum m_enum;
};

} // namespace tool

#endif
