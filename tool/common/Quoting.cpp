// SPDX-License-Identifier: MIT

#include "common/Quoting.h"

namespace tool {

namespace {

/// Whether the character would change how the text around it is laid out: the embeddings, overrides
/// and isolates of right-to-left text, and the separators of lines and paragraphs.
bool changesLayout(QChar character)
{
    switch (character.direction()) {
    case QChar::DirLRE:
    case QChar::DirRLE:
    case QChar::DirLRO:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
    case QChar::DirPDI:
        return true;
    default:
        return character.category() == QChar::Separator_Line ||
               character.category() == QChar::Separator_Paragraph;
    }
}

} // namespace

QString printable(const QString &text)
{
    QString result;
    for (const QChar character : text) {
        if (character == QLatin1Char('\n'))
            result += QStringLiteral("\\n");
        else if (character == QLatin1Char('\t'))
            result += QStringLiteral("\\t");
        else if (character == QLatin1Char('\\'))
            result += QStringLiteral("\\\\");
        else if (character.category() == QChar::Other_Control)
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        else if (changesLayout(character))
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}

} // namespace tool
