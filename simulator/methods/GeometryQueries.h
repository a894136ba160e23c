// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_METHODS_GEOMETRYQUERIES_H
#define SIMULATOR_METHODS_GEOMETRYQUERIES_H

#include "methods/MethodTable.h"

namespace simulator {

class Configuration;

/// The queries for the geometry of papers and of braille; all lengths are in millimetres.
MethodTable geometryQueries(const Configuration &configuration);

} // namespace simulator

#endif
