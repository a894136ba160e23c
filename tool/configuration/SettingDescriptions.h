// SPDX-License-Identifier: MIT

#ifndef TOOL_CONFIGURATION_SETTINGDESCRIPTIONS_H
#define TOOL_CONFIGURATION_SETTINGDESCRIPTIONS_H

#include "library/Catalogue.h"

#include <QtCore/QJsonObject>
#include <QtCore/QVector>

namespace tool {

class Output;
class Session;

/// Asks the service, with a progress bar, what the settings hold and may hold. Returns what a
/// setting is, holds and may hold, as settings prints it with --json: what the service does not
/// tell is left out, and the value of a secret is null.
QVector<QJsonObject> describe(const QVector<const Setting *> &settings, const Catalogue &catalogue,
                              const Output &output, Session &session);

} // namespace tool

#endif
