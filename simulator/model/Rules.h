// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_MODEL_RULES_H
#define SIMULATOR_MODEL_RULES_H

#include "model/Page.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace simulator {

/// Whether a rule of ValidateCommand is about the model.
bool isRuleAboutModel(const QString &rule);

/// Whether it is about what is set, and what that must be is known.
bool isRuleAboutSettings(const QString &rule);

/// Whether one of the rules about what is set holds for these values.
bool holdsAny(const QStringList &rules, const ValueOf &valueOf);

} // namespace simulator

#endif
