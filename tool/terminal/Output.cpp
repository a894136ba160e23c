// SPDX-License-Identifier: MIT

#include "terminal/Output.h"

#include "common/JsonText.h"
#include "common/Quoting.h"
#include "terminal/Columns.h"
#include "terminal/Pager.h"
#include "terminal/TerminalSize.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTextStream>
#include <QtCore/QtGlobal>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace tool {

namespace {

const QString rowStyle = QStringLiteral("1");
const QString headingStyle = QStringLiteral("1;36");

void write(FILE *file, const QString &text)
{
    QTextStream stream(file);
    stream.setCodec("UTF-8");
    stream << text;
}

QStringList printableCells(const QStringList &cells)
{
    QStringList result;
    for (const QString &cell : cells)
        result.append(printable(cell));
    return result;
}

QVector<QStringList> entries(const QJsonObject &object)
{
    QVector<QStringList> rows;
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        rows.append({entry.key(), toText(entry.value())});
    return rows;
}

bool isListOfObjects(const QJsonArray &array)
{
    return !array.isEmpty() &&
           std::all_of(array.begin(), array.end(),
                       [](const QJsonValue &element) { return element.isObject(); });
}

/// The keys that occur in any of the objects.
QStringList keysOf(const QJsonArray &objects)
{
    QStringList keys;
    for (const QJsonValue &object : objects)
        keys += object.toObject().keys();
    keys.removeDuplicates();
    return keys;
}

QVector<QStringList> cells(const QJsonArray &objects, const QStringList &keys)
{
    QVector<QStringList> rows;
    for (const QJsonValue &element : objects) {
        const QJsonObject object = element.toObject();
        QStringList row;
        for (const QString &key : keys)
            row.append(object.contains(key) ? toText(object.value(key)) : QString());
        rows.append(row);
    }
    return rows;
}

QByteArray document(const QJsonValue &value, QJsonDocument::JsonFormat format)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    return document.toJson(format).trimmed();
}

} // namespace

Output::Output(const OutputOptions &options)
    : m_options(options),
      m_isTerminal(isatty(STDOUT_FILENO)),
      m_lineWidth(m_isTerminal ? terminalSize().ws_col : 0)
{
    m_options.color = options.color && m_isTerminal && !options.terse &&
                      qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
}

bool Output::isWritten() const
{
    return std::fflush(stdout) == 0 && !std::ferror(stdout);
}

bool Output::showsProgress() const
{
    return isatty(STDERR_FILENO) && !m_options.quiet;
}

void Output::beginPaging()
{
    if (m_options.pager && !m_options.json && isPagingPossible())
        m_collected = std::make_shared<QString>();
}

void Output::endPaging()
{
    const std::shared_ptr<QString> text = std::exchange(m_collected, nullptr);
    if (text && !(isHigherThanTerminal(*text) && showInPager(*text)))
        print(*text);
}

void Output::print(const QString &text) const
{
    if (m_collected)
        *m_collected += text;
    else
        write(stdout, text);
}

void Output::printLine(const QString &line) const
{
    print(line + QLatin1Char('\n'));
}

QString Output::styled(const QString &text, const QString &style) const
{
    if (!m_options.color || style.isEmpty())
        return text;
    return QStringLiteral("\x1b[%1m%2\x1b[0m").arg(style, text);
}

void Output::text(const QString &text) const
{
    print(text);
}

void Output::line(const QString &text) const
{
    if (m_options.terse) {
        terseLine({text});
        return;
    }
    printLine(m_isTerminal ? printable(text) : text);
}

void Output::heading(const QString &text)
{
    if (m_options.terse)
        m_heading = QStringList{text};
    else
        printLine(styled(printable(text), headingStyle));
}

void Output::row(const QStringList &cells, const QVector<int> &widths, const QVector<int> &prose,
                 const QString &firstStyle) const
{
    QVector<QStringList> lines;
    for (int i = 0; i < cells.size(); ++i) {
        const QStringList parts =
            prose.contains(i) ? wrapped(cells[i], widths[i]) : QStringList(cells[i]);
        for (int line = 0; line < parts.size(); ++line) {
            while (lines.size() <= line)
                lines.append(QVector<QString>(cells.size()).toList());
            lines[line][i] = parts[line];
        }
    }
    for (const QStringList &line : qAsConst(lines))
        rowLine(line, widths, firstStyle);
}

void Output::terseLine(const QStringList &cells) const
{
    QStringList fields;
    for (const QString &cell : cells)
        fields.append(printable(cell).replace(QLatin1Char(':'), QStringLiteral("\\:")));
    printLine(fields.join(QLatin1Char(':')));
}

void Output::rowLine(const QStringList &cells, const QVector<int> &widths,
                     const QString &firstStyle) const
{
    // Spaces behind the last text would take room on a terminal.
    int last = cells.size() - 1;
    while (m_isTerminal && last > 0 && cells[last].isEmpty())
        --last;
    QString line;
    for (int i = 0; i <= last; ++i) {
        const bool isLast = i == last;
        line += styled(cells[i], i == 0 ? firstStyle : QString());
        if (!isLast && m_isTerminal)
            line += padded(QString(), widths[i] - displayWidth(cells[i]) + columnGap);
        else if (!isLast)
            line += QLatin1Char('\t');
    }
    printLine(line);
}

void Output::table(const QVector<QStringList> &rows, const QStringList &header,
                   const QVector<int> &prose) const
{
    if (m_options.terse) {
        for (const QStringList &cells : rows)
            terseLine(m_heading + cells);
        return;
    }
    QVector<QStringList> shown;
    for (const QStringList &cells : QVector<QStringList>{header} + rows)
        shown.append(printableCells(cells));
    const QVector<int> breaking = m_lineWidth > 0 ? prose : QVector<int>();
    QVector<int> widths = columnWidths(shown);
    if (m_lineWidth > 0)
        widths = fitted(widths, leastWidths(shown, breaking), m_lineWidth);
    if (!header.isEmpty())
        row(shown.first(), widths, breaking, headingStyle);
    for (int i = 1; i < shown.size(); ++i)
        row(shown[i], widths, breaking, rowStyle);
}

void Output::value(const QJsonValue &value) const
{
    if (value.isObject()) {
        table(entries(value.toObject()));
    } else if (isListOfObjects(value.toArray())) {
        const QStringList keys = keysOf(value.toArray());
        table(cells(value.toArray(), keys), keys);
    } else {
        line(toText(value));
    }
}

void Output::json(const QJsonValue &value)
{
    m_hasDocument = true;
    printLine(QString::fromUtf8(
        document(value, m_options.compactJson ? QJsonDocument::Compact : QJsonDocument::Indented)));
}

void Output::jsonLine(const QJsonValue &value)
{
    m_isStream = true;
    printLine(QString::fromUtf8(document(value, QJsonDocument::Compact)));
}

void Output::note(const QString &text) const
{
    if (!m_options.quiet)
        write(stderr, QStringLiteral("embosserctl: ") + printable(text) + QLatin1Char('\n'));
}

void Output::error(const QString &text) const
{
    write(stderr, QStringLiteral("embosserctl: ") + printable(text) + QLatin1Char('\n'));
}

void Output::failure(const Failure &failure)
{
    const QJsonObject document{
        {QStringLiteral("error"), errorToJson(failure.status(), failure.message())}};
    if (m_isStream)
        jsonLine(document);
    else if (isJson() && !m_hasDocument)
        json(document);
    error(failure.message());
}

} // namespace tool
