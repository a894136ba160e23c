// SPDX-License-Identifier: MIT

#include "methods/GeometryQueries.h"

#include "methods/Call.h"
#include "model/Page.h"
#include "model/Profile.h"
#include "state/Configuration.h"
#include "state/Refusal.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <cmath>

namespace simulator {

namespace {

template<typename Entry>
Entry find(const QMap<QString, Entry> &entries, const char *kind, const QString &name)
{
    const auto entry = entries.constFind(name);
    if (entry == entries.cend())
        throw unknownName(QStringLiteral("there is no %1 \"%2\"; there are: %3")
                              .arg(QString::fromLatin1(kind), name,
                                   QStringList(entries.keys()).join(QStringLiteral(", "))));
    return *entry;
}

QVariantMap findPaper(const Configuration &configuration, const QString &name)
{
    return find(configuration.profile().papers(), "paper", name);
}

Cell findCell(const Configuration &configuration, const QString &name)
{
    return find(configuration.profile().cells(), "braille distance", name);
}

double findSpacing(const Configuration &configuration, const QString &name)
{
    return find(configuration.profile().lineSpacings(), "line spacing", name);
}

int findRows(const QString &cellDots)
{
    const int rows = rowsOf(cellDots);
    if (rows == 0)
        throw unknownName(
            QStringLiteral("there is no cell \"%1\"; there are: EightDot, SixDot").arg(cellDots));
    return rows;
}

/// The distance from one row of dots of the front to that of the back which follows it.
double interlineBackRowOffset(const Configuration &configuration, const Call &call)
{
    const Cell cell = findCell(configuration, call.text(0));
    const double spacing = findSpacing(configuration, call.text(1));
    return (cell.interline ? cell.lineToLine : cell.verticalDotToDot) * spacing / 2;
}

/// The distance from a line of braille to the next.
///
///   d1  distance of two dots, one below the other      s5  paper
///   i2  rows of dots in a cell                         s6  braille distance of the cell
///   d3  distance of two cells, side by side            s7  dots per cell
///   d4  distance of two lines of three rows            s8  line spacing
///
/// A number that is 0 is taken from the cell, a name that is empty from the settings of the master
/// collection.
double lineToLine(const Configuration &configuration, const Call &call)
{
    const auto given = [&](int position, const char *setting) {
        const QString name = call.text(position);
        return name.isEmpty() ? configuration.value(QString::fromLatin1(setting)).toString() : name;
    };
    const double dotToDot = call.argument(0).toDouble();
    const int rows = call.number(1);
    const double cellToCell = call.argument(2).toDouble();
    const double lines = call.argument(3).toDouble();
    if (!(dotToDot >= 0) || rows < 0 || !(cellToCell >= 0) || !(lines >= 0) ||
        !std::isfinite(dotToDot + cellToCell + lines))
        throw invalidArguments(QStringLiteral("getLineToLine: d1, i2, d3 and d4 are finite and not "
                                              "below 0"));

    const QVariantMap paper = findPaper(configuration, given(4, "PaperSize"));
    Cell cell = findCell(configuration, given(5, "BrailleCellSize"));
    const int cellRows = findRows(given(6, "BrailleCellDots"));
    const double spacing = findSpacing(configuration, given(7, "BrailleLineSpacing"));
    if (dotToDot > 0) {
        // The space between the last row of a line and the first of the next stays as it is.
        cell.lineToLine += 2 * (dotToDot - cell.verticalDotToDot);
        cell.verticalDotToDot = dotToDot;
    }
    if (lines > 0)
        cell.lineToLine = lines;
    const double distance = lineDistance(cell, rows > 0 ? rows : cellRows);
    if (distance <= 0)
        throw invalidArguments(
            QStringLiteral("getLineToLine: d4 is too short for the rows that i2 and d1 say"));
    return inFeedSteps(distance * spacing, paper);
}

} // namespace

MethodTable geometryQueries(const Configuration &configuration)
{
    MethodTable methods;

    const QHash<QString, QString> paperProperties{
        {QStringLiteral("getWidthForPaper"), QStringLiteral("width")},
        {QStringLiteral("getHeightForPaper"), QStringLiteral("height")},
        {QStringLiteral("getInchesWidthForPaper"), QStringLiteral("inchesWidth")},
        {QStringLiteral("getInchesHeightForPaper"), QStringLiteral("inchesHeight")},
        {QStringLiteral("getStepLengthForPaper"), QStringLiteral("stepLength")},
        {QStringLiteral("getStepLengthFractForPaper"), QStringLiteral("stepLengthFraction")},
        {QStringLiteral("getFormatOrientationForPaper"), QStringLiteral("formatOrientation")},
        {QStringLiteral("getLoadOrientationForPaper"), QStringLiteral("loadOrientation")},
        {QStringLiteral("getModelMaskForPaper"), QStringLiteral("modelMask")},
        {QStringLiteral("getFeedTypeForPaper"), QStringLiteral("feedType")},
        {QStringLiteral("getSizeUnitForPaper"), QStringLiteral("sizeUnit")},
        {QStringLiteral("getPrintHeadOffsetForPaper"), QStringLiteral("printHeadOffset")},
    };
    for (auto property = paperProperties.begin(); property != paperProperties.end(); ++property) {
        methods.insert(property.key(), [&configuration, name = *property](const Call &call) {
            return findPaper(configuration, call.text(0)).value(name);
        });
    }

    const QHash<QString, double Cell::*> distances{
        {QStringLiteral("getCellToCell"), &Cell::cellToCell},
        {QStringLiteral("getHorizontalDotToDot"), &Cell::horizontalDotToDot},
        {QStringLiteral("getVerticalDotToDot"), &Cell::verticalDotToDot},
    };
    for (auto distance = distances.begin(); distance != distances.end(); ++distance) {
        methods.insert(distance.key(), [&configuration, member = *distance](const Call &call) {
            return findCell(configuration, call.text(0)).*member;
        });
    }
    methods.insert(QStringLiteral("getIsInterline"), [&configuration](const Call &call) {
        return findCell(configuration, call.text(0)).interline;
    });
    methods.insert(QStringLiteral("getInterlineBackRowOffset"), [&configuration](const Call &call) {
        return interlineBackRowOffset(configuration, call);
    });
    methods.insert(QStringLiteral("getLineToLine"),
                   [&configuration](const Call &call) { return lineToLine(configuration, call); });

    // The sizes that a paper can have are those that can be set for the current one.
    const Parameter &width = configuration.parameter(QStringLiteral("PaperWidth"));
    const Parameter &length = configuration.parameter(QStringLiteral("PaperLength"));
    const QHash<QString, double> bounds{{QStringLiteral("getMinWidth"), width.min.value_or(0)},
                                        {QStringLiteral("getMaxWidth"), width.max.value_or(0)},
                                        {QStringLiteral("getMinHeight"), length.min.value_or(0)},
                                        {QStringLiteral("getMaxHeight"), length.max.value_or(0)}};
    for (auto bound = bounds.begin(); bound != bounds.end(); ++bound)
        methods.insert(bound.key(), [value = *bound](const Call &) { return value; });
    return methods;
}

} // namespace simulator
