// SPDX-License-Identifier: MIT

#include "InputFile.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

QString writeInput(const QString &name, const uint8_t *data, size_t size)
{
    static const QTemporaryDir folder;
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(reinterpret_cast<const char *>(data), qint64(size)) != qint64(size))
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    return file.fileName();
}
