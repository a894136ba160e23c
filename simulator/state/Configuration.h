// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_CONFIGURATION_H
#define SIMULATOR_STATE_CONFIGURATION_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtCore/QVector>

namespace simulator {

class Profile;
class Settings;
class Store;
struct Choice;
struct Parameter;
struct Setting;

struct Bounds
{
    double min;
    double max;
};

/// The configuration: the values of the settings in their collections.
///
/// Settings are named as in Profile::parameters(). A collection has the profile's value of each
/// setting that has not been set in it. Methods that take a name or a value throw a Refusal when
/// that cannot be; nothing has changed then.
class Configuration
{
public:
    Configuration(const Settings &settings, const Profile &profile, Store &store);

    /// The collection that is meant where a call does not say which.
    static QString masterCollection() { return QStringLiteral("masterCollectionKey"); }

    const Settings &settings() const { return m_settings; }
    const Profile &profile() const { return m_profile; }

    const Setting &setting(const QString &name) const;
    const Parameter &parameter(const QString &name) const;

    /// Throws a Refusal if the setting is of another type.
    void requireInteger(const QString &name) const;

    /// The bounds of a setting that has some: those of the model, or, where another setting's value
    /// in the master collection is to stay above or below, what that leaves.
    Bounds bounds(const QString &name) const;

    /// Those entries of a value list that are available with what is set in the master collection,
    /// and those that are set there.
    QVector<Choice> choices(const QString &row) const;

    /// The answers to the queries without arguments, by method name.
    QMap<QString, QVariant> answers() const;

    /// The value of a setting until one is set.
    QVariant initialValue(const QString &name, const QString &collection) const;

    /// Throws a Refusal if what the state has is none that could have been set.
    QVariant value(const QString &name, const QString &collection = masterCollection()) const;

    /// Takes a value of the setting's type, or a number that can be converted without loss. What
    /// follows from the setting, such as the size of a paper, follows from it again.
    void setValue(const QString &name, const QString &collection, const QVariant &value);

    /// Sets all or none.
    void setValues(const QString &collection, const QVariantMap &values);

    /// Adds one to a number.
    void increment(const QString &name, const QString &collection);

    /// Has the profile's value again.
    void reset(const QString &name, const QString &collection);

    /// Has the model's values again in all collections, and only the master collection.
    void clear();

    /// Sets what a captured service held, once for each state that is kept.
    void takeHeldValues();

    /// The master first; the others are those in which something has been set, or that are
    /// duplicates.
    QStringList collections() const;

    /// What has been set in a collection; in the master, also what has been set for the device.
    QStringList namesSetIn(const QString &collection) const;

    /// False, without effect, if the first is unknown or the second exists.
    bool duplicateCollection(const QString &from, const QString &to);

    /// False, without effect, if it is unknown or the master.
    bool removeCollection(const QString &collection);

private:
    /// Why a setting cannot have a value, in words that follow its name; empty if it can.
    QString objectionTo(const QString &name, const QVariant &value) const;
    /// Sets a value that may stand in the wrong order to another one.
    void store(const QString &name, const QString &collection, const QVariant &value);
    /// Has all that follows from a setting follow from it again.
    void resetFollowers(const QString &name, const QString &scope);
    /// How many steps a setting is away from one that follows nothing.
    int depthOf(const QString &name) const;
    void requireOrder(const QStringList &names, const QString &collection) const;
    /// Refuses a change to what is not available with all that is set now.
    void requireAvailable(const QVariantMap &before, const QString &collection) const;
    /// What those of the settings have whose value may be unavailable.
    QVariantMap restrictedValues(const QStringList &names, const QString &collection) const;
    bool holdsAny(const QStringList &rules, const QString &collection) const;

    const Settings &m_settings;
    const Profile &m_profile;
    Store &m_store;
};

} // namespace simulator

#endif
