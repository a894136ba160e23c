// SPDX-License-Identifier: MIT

#include "model/Resources.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

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

QByteArray introspectionXml()
{
    initializeResources();
    QFile file(QStringLiteral(":/com.tavelornbraille.ConfigurationManager.xml"));
    if (!file.open(QFile::ReadOnly))
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    return file.readAll();
}

} // namespace simulator
