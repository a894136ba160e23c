// SPDX-License-Identifier: MIT

#include "configuration/Configuration.h"

#include "common/Failure.h"
#include "common/JsonText.h"
#include "library/Catalogue.h"
#include "library/Secret.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/DeferredSignals.h"
#include "terminal/Output.h"
#include "terminal/ProgressBar.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonParseError>

#include <csignal>
#include <cstdio>

namespace tool {

namespace {

const QString formatKey = QStringLiteral("format");
const QString formatName = QStringLiteral("embosserctl configuration 1");
const QString settingsKey = QStringLiteral("settings");
const QString leftOutKey = QStringLiteral("leftOut");

bool canBeRestored(const Setting &setting)
{
    return setting.getter && setting.setter;
}

[[noreturn]] void throwBadFile(const QString &name, const QString &reason)
{
    const QString file = isStandardInput(name) ? QStringLiteral("standard input") : name;
    throw Failure(ExitStatus::Usage, about(file, reason));
}

QByteArray contents(const QString &name)
{
    QFile file(name);
    const bool isOpen =
        isStandardInput(name) ? file.open(stdin, QFile::ReadOnly) : file.open(QFile::ReadOnly);
    if (!isOpen)
        throwBadFile(name, file.errorString());
    return file.readAll();
}

/// The value in the form in which the service's own would be shown, if it can have that form.
QJsonValue normalized(const QJsonValue &value, const Setting *setting)
{
    if (!setting || !setting->getter)
        return value;
    try {
        return toJson(argumentFromJson(value, setting->getter->result), setting->getter->result);
    } catch (const Failure &) {
        return value;
    }
}

} // namespace

bool isStandardInput(const QString &name)
{
    return name == QLatin1String("-");
}

QStringList secretSettings(const Catalogue &catalogue)
{
    QStringList names;
    for (const Setting &setting : catalogue.settings()) {
        if (canBeRestored(setting) && setting.isSecret)
            names.append(setting.name);
    }
    return names;
}

Configuration readConfiguration(const Catalogue &catalogue, const Output &output,
                                const std::optional<QString> &collection)
{
    Session session(collection);
    session.requireConnection();
    Configuration configuration;
    QStringList failures;
    {
        const DeferredSignals untilBarIsGone({SIGINT, SIGTERM});
        const QVector<Setting> &settings = catalogue.settings();
        ProgressBar progress(settings.size(), output.showsProgress());
        for (const Setting &setting : settings) {
            progress.step();
            DeferredSignals::throwIfCome();
            if (!canBeRestored(setting) || setting.isSecret)
                continue;
            const Reply reply = session.call(*setting.getter);
            if (reply.error) {
                failures.append(about(setting.name, *reply.error));
                configuration.errors.insert(
                    setting.name,
                    errorToJson(ExitStatus::Failed, reason(setting.name, *reply.error)));
                continue;
            }
            configuration.values.insert(setting.name, toJson(reply.value, setting.getter->result));
        }
    }
    for (const QString &failure : qAsConst(failures)) {
        output.error(failure);
        configuration.status = ExitStatus::Failed;
    }
    return configuration;
}

QJsonObject configurationToJson(const Configuration &configuration, const Catalogue &catalogue)
{
    QJsonObject document{{formatKey, formatName},
                         {settingsKey, configuration.values},
                         {leftOutKey, QJsonArray::fromStringList(secretSettings(catalogue))}};
    if (!configuration.errors.isEmpty())
        document.insert(QStringLiteral("errors"), configuration.errors);
    return document;
}

Configuration configurationFromFile(const QString &name, const Catalogue &catalogue)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(contents(name), &error);
    if (error.error != QJsonParseError::NoError) {
        throwBadFile(name, QStringLiteral("%1 at byte %2")
                               .arg(error.errorString(), QString::number(error.offset)));
    }
    if (document.object().value(formatKey) != formatName)
        throwBadFile(name, QStringLiteral("this is not a file written by 'embosserctl dump'"));
    if (!document.object().value(settingsKey).isObject())
        throwBadFile(name, QStringLiteral("it contains no settings"));

    Configuration configuration;
    const QJsonObject values = document.object().value(settingsKey).toObject();
    for (auto value = values.begin(); value != values.end(); ++value) {
        const QString setting = value.key();
        if (isSecret(setting)) {
            configuration.ignoredSecrets.append(setting);
            continue;
        }
        configuration.values.insert(
            setting, normalized(withoutSecrets(value.value()), catalogue.setting(setting)));
    }
    return configuration;
}

} // namespace tool
