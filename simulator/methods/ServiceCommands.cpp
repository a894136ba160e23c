// SPDX-License-Identifier: MIT

#include "methods/ServiceCommands.h"

#include "methods/Call.h"
#include "model/DBusTypes.h"
#include "model/Profile.h"
#include "model/Settings.h"
#include "state/Configuration.h"
#include "state/Files.h"
#include "state/Refusal.h"
#include "state/ServiceLog.h"
#include "state/UserSettings.h"

#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace simulator {

namespace {

const QString pageCounter = QStringLiteral("Counter/1");

/// All that can be reported without a setting, and who the embosser is.
QVariantMap embosserReport(const Configuration &configuration)
{
    QVariantMap report;
    const QMap<QString, QVariant> answers = configuration.answers();
    for (auto answer = answers.begin(); answer != answers.end(); ++answer) {
        const QString &name = answer.key();
        report.insert(name.startsWith(QLatin1String("get")) ? name.mid(3) : name, *answer);
    }
    for (const char *identity :
         {"Model", "CompanyName", "SerialNo", "Architecture", "VersionInt"}) {
        const QString name = QString::fromLatin1(identity);
        report.insert(name, configuration.value(name));
    }
    report.insert(QStringLiteral("PageCounter"), configuration.value(pageCounter));
    return report;
}

/// A map for each family of the master collection, then for each of the other collections what has
/// been set in it. Secrets are left out.
NamedMapList configurationReport(const Configuration &configuration)
{
    QMap<QString, QVariantMap> families;
    for (const QString &name : configuration.profile().parameters().keys()) {
        if (!configuration.setting(name).secret)
            families[configuration.setting(name).family].insert(name, configuration.value(name));
    }
    NamedMapList report;
    for (auto family = families.begin(); family != families.end(); ++family)
        report.append({family.key(), *family});
    for (const QString &collection : configuration.collections().mid(1)) {
        QVariantMap values;
        for (const QString &name : configuration.namesSetIn(collection)) {
            if (!configuration.setting(name).secret)
                values.insert(name, configuration.value(name, collection));
        }
        report.append({QStringLiteral("collection ") + collection, values});
    }
    return report;
}

void writeLegacyJson(const Configuration &configuration, const QString &path)
{
    if (path.isEmpty())
        return;
    QJsonObject content;
    for (const auto &part : configurationReport(configuration))
        content.insert(part.first, QJsonObject::fromVariantMap(part.second));
    writeFile(path, QJsonDocument(content).toJson());
}

/// A layout is a JSON object of settings; its name is that of the file unless it says another.
void takeLayout(Configuration &configuration, const QString &path)
{
    const QString layoutName = QStringLiteral("LayoutName");
    const QJsonDocument content = QJsonDocument::fromJson(readFile(path));
    if (!content.isObject())
        throw failed(QStringLiteral("%1: is not a layout: not a JSON object").arg(path));
    QVariantMap values = content.object().toVariantMap();
    if (!values.contains(layoutName))
        values.insert(layoutName, QFileInfo(path).completeBaseName());
    configuration.setValues(Configuration::masterCollection(), values);
}

QString hammerBatchString(const Configuration &configuration)
{
    QStringList parts;
    for (const char *setting : {"HammerBatch", "HammerBatchParameters", "HammerImpact",
                                "AllowMultipleHammers", "ReleaseLevel"}) {
        const QString name = QString::fromLatin1(setting);
        parts += QStringLiteral("%1=%2").arg(name, configuration.value(name).toString());
    }
    return parts.join(QLatin1Char(';'));
}

} // namespace

MethodTable serviceCommands(const CommandTargets &t)
{
    const auto setInteger = [t](const Call &call, int base) {
        const QString name = call.text(0);
        t.configuration.requireInteger(name);
        t.userSettings.setValue(name, call.collectionId(), qint64(base) + call.number(1),
                                call.flag());
        return true;
    };
    const auto documents = [t](const char *kind) {
        return [t, kind = QString::fromLatin1(kind)](const Call &) {
            return t.configuration.profile().documents(kind);
        };
    };

    return {
        // Reports
        {QStringLiteral("embosserInfoCmd"),
         [t](const Call &) { return embosserReport(t.configuration); }},
        {QStringLiteral("currentConfigurationCmd"),
         [t](const Call &) { return QVariant::fromValue(configurationReport(t.configuration)); }},
        {QStringLiteral("getDemoDocuments"), documents("demo")},
        {QStringLiteral("getManualDocuments"), documents("manual")},
        {QStringLiteral("getServiceDocuments"), documents("service")},
        {QStringLiteral("buildHammerBatchString"),
         [t](const Call &) { return hammerBatchString(t.configuration); }},
        {QStringLiteral("generateLegacyJson"),
         [t](const Call &) {
             writeLegacyJson(t.configuration, t.legacyFile);
             return QVariant();
         }},

        // Settings
        {QStringLiteral("setIntValue"),
         [setInteger](const Call &call) { return setInteger(call, 0); }},
        {QStringLiteral("setIntDeltaValue"),
         [t, setInteger](const Call &call) {
             return setInteger(
                 call, t.configuration.initialValue(call.text(0), call.collectionId()).toInt());
         }},
        {QStringLiteral("incrementPageCounter"),
         [t](const Call &call) {
             t.configuration.increment(pageCounter, call.collectionId());
             return QVariant();
         }},
        {QStringLiteral("processSequence"),
         [t](const Call &call) {
             t.configuration.setValues(Configuration::masterCollection(), call.argument(0).toMap());
             return true;
         }},
        {QStringLiteral("setLayoutFromPath"),
         [t](const Call &call) {
             takeLayout(t.configuration, call.text(0));
             return QVariant();
         }},

        // Storage
        {QStringLiteral("saveUserSettings"),
         [t](const Call &) {
             t.userSettings.save();
             return true;
         }},
        {QStringLiteral("loadUserSettings"), [t](const Call &) { return t.userSettings.load(); }},
        {QStringLiteral("saveUserSettingsUSB"),
         [t](const Call &) { return t.userSettings.saveToMedium(); }},
        {QStringLiteral("loadUserSettingsUSB"),
         [t](const Call &) { return t.userSettings.loadFromMedium(); }},
        {QStringLiteral("duplicateCatalog"),
         [t](const Call &call) {
             return t.configuration.duplicateCollection(call.text(0), call.text(1));
         }},
        {QStringLiteral("removeCatalogsCollection"),
         [t](const Call &call) { return t.configuration.removeCollection(call.text(0)); }},

        // The service itself
        {QStringLiteral("setLogger"),
         [t](const Call &call) {
             t.log.setEnabled(call.argument(0).toBool());
             return QVariant();
         }},
        {QStringLiteral("clearLog"),
         [t](const Call &) {
             t.log.clear();
             return true;
         }},
        {QStringLiteral("restartServicesAfterReset"),
         [t](const Call &) {
             t.restart();
             return QVariant();
         }},
        // There is nothing behind the simulator whose errors could be reported.
        {QStringLiteral("connectErrorHandler"), [](const Call &) { return QVariant(); }},
    };
}

} // namespace simulator
