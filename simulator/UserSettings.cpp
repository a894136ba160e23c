// SPDX-License-Identifier: MIT

#include "UserSettings.h"

#include "Configuration.h"
#include "Profile.h"
#include "Refusal.h"
#include "Store.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QSaveFile>

namespace simulator {

namespace {

const QString scope = QStringLiteral("user settings");
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
           (secrets == Secrets::Included || !m_configuration.parameter(name).secret);
}

QJsonObject UserSettings::current(Secrets secrets) const
{
    QJsonObject collections;
    for (const QString &collection : m_configuration.collections()) {
        QJsonObject values;
        for (const QString &name : m_configuration.namesSetIn(collection)) {
            if (concerns(name, secrets))
                values.insert(name,
                              QJsonValue::fromVariant(m_configuration.value(name, collection)));
        }
        collections.insert(collection, values);
    }
    return collections;
}

void UserSettings::replaceCurrent(const QJsonObject &collections, Secrets secrets)
{
    Store::Transaction transaction(m_store);
    for (const QString &collection : m_configuration.collections()) {
        for (const QString &name : m_configuration.namesSetIn(collection)) {
            if (concerns(name, secrets))
                m_configuration.reset(name, collection);
        }
    }
    for (auto collection = collections.begin(); collection != collections.end(); ++collection) {
        const QVariantMap values = collection->toObject().toVariantMap();
        for (const QString &name : values.keys()) {
            if (!m_configuration.profile().isUserSetting(name))
                throw unknownName(QStringLiteral("there is no user setting \"%1\"").arg(name));
        }
        m_configuration.setValues(collection.key(), values);
    }
    transaction.commit();
}

QJsonObject UserSettings::saved() const
{
    return QJsonDocument::fromJson(m_store.value(scope, savedName).toString().toUtf8()).object();
}

void UserSettings::setSaved(const QJsonObject &collections)
{
    m_store.setValue(scope, savedName,
                     QString::fromUtf8(QJsonDocument(collections).toJson(QJsonDocument::Compact)));
}

void UserSettings::save()
{
    setSaved(current(Secrets::Included));
}

bool UserSettings::load()
{
    if (!m_store.value(scope, savedName).isValid())
        return false;
    replaceCurrent(saved(), Secrets::Included);
    return true;
}

void UserSettings::remember(const QString &name, const QString &collection)
{
    if (!concerns(name, Secrets::Included))
        return;
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
    QSaveFile file(fileOnMedium());
    const QJsonObject content{{model, m_configuration.profile().name()},
                              {collectionsMember, current(Secrets::Excluded)}};
    file.open(QFile::WriteOnly);
    file.write(QJsonDocument(content).toJson());
    if (!file.commit())
        throw failed(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
    return true;
}

bool UserSettings::loadFromMedium()
{
    if (m_medium.isEmpty() || !QFile::exists(fileOnMedium()))
        return false;
    QFile file(fileOnMedium());
    if (!file.open(QFile::ReadOnly))
        throw failed(QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
    QJsonParseError error;
    const QJsonDocument content = QJsonDocument::fromJson(file.readAll(), &error);
    const QJsonValue collections = content.object().value(collectionsMember);
    if (!collections.isObject())
        throw failed(
            QStringLiteral("%1: %2").arg(file.fileName(), error.error == QJsonParseError::NoError
                                                              ? QStringLiteral("holds no settings")
                                                              : error.errorString()));
    replaceCurrent(collections.toObject(), Secrets::Excluded);
    return true;
}

} // namespace simulator
