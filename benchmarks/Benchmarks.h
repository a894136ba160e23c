// SPDX-License-Identifier: MIT

#ifndef BENCHMARKS_BENCHMARKS_H
#define BENCHMARKS_BENCHMARKS_H

namespace libconfigurationmanager {
namespace detail {
class ConfigurationManager;
}
} // namespace libconfigurationmanager

// Each is called once, when there is a bus with the service. What has no need of them before it
// runs registers itself with BENCHMARK().
void registerCallBenchmarks();
void registerLibraryBenchmarks(libconfigurationmanager::detail::ConfigurationManager &unconnected);

#endif
