// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_RESOURCES_H
#define SIMULATOR_MODEL_RESOURCES_H

#include <QtCore/QString>

namespace simulator {

/// The folder of the profiles that are part of the program.
QString builtInProfiles();

} // namespace simulator

#endif
