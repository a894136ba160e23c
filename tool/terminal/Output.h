// SPDX-License-Identifier: MIT

#ifndef TOOL_TERMINAL_OUTPUT_H
#define TOOL_TERMINAL_OUTPUT_H

#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <memory>

namespace tool {

class Failure;

/// What the user wants of the output.
struct OutputOptions
{
    bool json = false;
    bool compactJson = false;
    bool terse = false;
    bool quiet = false;
    bool color = true;
    bool pager = true;
};

/// Results on standard output, everything else on standard error.
///
/// On a terminal, columns are aligned and headings coloured; elsewhere columns are separated by
/// tabs. Control characters and backslashes are shown as escapes in columns, and in anything on a
/// terminal.
///
/// Terse output is the same on a terminal: a line for each row, with a colon between its cells, in
/// which colons are escaped as well. A heading is the first cell of the rows that follow it.
class Output
{
public:
    explicit Output(const OutputOptions &options);

    bool isJson() const { return m_options.json; }

    /// Whether all that was meant for standard output has got there.
    bool isWritten() const;

    /// Whether a progress bar is of use.
    bool showsProgress() const;

    /// From here on, results are collected, if there is somebody who can page through them.
    void beginPaging();

    /// Prints what has been collected, by the user's pager if it is higher than the terminal.
    void endPaging();

    /// Text that has its own lines.
    void text(const QString &text) const;
    void line(const QString &text) const;
    void heading(const QString &text);
    /// The columns of prose are broken into lines where a terminal has no room for them.
    void table(const QVector<QStringList> &rows, const QStringList &header = {},
               const QVector<int> &prose = {}) const;
    /// An object as rows, an array of objects as a table, anything else as a line.
    void value(const QJsonValue &value) const;
    void json(const QJsonValue &value);
    /// JSON without line breaks, for a stream of values.
    void jsonLine(const QJsonValue &value);

    /// Something good to know, unless the user wants quiet.
    void note(const QString &text) const;
    void error(const QString &text) const;

    /// Why a command ends: on standard error, and as JSON too, unless that has got its document.
    void failure(const Failure &failure);

private:
    void print(const QString &text) const;
    void printLine(const QString &line) const;
    QString styled(const QString &text, const QString &style) const;
    void row(const QStringList &cells, const QVector<int> &widths, const QVector<int> &prose,
             const QString &firstStyle) const;
    void terseLine(const QStringList &cells) const;
    void rowLine(const QStringList &cells, const QVector<int> &widths,
                 const QString &firstStyle) const;

    OutputOptions m_options;
    bool m_isTerminal;
    /// Of terse output.
    QStringList m_heading;
    /// Of the terminal; 0 if it is not known.
    int m_lineWidth = 0;
    /// The results that are to be paged; null while they are printed at once.
    std::shared_ptr<QString> m_collected;
    bool m_hasDocument = false;
    bool m_isStream = false;
};

} // namespace tool

#endif
