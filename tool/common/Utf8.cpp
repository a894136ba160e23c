// SPDX-License-Identifier: MIT

#include "common/Utf8.h"

#include <QtCore/QTextCodec>

namespace tool {

std::optional<QString> textFromUtf8(const QByteArray &bytes)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    const bool isUtf8 = state.invalidChars == 0 && state.remainingChars == 0;
    return isUtf8 && !bytes.contains('\0') ? std::optional(text) : std::nullopt;
}

} // namespace tool
