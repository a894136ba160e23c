// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_GEOMETRYQUERIES_H
#define SIMULATOR_GEOMETRYQUERIES_H

#include "Handlers.h"

namespace simulator {

class Configuration;

/// The queries for the geometry of papers and of braille; all lengths are in millimetres.
Handlers geometryQueries(const Configuration &configuration);

} // namespace simulator

#endif
