// SPDX-License-Identifier: MIT

#include "ManualPage.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>

namespace support {

namespace {

/// The text as roff takes it for text, whatever a line begins with.
QString roff(QString text)
{
    text.replace(QLatin1Char('\\'), QStringLiteral("\\e"));
    text.replace(QLatin1Char('-'), QStringLiteral("\\-"));
    text.replace(QLatin1Char('\''), QStringLiteral("\\(aq"));
    return text.startsWith(QLatin1Char('.')) ? QStringLiteral("\\&") + text : text;
}

/// The text in short lines, of which each sentence begins one: so roff sets its spaces right.
QString lines(const QString &text)
{
    const int longest = 80;
    QString all;
    QString line;
    for (const QString &each : text.split(QLatin1Char(' '))) {
        const QString word = roff(each);
        const bool isSentence = line.endsWith(QLatin1Char('.'));
        if (isSentence || (!line.isEmpty() && line.size() + 1 + word.size() > longest)) {
            all += line + QLatin1Char('\n');
            line.clear();
        }
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return all + line + QLatin1Char('\n');
}

QString bold(const QString &text)
{
    return QStringLiteral("\\fB%1\\fR").arg(roff(text));
}

QString date()
{
    bool isGiven = false;
    const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&isGiven);
    const QDateTime time =
        isGiven ? QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC) : QDateTime::currentDateTimeUtc();
    return time.toString(QStringLiteral("yyyy-MM-dd"));
}

} // namespace

ManualPage::ManualPage(const QString &program, const QString &summary, const QString &synopsis)
    : m_text(QStringLiteral(".TH %1 1 \"%2\" \"%3 %4\"\n")
                 .arg(roff(program.toUpper()), date(), roff(program),
                      QCoreApplication::applicationVersion()))
{
    addSection(QStringLiteral("NAME"));
    m_text += QStringLiteral("%1 \\- %2\n").arg(roff(program), roff(summary));
    addSection(QStringLiteral("SYNOPSIS"));
    addCommandLine(synopsis);
}

void ManualPage::addSection(const QString &title)
{
    m_text += QStringLiteral(".SH %1\n").arg(title);
}

void ManualPage::addSubsection(const QString &title)
{
    m_text += QStringLiteral(".SS %1\n").arg(title);
}

void ManualPage::addCommandLine(const QString &synopsis)
{
    m_text += bold(synopsis) + QLatin1Char('\n');
}

void ManualPage::addParagraphs(const QStringList &texts)
{
    for (const QString &paragraph : texts) {
        // A section begins one itself.
        const QString last = m_text.section(QLatin1Char('\n'), -2, -2);
        if (!last.startsWith(QStringLiteral(".SH")))
            m_text += QStringLiteral(".PP\n");
        m_text += lines(paragraph);
    }
}

void ManualPage::addDefinitions(const QVector<QStringList> &rows)
{
    for (const QStringList &row : rows)
        m_text += QStringLiteral(".TP\n%1\n%2").arg(bold(row[0]), lines(row[1]));
}

void ManualPage::addSeeAlso(const QStringList &programs)
{
    addSection(QStringLiteral("SEE ALSO"));
    QStringList pages;
    for (const QString &program : programs)
        pages << bold(program) + QStringLiteral("(1)");
    m_text += pages.join(QStringLiteral(", ")) + QLatin1Char('\n');
}

} // namespace support
