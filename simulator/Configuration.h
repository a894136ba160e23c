// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_CONFIGURATION_H
#define SIMULATOR_CONFIGURATION_H

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace simulator {

class Settings;
class Store;
struct Setting;

/// The configuration: the settings' values in their collections.
class Configuration
{
public:
    Configuration(const Settings &settings, Store &store);

    const Settings &settings() const { return m_settings; }

    /// `key` is empty unless the setting is keyed.
    QVariant value(const Setting &setting, const QString &key, const QString &collection) const;
    void setValue(const Setting &setting, const QString &key, const QString &collection,
                  const QVariant &value);

private:
    const Settings &m_settings;
    Store &m_store;
};

} // namespace simulator

#endif
