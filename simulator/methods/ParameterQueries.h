// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_METHODS_PARAMETERQUERIES_H
#define SIMULATOR_METHODS_PARAMETERQUERIES_H

#include "methods/MethodTable.h"

namespace simulator {

class Configuration;

/// What the service reports about its parameters, and the reading of them by name.
MethodTable parameterQueries(const Configuration &configuration);

} // namespace simulator

#endif
