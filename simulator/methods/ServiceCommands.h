// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_METHODS_SERVICECOMMANDS_H
#define SIMULATOR_METHODS_SERVICECOMMANDS_H

#include "methods/MethodTable.h"

#include <QtCore/QString>

#include <functional>

namespace simulator {

class Configuration;
class ServiceLog;
class UserSettings;

/// What the commands act on.
struct CommandTargets
{
    Configuration &configuration;
    UserSettings &userSettings;
    ServiceLog &log;
    QString legacyFile; ///< where the legacy JSON is written; empty when nothing is kept
    std::function<void()> restart;
};

/// The commands and reports of the service, and the writing of settings by name.
///
/// What `t` refers to outlives the methods.
MethodTable serviceCommands(const CommandTargets &t);

} // namespace simulator

#endif
