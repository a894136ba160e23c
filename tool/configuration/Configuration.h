// SPDX-License-Identifier: MIT

#ifndef TOOL_CONFIGURATION_CONFIGURATION_H
#define TOOL_CONFIGURATION_CONFIGURATION_H

#include "common/Failure.h"
#include "library/Session.h"

#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace tool {

class Catalogue;
class Output;
struct Setting;

/// The values of the settings that can be both read and written, but for the secret ones.
struct Configuration
{
    QJsonObject values;
    /// The device's type and model; empty where a file or the service does not tell.
    QString type;
    QString model;
    /// The secret settings for which a file had values all the same.
    QStringList ignoredSecrets;
    /// What the service has refused to report, with its reasons.
    QJsonObject errors;
    /// Failed if the service has not reported all of them.
    ExitStatus status = ExitStatus::Done;
};

/// Asks the service, with a progress bar, and reports on standard error what it does not answer.
Configuration readConfiguration(const Catalogue &catalogue, const Output &output,
                                const SessionOptions &options);

/// The settings that a configuration leaves out because they are secret.
QStringList secretSettings(const Catalogue &catalogue);

/// Whether the name of a file stands for standard input.
bool isStandardInput(const QString &name);

/// The setting that tells the type of the device.
const Setting &typeSetting(const Catalogue &catalogue);

QJsonObject configurationToJson(const Configuration &configuration, const Catalogue &catalogue);

/// Reads what configurationToJson() has written, but no secret that somebody has added; "-" is
/// standard input. Throws a Failure that names the file and what is wrong with it.
Configuration configurationFromFile(const QString &name, const Catalogue &catalogue);

} // namespace tool

#endif
