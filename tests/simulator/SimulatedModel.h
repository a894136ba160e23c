// SPDX-License-Identifier: MIT

#ifndef TESTS_SIMULATOR_SIMULATEDMODEL_H
#define TESTS_SIMULATOR_SIMULATEDMODEL_H

#include "methods/GeometryQueries.h"
#include "methods/ParameterQueries.h"
#include "model/Profile.h"
#include "model/Settings.h"
#include "state/Configuration.h"
#include "state/Refusal.h"
#include "state/Store.h"

#include <contract/Interface.h>

/// A model's configuration in this process, without a bus. There is one at a time.
struct SimulatedModel
{
    explicit SimulatedModel(const QString &model)
        : profile(simulator::Profile::fileOfBuiltIn(model), interface, settings)
    {
    }

    /// The message with which a value is refused; empty if it is not.
    QString refusalOf(const QString &setting, const QVariant &value)
    {
        try {
            configuration.setValue(setting, simulator::Configuration::masterCollection(), value);
        } catch (const simulator::Refusal &refusal) {
            return refusal.message;
        }
        return {};
    }

    const contract::Interface &interface = contract::Interface::configurationManager();
    const simulator::Settings settings{interface};
    const simulator::Profile profile;
    simulator::Store store{QString()};
    simulator::Configuration configuration{settings, profile, store};
};

#endif
