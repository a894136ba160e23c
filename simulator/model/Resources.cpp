// SPDX-License-Identifier: MIT

#include "model/Resources.h"

#include <QtCore/QDir>

// Not within a namespace, which the macro cannot stand in. The linker would leave out of a static
// library what is referred to only by a name.
static void initializeResources()
{
    Q_INIT_RESOURCE(simulator);
}

namespace simulator {

QString builtInProfiles()
{
    initializeResources();
    return QStringLiteral(":/profiles");
}

} // namespace simulator
