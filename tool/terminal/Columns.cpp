// SPDX-License-Identifier: MIT

#include "terminal/Columns.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <numeric>

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

QStringList wrapped(const QString &text, int width)
{
    QStringList lines{QString()};
    for (const QString &word : text.split(QLatin1Char(' '))) {
        QString &line = lines.last();
        const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
        if (line.isEmpty() || displayWidth(longer) <= width)
            line = longer;
        else
            lines.append(word);
    }
    return lines;
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

QVector<int> leastWidths(const QVector<QStringList> &rows, const QVector<int> &prose)
{
    QVector<int> widths = columnWidths(rows);
    for (const int column : prose) {
        widths[column] = 0;
        for (const QStringList &cells : rows) {
            for (const QString &word : cells.value(column).split(QLatin1Char(' ')))
                widths[column] = std::max(widths[column], displayWidth(word));
        }
    }
    return widths;
}

QVector<int> fitted(QVector<int> widths, const QVector<int> &least, int lineWidth)
{
    int excess =
        std::accumulate(widths.begin(), widths.end(), columnGap * (widths.size() - 1)) - lineWidth;
    for (; excess > 0; --excess) {
        int *widest = nullptr;
        for (int i = 0; i < widths.size(); ++i) {
            if (widths[i] > least[i] && (!widest || widths[i] > *widest))
                widest = &widths[i];
        }
        if (!widest)
            break;
        --*widest;
    }
    return widths;
}

} // namespace tool
