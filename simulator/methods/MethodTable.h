// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_METHODS_METHODTABLE_H
#define SIMULATOR_METHODS_METHODTABLE_H

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <functional>

namespace simulator {

class Call;

/// Carries a call out and returns its result, or throws a Refusal.
using MethodBody = std::function<QVariant(const Call &)>;

/// The methods that have a behaviour of their own, by name.
using MethodTable = QMap<QString, MethodBody>;

} // namespace simulator

#endif
