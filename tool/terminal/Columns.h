// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_COLUMNS_H
#define TOOL_TERMINAL_COLUMNS_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace tool {

/// How many columns of a terminal the text takes: two for a wide character, none for a mark that
/// combines with the one before it.
int displayWidth(const QString &text);

/// The text with spaces after it, so that it takes so many columns.
QString padded(const QString &text, int width);

/// The text in so many columns, with an ellipsis for what has no room.
QString elided(const QString &text, int width);

/// The text in lines that take no more columns, broken at spaces; a word that is longer stays
/// whole.
QStringList wrapped(const QString &text, int width);

/// For each column of a table the width of its widest cell.
QVector<int> columnWidths(const QVector<QStringList> &rows);

/// The same, but for columns of prose the width of the longest word.
QVector<int> leastWidths(const QVector<QStringList> &rows, const QVector<int> &prose);

/// The widths with which all columns have room in a line, if they have: the widest gives way first,
/// none beyond its least width.
QVector<int> fitted(QVector<int> widths, const QVector<int> &least, int lineWidth);

/// Between the columns of a table.
constexpr int columnGap = 2;

} // namespace tool

#endif
