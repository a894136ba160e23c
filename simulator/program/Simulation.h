// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_PROGRAM_SIMULATION_H
#define SIMULATOR_PROGRAM_SIMULATION_H

namespace simulator {

struct Options;

/// Simulates an embosser until the process is told to end. Throws a std::runtime_error that says
/// why it cannot begin or go on.
void runSimulation(const Options &options);

} // namespace simulator

#endif
