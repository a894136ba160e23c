// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_NAMESOURCE_H
#define TOOL_LIBRARY_NAMESOURCE_H

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace tool {

/// Where the service tells the names that some of its queries take.
struct NameSource
{
    QStringList lists;    ///< the value lists whose keys are such names
    QStringList settings; ///< each of them holds one, of the list at the same place

    static NameSource papers()
    {
        return {{QStringLiteral("Papers")}, {QStringLiteral("PaperSize")}};
    }

    static NameSource cells()
    {
        return {{QStringLiteral("TextDistance"), QStringLiteral("GrafDistance")},
                {QStringLiteral("BrailleCellSize"), QStringLiteral("GraphicCellSize")}};
    }

    static NameSource cellDots()
    {
        return {{QStringLiteral("BrailleCellDots")}, {QStringLiteral("BrailleCellDots")}};
    }

    static NameSource lineSpacings()
    {
        return {{QStringLiteral("LineSpacing")}, {QStringLiteral("BrailleLineSpacing")}};
    }
};

} // namespace tool

#endif
