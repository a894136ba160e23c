// SPDX-License-Identifier: MIT

// Reads files that somebody says are dumps, as embosserctl restore and diff do.

#include "InputFile.h"
#include "common/Failure.h"
#include "configuration/Configuration.h"
#include "library/Catalogue.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const tool::Catalogue catalogue;
    try {
        tool::configurationFromFile(writeInput(QStringLiteral("dump.json"), data, size), catalogue);
    } catch (const tool::Failure &) {
    }
    return 0;
}
