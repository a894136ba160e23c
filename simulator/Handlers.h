// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_HANDLERS_H
#define SIMULATOR_HANDLERS_H

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <functional>

namespace simulator {

class Call;

/// Carries a call out and returns its result, or throws a Refusal.
using Handler = std::function<QVariant(const Call &)>;

/// The methods that have a behaviour of their own, by name.
using Handlers = QMap<QString, Handler>;

} // namespace simulator

#endif
