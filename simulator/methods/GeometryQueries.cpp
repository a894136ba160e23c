// SPDX-License-Identifier: MIT

#include "methods/GeometryQueries.h"

#include "methods/Call.h"
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
    const QMap<QString, int> rows{{QStringLiteral("SixDot"), 3}, {QStringLiteral("EightDot"), 4}};
    return find(rows, "cell", cellDots);
}

/// The distance from one row of dots of the front to that of the back which follows it.
double interlineBackRowOffset(const Configuration &configuration, const Call &call)
{
    const Cell cell = findCell(configuration, call.text("first"));
    const double spacing = findSpacing(configuration, call.text("second"));
    return (cell.interline ? cell.lineToLine : cell.verticalDotToDot) * spacing / 2;
}

/// The distance from a line of braille to the next.
///
///   d1  distance of two dots, one below the other      s5  paper
///   i2  rows of dots in a cell                         s6  braille distance of the cell
///   d3  gap between the last row and the next line     s7  dots per cell
///   d4  adjustment, added at the end                   s8  line spacing
///
/// A number that is 0 is taken from the cell, a name that is empty from the settings of the master
/// collection. The paper feed makes whole steps: the distance is rounded up to steps of the paper.
double lineToLine(const Configuration &configuration, const Call &call)
{
    const auto given = [&](const char *argument, const char *setting) {
        const QString name = call.text(argument);
        return name.isEmpty() ? configuration.value(QString::fromLatin1(setting)).toString() : name;
    };
    const double dotToDot = call.argument("d1").toDouble();
    const int rows = call.number("i2");
    const double gap = call.argument("d3").toDouble();
    const double adjustment = call.argument("d4").toDouble();
    if (!(dotToDot >= 0) || rows < 0 || !(gap >= 0) || !std::isfinite(dotToDot + gap + adjustment))
        throw invalidArguments(QStringLiteral("getLineToLine: d1, i2 and d3 are not below 0, and "
                                              "d1, d3 and d4 are finite"));

    const QVariantMap paper = findPaper(configuration, given("s5", "PaperSize"));
    const Cell cell = findCell(configuration, given("s6", "BrailleCellSize"));
    const int cellRows = findRows(given("s7", "BrailleCellDots"));
    const double spacing = findSpacing(configuration, given("s8", "BrailleLineSpacing"));

    const double dots = dotToDot > 0 ? dotToDot : cell.verticalDotToDot;
    // The line distance of a cell is that of three rows.
    const double space = gap > 0 ? gap : cell.lineToLine - 2 * cell.verticalDotToDot;
    const double wanted =
        (((rows > 0 ? rows : cellRows) - 1) * dots + space) * spacing + adjustment;
    const double step = paper.value(QStringLiteral("stepLength")).toInt() +
                        paper.value(QStringLiteral("stepLengthFraction")).toInt() / 100.0;
    // A whole number of steps must not become one more by a rounding error.
    const double tolerance = 1e-9;
    return std::ceil(wanted / step - tolerance) * step;
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
            return findPaper(configuration, call.text("paper")).value(name);
        });
    }

    const QHash<QString, double Cell::*> distances{
        {QStringLiteral("getCellToCell"), &Cell::cellToCell},
        {QStringLiteral("getHorizontalDotToDot"), &Cell::horizontalDotToDot},
        {QStringLiteral("getVerticalDotToDot"), &Cell::verticalDotToDot},
    };
    for (auto distance = distances.begin(); distance != distances.end(); ++distance) {
        methods.insert(distance.key(), [&configuration, member = *distance](const Call &call) {
            return findCell(configuration, call.text("name")).*member;
        });
    }
    methods.insert(QStringLiteral("getIsInterline"), [&configuration](const Call &call) {
        return findCell(configuration, call.text("name")).interline;
    });
    methods.insert(QStringLiteral("getInterlineBackRowOffset"), [&configuration](const Call &call) {
        return interlineBackRowOffset(configuration, call);
    });
    methods.insert(QStringLiteral("getLineToLine"),
                   [&configuration](const Call &call) { return lineToLine(configuration, call); });

    // The sizes that a paper can have are those that can be set for the current one.
    const Parameter &width = configuration.parameter(QStringLiteral("PaperWidth"));
    const Parameter &length = configuration.parameter(QStringLiteral("PaperLength"));
    const QHash<QString, double> bounds{{QStringLiteral("getMinWidth"), *width.min},
                                        {QStringLiteral("getMaxWidth"), *width.max},
                                        {QStringLiteral("getMinHeight"), *length.min},
                                        {QStringLiteral("getMaxHeight"), *length.max}};
    for (auto bound = bounds.begin(); bound != bounds.end(); ++bound)
        methods.insert(bound.key(), [value = *bound](const Call &) { return value; });
    return methods;
}

} // namespace simulator
