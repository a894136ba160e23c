// SPDX-License-Identifier: MIT

// Loads the user's settings from a medium that somebody has put in.

#include "InputFile.h"
#include "model/Profile.h"
#include "model/Settings.h"
#include "state/Configuration.h"
#include "state/Refusal.h"
#include "state/Store.h"
#include "state/UserSettings.h"

#include <contract/Interface.h>

#include <QtCore/QFileInfo>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const contract::Interface &interface = contract::Interface::configurationManager();
    static const simulator::Settings settings(interface);
    static const simulator::Profile profile(
        simulator::Profile::fileOfBuiltIn(QStringLiteral("Halvik")), interface, settings);
    static simulator::Store store{QString()};
    const QString file = writeInput(QStringLiteral("embosser-settings.json"), data, size);
    simulator::Configuration configuration(settings, profile, store);
    simulator::UserSettings userSettings(configuration, store, QFileInfo(file).path());
    try {
        // What has been taken can be given.
        if (userSettings.loadFromMedium() && !userSettings.saveToMedium())
            qFatal("There is no medium any more");
    } catch (const simulator::Refusal &) {
    }
    for (const QString &collection : configuration.collections()) {
        for (const QString &name : configuration.namesSetIn(collection))
            configuration.value(name, collection);
    }
    store.clear();
    return 0;
}
