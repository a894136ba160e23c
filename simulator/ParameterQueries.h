// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_PARAMETERQUERIES_H
#define SIMULATOR_PARAMETERQUERIES_H

#include "Handlers.h"

namespace simulator {

class Configuration;

/// What the service reports about its parameters, and the reading of them by name.
Handlers parameterQueries(const Configuration &configuration);

} // namespace simulator

#endif
