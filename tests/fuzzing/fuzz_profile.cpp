// SPDX-License-Identifier: MIT

// Reads files that somebody says are profiles, as embosser-simulator --profile does.

#include "InputFile.h"
#include "model/LayeredJson.h"
#include "model/Profile.h"
#include "model/Settings.h"

#include <contract/Interface.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const contract::Interface &interface = contract::Interface::configurationManager();
    static const simulator::Settings settings(interface);
    try {
        const simulator::Profile profile(writeInput(QStringLiteral("profile.json"), data, size),
                                         interface, settings);
    } catch (const simulator::JsonError &) {
    }
    return 0;
}
