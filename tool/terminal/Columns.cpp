// SPDX-License-Identifier: MIT

#include "terminal/Columns.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace tool {

namespace {

/// While an object lives, wcwidth() knows all of Unicode, whatever the user's locale is.
class Utf8Locale
{
public:
    Utf8Locale() : m_previous(uselocale(utf8())) {}
    ~Utf8Locale() { uselocale(m_previous); }
    Q_DISABLE_COPY(Utf8Locale)

private:
    static locale_t utf8()
    {
        static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return locale;
    }

    locale_t m_previous;
};

int width(uint character)
{
    return std::max(0, wcwidth(wchar_t(character)));
}

} // namespace

int displayWidth(const QString &text)
{
    const Utf8Locale locale;
    int columns = 0;
    for (const uint character : text.toUcs4())
        columns += width(character);
    return columns;
}

QString padded(const QString &text, int width)
{
    return text + QString(std::max(0, width - displayWidth(text)), QLatin1Char(' '));
}

QString elided(const QString &text, int width)
{
    if (displayWidth(text) <= width)
        return text;
    const Utf8Locale locale;
    QString result;
    int columns = 1;
    for (const uint character : text.toUcs4()) {
        columns += tool::width(character);
        if (columns > width)
            break;
        result += QString::fromUcs4(&character, 1);
    }
    return result + QChar(0x2026);
}

QVector<int> columnWidths(const QVector<QStringList> &rows)
{
    QVector<int> widths;
    for (const QStringList &cells : rows) {
        widths.resize(std::max(widths.size(), cells.size()));
        for (int i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(cells[i]));
    }
    return widths;
}

} // namespace tool
