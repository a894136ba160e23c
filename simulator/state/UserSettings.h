// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_USERSETTINGS_H
#define SIMULATOR_STATE_USERSETTINGS_H

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace simulator {

class Configuration;
class Store;

/// The settings that are the user's: saved in the device or on a medium, and loaded again.
///
/// A secret is not written to a medium, and stays as it is when one is loaded. Methods throw a
/// Refusal when what they find cannot be used or written; nothing has changed then.
class UserSettings
{
public:
    /// `medium` is the folder that stands for the USB medium.
    UserSettings(Configuration &configuration, Store &store, const QString &medium);

    /// Saves all of them; of one that has not been set, that it has not been.
    void save();

    /// Brings back what has been saved and changes nothing else. False if nothing has been.
    bool load();

    /// Sets a value and, on demand, saves it too if it is the user's: both or neither.
    void setValue(const QString &name, const QString &collection, const QVariant &value,
                  bool saveToo);

    /// False if there is no medium.
    bool saveToMedium() const;

    /// False if there is no medium or none have been saved on it.
    bool loadFromMedium();

private:
    enum class Secrets {
        Included,
        Excluded
    };

    void saveValue(const QString &name, const QString &collection);
    bool concerns(const QString &name, Secrets secrets) const;
    /// The values by collection and name; null is one that has not been set.
    QJsonObject current(Secrets secrets) const;
    /// Takes such values; what is not among them stays as it is.
    void apply(const QJsonObject &collections, Secrets secrets);
    QJsonObject saved() const;
    void setSaved(const QJsonObject &collections);
    QString fileOnMedium() const;
    /// The content of that file, of which the collections themselves are not looked at.
    QJsonObject collectionsIn(const QByteArray &content) const;

    Configuration &m_configuration;
    Store &m_store;
    const QString m_medium;
};

} // namespace simulator

#endif
