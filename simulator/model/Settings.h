// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_SETTINGS_H
#define SIMULATOR_MODEL_SETTINGS_H

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QString>

namespace simulator {

class Interface;
struct Method;

/// What is stored under one name, or, when keyed, under one name and a key.
struct Setting
{
    QString name; ///< as the library's operations have it: X of setX and getX
    QString type; ///< D-Bus type of the value that is set
    QString family;
    QString meaning;           ///< of the setter, a sentence
    bool perCollection = true; ///< otherwise one value for the whole device
    bool keyed = false;
};

/// The settings that an interface's setX and getX methods read and write.
///
/// A method of another form, whatever its name, is none of them.
class Settings
{
public:
    explicit Settings(const Interface &interface);

    const QMap<QString, Setting> &all() const { return m_settings; }

    /// The setting that a method writes or reads; null when it does neither.
    const Setting *writtenBy(const Method &method) const;
    const Setting *readBy(const Method &method) const;

private:
    QMap<QString, Setting> m_settings;
    QHash<QString, QString> m_writtenBy; ///< method name -> setting name
    QHash<QString, QString> m_readBy;
};

/// The argument that holds the value in a call of a setter.
QString valueArgument(const Method &method);

/// The argument that says which of a keyed setting's values is meant; empty when there is none.
QString keyArgument(const Method &method);

} // namespace simulator

#endif
