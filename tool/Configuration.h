// SPDX-License-Identifier: MIT

#ifndef TOOL_CONFIGURATION_H
#define TOOL_CONFIGURATION_H

#include "Catalogue.h"
#include "Session.h"

#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// The values of the settings that can be both read and written, but for the secret ones.
struct Configuration
{
    QJsonObject values;
    /// What the service does not tell, with its reason.
    QMap<QString, QString> unreadable;
};

Configuration readConfiguration(Session &session, const Catalogue &catalogue, bool showsProgress);

/// The settings that a configuration leaves out because they are secret.
QStringList secretSettings(const Catalogue &catalogue);

QJsonObject configurationToJson(const Configuration &configuration, const Catalogue &catalogue);

/// Reads what configurationToJson() has written; "-" is standard input. Throws a Failure that names
/// the file and what is wrong with it.
Configuration configurationFromFile(const QString &name, const Catalogue &catalogue);

#endif
