// SPDX-License-Identifier: MIT

// Opens files that somebody says are the state of a simulated embosser, as embosser-simulator
// --state does.

#include "InputFile.h"
#include "state/Store.h"

#include <QtCore/QVariant>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString scope = QStringLiteral("masterCollectionKey");
    const QString name = QStringLiteral("OddLowPulseTime");
    try {
        simulator::Store store(writeInput(QStringLiteral("state.db"), data, size));
        store.bindTo(QStringLiteral("Halvik"));
        store.values(scope);
        store.setValue(scope, name, 700);
        if (store.value(scope, name) != 700)
            qFatal("What was set is not there");
    } catch (const simulator::StoreError &) {
    }
    return 0;
}
