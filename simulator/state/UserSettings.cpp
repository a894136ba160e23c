// SPDX-License-Identifier: MIT

#include "state/UserSettings.h"

#include "model/Profile.h"
#include "model/Settings.h"
#include "state/Configuration.h"
#include "state/Files.h"
#include "state/Refusal.h"
#include "state/Store.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

namespace simulator {

namespace {

const QString userSettingsScope = QStringLiteral("user settings");
const QString savedName = QStringLiteral("saved");
const QString model = QStringLiteral("model");
const QString collectionsMember = QStringLiteral("collections");

} // namespace

UserSettings::UserSettings(Configuration &configuration, Store &store, const QString &medium)
    : m_configuration(configuration), m_store(store), m_medium(medium)
{
}

bool UserSettings::concerns(const QString &name, Secrets secrets) const
{
    return m_configuration.profile().isUserSetting(name) &&
           (secrets == Secrets::Included || !m_configuration.setting(name).secret);
}

QJsonObject UserSettings::current(Secrets secrets) const
{
    QJsonObject collections;
    for (const QString &collection : m_configuration.collections()) {
        const QStringList set = m_configuration.namesSetIn(collection);
        const bool isMaster = collection == Configuration::masterCollection();
        QJsonObject values;
        for (const QString &name : m_configuration.profile().parameters().keys()) {
            const bool isHere = isMaster || m_configuration.setting(name).perCollection;
            if (isHere && concerns(name, secrets))
                values.insert(name,
                              set.contains(name)
                                  ? QJsonValue::fromVariant(m_configuration.value(name, collection))
                                  : QJsonValue(QJsonValue::Null));
        }
        collections.insert(collection, values);
    }
    return collections;
}

void UserSettings::apply(const QJsonObject &collections, Secrets secrets)
{
    Store::Transaction transaction(m_store);
    for (auto collection = collections.begin(); collection != collections.end(); ++collection) {
        if (!collection->isObject())
            throw invalidValue(
                QStringLiteral("the collection \"%1\" is not an object").arg(collection.key()));
        const QJsonObject saved = collection->toObject();
        QVariantMap values;
        for (auto value = saved.begin(); value != saved.end(); ++value) {
            const QString &name = value.key();
            if (!m_configuration.profile().isUserSetting(name))
                throw unknownName(QStringLiteral("there is no user setting \"%1\"").arg(name));
            if (!concerns(name, secrets))
                continue;
            if (value->isNull())
                m_configuration.reset(name, collection.key());
            else
                values.insert(name, value->toVariant());
        }
        m_configuration.setValues(collection.key(), values);
    }
    transaction.commit();
}

QJsonObject UserSettings::saved() const
{
    const QVariant stored = m_store.value(userSettingsScope, savedName);
    const QJsonDocument collections = QJsonDocument::fromJson(stored.toString().toUtf8());
    if (stored.isValid() && !collections.isObject())
        throw failed(QStringLiteral("the user settings saved in the state cannot be read"));
    return collections.object();
}

void UserSettings::setSaved(const QJsonObject &collections)
{
    m_store.setValue(userSettingsScope, savedName,
                     QString::fromUtf8(QJsonDocument(collections).toJson(QJsonDocument::Compact)));
}

void UserSettings::save()
{
    setSaved(current(Secrets::Included));
}

bool UserSettings::load()
{
    if (!m_store.value(userSettingsScope, savedName).isValid())
        return false;
    apply(saved(), Secrets::Included);
    return true;
}

void UserSettings::setValue(const QString &name, const QString &collection, const QVariant &value,
                            bool saveToo)
{
    Store::Transaction transaction(m_store);
    m_configuration.setValue(name, collection, value);
    if (saveToo && concerns(name, Secrets::Included))
        saveValue(name, collection);
    transaction.commit();
}

void UserSettings::saveValue(const QString &name, const QString &collection)
{
    QJsonObject collections = saved();
    QJsonObject values = collections.value(collection).toObject();
    values.insert(name, QJsonValue::fromVariant(m_configuration.value(name, collection)));
    collections.insert(collection, values);
    setSaved(collections);
}

QString UserSettings::fileOnMedium() const
{
    return QDir(m_medium).filePath(QStringLiteral("embosser-settings.json"));
}

bool UserSettings::saveToMedium() const
{
    if (m_medium.isEmpty() || !QDir(m_medium).exists())
        return false;
    const QJsonObject content{{model, m_configuration.profile().name()},
                              {collectionsMember, current(Secrets::Excluded)}};
    writeFile(fileOnMedium(), QJsonDocument(content).toJson());
    return true;
}

bool UserSettings::loadFromMedium()
{
    if (m_medium.isEmpty() || !QFile::exists(fileOnMedium()))
        return false;
    const QByteArray content = readFile(fileOnMedium());
    try {
        apply(collectionsIn(content), Secrets::Excluded);
    } catch (Refusal &refusal) {
        refusal.message.prepend(fileOnMedium() + QLatin1String(": "));
        throw;
    }
    return true;
}

QJsonObject UserSettings::collectionsIn(const QByteArray &content) const
{
    QJsonParseError error;
    const QJsonObject members = QJsonDocument::fromJson(content, &error).object();
    if (error.error != QJsonParseError::NoError)
        throw failed(error.errorString());
    const QString ours = m_configuration.profile().name();
    const QString theirs = members.value(model).toString();
    if (theirs.isEmpty())
        throw failed(QStringLiteral("names no model"));
    if (theirs != ours)
        throw failed(QStringLiteral("holds settings of the model %1, not %2").arg(theirs, ours));
    const QJsonObject collections = members.value(collectionsMember).toObject();
    if (collections.isEmpty())
        throw failed(QStringLiteral("holds no settings"));
    return collections;
}

} // namespace simulator
