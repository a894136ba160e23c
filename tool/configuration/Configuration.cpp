// SPDX-License-Identifier: MIT

#include "configuration/Configuration.h"

#include "common/DeferredSignals.h"
#include "common/Failure.h"
#include "common/JsonText.h"
#include "library/Catalogue.h"
#include "library/Lookup.h"
#include "library/Secret.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"
#include "terminal/ProgressBar.h"

#include <QtCore/QCoreApplication>
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
const QString formatPrefix = QStringLiteral("embosserctl configuration ");
const QString embosserKey = QStringLiteral("embosser");
const QString typeKey = QStringLiteral("type");
const QString modelKey = QStringLiteral("model");
const QString toolKey = QStringLiteral("tool");
const QString modelName = QStringLiteral("Model");
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

/// What the bytes of a file written by dump say.
QJsonObject documentIn(const QByteArray &bytes, const QString &name)
{
    if (bytes.trimmed().isEmpty())
        throwBadFile(name, QStringLiteral("it is empty"));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        const QByteArray before = bytes.left(error.offset);
        throwBadFile(name, QStringLiteral("it is not valid JSON, see line %1, column %2")
                               .arg(before.count('\n') + 1)
                               .arg(before.size() - before.lastIndexOf('\n')));
    }
    const QString format = document.object().value(formatKey).toString();
    bool isNumbered = false;
    const int number = format.mid(formatPrefix.size()).toInt(&isNumbered);
    if (format.startsWith(formatPrefix) && isNumbered && number > 1)
        throwBadFile(
            name,
            QStringLiteral("it is of a newer format (%1) than this program knows").arg(number));
    if (format != formatName)
        throwBadFile(name, QStringLiteral("this is not a file written by 'embosserctl dump'"));
    return document.object();
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

const Setting &typeSetting(const Catalogue &catalogue)
{
    return readableSetting(catalogue, QStringLiteral("Type"));
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
                                const SessionOptions &options)
{
    const Setting *const type = &typeSetting(catalogue);
    QVector<const Setting *> settings;
    for (const Setting &setting : catalogue.settings()) {
        if (&setting == type || (canBeRestored(setting) && !setting.isSecret))
            settings.append(&setting);
    }
    Session session(options);
    session.requireConnection();
    Configuration configuration;
    QStringList failures;
    {
        const DeferredSignals untilBarIsGone({SIGINT, SIGTERM});
        ProgressBar progress(settings.size(), output.showsProgress());
        for (const auto &[setting, call] : session.beginToRead(settings)) {
            progress.step();
            DeferredSignals::throwIfCome();
            const Reply reply = session.finish(call);
            if (reply.error) {
                failures.append(about(setting->name, *reply.error));
                configuration.errors.insert(
                    setting->name,
                    errorToJson(ExitStatus::Failed, reason(setting->name, *reply.error)));
                continue;
            }
            const QJsonValue value = toJson(reply.value, setting->getter->result);
            if (setting == type)
                configuration.type = toText(value);
            else
                configuration.values.insert(setting->name, value);
            if (setting->name == modelName)
                configuration.model = toText(value);
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
    QJsonObject document{
        {formatKey, formatName},
        {toolKey, QCoreApplication::applicationVersion()},
        {embosserKey, QJsonObject{{typeKey, configuration.type}, {modelKey, configuration.model}}},
        {settingsKey, configuration.values},
        {leftOutKey, QJsonArray::fromStringList(secretSettings(catalogue))}};
    if (!configuration.errors.isEmpty())
        document.insert(QStringLiteral("errors"), configuration.errors);
    return document;
}

Configuration configurationFromFile(const QString &name, const Catalogue &catalogue)
{
    const QJsonObject document = documentIn(contents(name), name);
    const QJsonObject values = document.value(settingsKey).toObject();
    if (values.isEmpty())
        throwBadFile(name, QStringLiteral("it contains no settings"));

    Configuration configuration;
    const QJsonObject embosser = document.value(embosserKey).toObject();
    configuration.type = embosser.value(typeKey).toString();
    configuration.model = embosser.value(modelKey).toString();
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
