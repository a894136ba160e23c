// SPDX-License-Identifier: MIT

#include "state/Files.h"

#include "state/Refusal.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

namespace simulator {

QByteArray readFile(const QString &path)
{
    // Before it is opened: a named pipe would keep everybody waiting.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        throw failed(QStringLiteral("%1: is not a regular file").arg(path));
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        throw failed(QStringLiteral("%1: %2").arg(path, file.errorString()));
    return file.readAll();
}

void writeFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    // flush(): commit() does not see that what was still in the buffer could not be written.
    if (!file.open(QSaveFile::WriteOnly) || file.write(content) != content.size() ||
        !file.flush() || !file.commit())
        throw failed(QStringLiteral("%1: %2").arg(path, file.errorString()));
}

} // namespace simulator
