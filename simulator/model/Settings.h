// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_SETTINGS_H
#define SIMULATOR_MODEL_SETTINGS_H

#include <QtCore/QMap>
#include <QtCore/QString>

namespace contract {
class Interface;
struct Method;
} // namespace contract

namespace simulator {

/// What is stored under one name, or, when keyed, under one name and a key.
struct Setting
{
    QString name;
    QString type; ///< D-Bus type of the value that is set
    QString family;
    QString meaning;           ///< a phrase, such as "the baud rate of the serial line"
    bool perCollection = true; ///< otherwise one value for the whole device
    bool keyed = false;
    bool secret = false;
};

/// The settings that are stored: those that a method of the interface writes.
class Settings
{
public:
    explicit Settings(const contract::Interface &interface);

    const QMap<QString, Setting> &all() const { return m_settings; }

    /// The setting that a method writes or reads; null when it does neither.
    const Setting *writtenBy(const contract::Method &method) const;
    const Setting *readBy(const contract::Method &method) const;

private:
    const Setting *find(const QString &name) const;

    QMap<QString, Setting> m_settings;
};

} // namespace simulator

#endif
