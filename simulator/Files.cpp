// SPDX-License-Identifier: MIT

#include "Files.h"

#include "Refusal.h"

#include <QtCore/QSaveFile>

namespace simulator {

void writeFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    // flush(): commit() does not see that what was still in the buffer could not be written.
    if (!file.open(QSaveFile::WriteOnly) || file.write(content) != content.size() ||
        !file.flush() || !file.commit())
        throw failed(QStringLiteral("%1: %2").arg(path, file.errorString()));
}

} // namespace simulator
