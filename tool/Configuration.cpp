// SPDX-License-Identifier: MIT

#include "Configuration.h"

#include "Failure.h"
#include "ProgressBar.h"
#include "Secret.h"
#include "Value.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonParseError>

#include <cstdio>

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
    throw Failure(ExitStatus::Usage, QStringLiteral("%1: %2").arg(name, reason));
}

QByteArray contents(const QString &name)
{
    QFile file(name);
    const bool isOpen = name == QLatin1String("-") ? file.open(stdin, QFile::ReadOnly)
                                                   : file.open(QFile::ReadOnly);
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

QStringList secretSettings(const Catalogue &catalogue)
{
    QStringList names;
    for (const Setting &setting : catalogue.settings()) {
        if (canBeRestored(setting) && isSecret(setting.name))
            names.append(setting.name);
    }
    return names;
}

Configuration readConfiguration(Session &session, const Catalogue &catalogue, bool showsProgress)
{
    Configuration configuration;
    ProgressBar progress(catalogue.settings().size(), showsProgress);
    for (const Setting &setting : catalogue.settings()) {
        progress.step();
        if (!canBeRestored(setting) || isSecret(setting.name))
            continue;
        const Reply reply = session.call(*setting.getter);
        if (reply.error)
            configuration.unreadable.insert(setting.name, *reply.error);
        else
            configuration.values.insert(setting.name, toJson(reply.value, setting.getter->result));
    }
    return configuration;
}

QJsonObject configurationToJson(const Configuration &configuration, const Catalogue &catalogue)
{
    return {{formatKey, formatName},
            {settingsKey, configuration.values},
            {leftOutKey, QJsonArray::fromStringList(secretSettings(catalogue))}};
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
        throwBadFile(name, QStringLiteral("this is no file that 'embosserctl dump' has written"));
    if (!document.object().value(settingsKey).isObject())
        throwBadFile(name, QStringLiteral("there are no settings in it"));

    Configuration configuration;
    const QJsonObject values = document.object().value(settingsKey).toObject();
    for (auto value = values.begin(); value != values.end(); ++value) {
        configuration.values.insert(
            value.key(), normalized(value.value(), catalogue.setting(value.key())));
    }
    return configuration;
}
