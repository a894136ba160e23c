// SPDX-License-Identifier: MIT

#ifndef SUPPORT_MANUALPAGE_H
#define SUPPORT_MANUALPAGE_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace support {

/// A page of the first section of the manual, in roff.
///
/// Its version is the application's. Its date is that of SOURCE_DATE_EPOCH, by which builds are
/// reproducible, or else today's.
class ManualPage
{
public:
    ManualPage(const QString &program, const QString &summary, const QString &synopsis);

    void addSection(const QString &title);
    void addSubsection(const QString &title);
    void addCommandLine(const QString &synopsis);
    void addParagraphs(const QStringList &texts);

    /// Rows of a term and its explanation.
    void addDefinitions(const QVector<QStringList> &rows);

    /// Other pages, all of the first section.
    void addSeeAlso(const QStringList &programs);

    QString text() const { return m_text; }

private:
    QString m_text;
};

} // namespace support

#endif
