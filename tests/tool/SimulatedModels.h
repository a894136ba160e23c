// SPDX-License-Identifier: MIT

#ifndef TESTS_TOOL_SIMULATEDMODELS_H
#define TESTS_TOOL_SIMULATEDMODELS_H

#include <QtCore/QStringList>

/// The models that the simulator has, as it lists them; in slow builds, a few.
QStringList simulatedModels();

#endif
