// SPDX-License-Identifier: MIT

#ifndef TOOL_OUTPUT_H
#define TOOL_OUTPUT_H

#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/// What the user wants of the output.
struct OutputOptions
{
    bool json = false;
    bool quiet = false;
    bool color = true;
};

/// Results on standard output, everything else on standard error.
///
/// On a terminal, columns are aligned, headings coloured, and control characters shown as escapes;
/// elsewhere columns are separated by tabs.
class Output
{
public:
    explicit Output(const OutputOptions &options);

    bool isJson() const { return m_options.json; }

    /// Whether a progress bar is of use.
    bool showsProgress() const;

    void line(const QString &text);
    void heading(const QString &text);
    void table(const QVector<QStringList> &rows, const QStringList &header = {});
    /// An object as rows, an array of objects as a table, anything else as a line.
    void value(const QJsonValue &value);
    void json(const QJsonValue &value);
    /// JSON without line breaks, for a stream of values.
    void jsonLine(const QJsonValue &value);

    /// Something good to know, unless the user wants quiet.
    void note(const QString &text);
    void error(const QString &text);

private:
    QString styled(const QString &text, const QString &style) const;
    void row(const QStringList &cells, const QVector<int> &widths, const QString &firstStyle);

    OutputOptions m_options;
    bool m_isTerminal;
};

#endif
