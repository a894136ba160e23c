// SPDX-License-Identifier: MIT

#include "model/Page.h"

#include "model/Profile.h"

#include <cmath>

namespace simulator {

namespace {

// A whole number must not become another one by a rounding error.
const double tolerance = 1e-9;

const QString printWidth = QStringLiteral("printWidth");
const QString printLength = QStringLiteral("printLength");
const QString charactersPerLine = QStringLiteral("charactersPerLine");
const QString linesPerPage = QStringLiteral("linesPerPage");

const QString widthOfPaper = QStringLiteral("PaperWidth");
const QString lengthOfPaper = QStringLiteral("PaperLength");
const QString widthOfPrint = QStringLiteral("PrintWidth");
const QString lengthOfPrint = QStringLiteral("PrintLength");
const QString cellSize = QStringLiteral("BrailleCellSize");
const QString cellDots = QStringLiteral("BrailleCellDots");
const QString lineSpacing = QStringLiteral("BrailleLineSpacing");

double howManyFit(double each, double length)
{
    // What a captured service does not tell is 0.
    return each > 0 ? std::floor(length / each + tolerance) : 0;
}

} // namespace

bool isPageProperty(const QString &property)
{
    return QStringList{printWidth, printLength, charactersPerLine, linesPerPage}.contains(property);
}

bool isPaperProperty(const QString &property)
{
    static const QStringList properties{
        QStringLiteral("width"),          QStringLiteral("height"),
        QStringLiteral("inchesWidth"),    QStringLiteral("inchesHeight"),
        QStringLiteral("sizeUnit"),       QStringLiteral("unit"),
        QStringLiteral("stepLength"),     QStringLiteral("stepLengthFraction"),
        QStringLiteral("feedType"),       QStringLiteral("printHeadOffset"),
        QStringLiteral("modelMask"),      QStringLiteral("formatOrientation"),
        QStringLiteral("loadOrientation")};
    return properties.contains(property);
}

QStringList sourcesOf(const QString &property)
{
    if (property == printWidth)
        return {widthOfPaper};
    if (property == printLength)
        return {lengthOfPaper};
    if (property == charactersPerLine)
        return {widthOfPrint, cellSize};
    if (property == linesPerPage)
        return {lengthOfPrint, cellSize, cellDots, lineSpacing};
    return {Profile::currentPaper()};
}

QVariant pageProperty(const Profile &profile, const QString &property, const ValueOf &valueOf)
{
    if (property == printWidth)
        return valueOf(widthOfPaper).toDouble() - profile.unprintableWidth();
    if (property == printLength)
        return valueOf(lengthOfPaper).toDouble() - profile.unprintableLength();
    const QVariantMap paper = profile.papers().value(valueOf(Profile::currentPaper()).toString());
    if (!isPageProperty(property))
        return paper.value(property);
    const Cell cell = profile.cells().value(valueOf(cellSize).toString());
    if (property == charactersPerLine)
        return howManyFit(cell.cellToCell, valueOf(widthOfPrint).toDouble());
    const double spacing = profile.lineSpacings().value(valueOf(lineSpacing).toString());
    const double wanted = lineDistance(cell, rowsOf(valueOf(cellDots).toString())) * spacing;
    return howManyFit(inFeedSteps(wanted, paper), valueOf(lengthOfPrint).toDouble());
}

int rowsOf(const QString &dots)
{
    static const QMap<QString, int> rows{{QStringLiteral("SixDot"), 3},
                                         {QStringLiteral("EightDot"), 4}};
    return rows.value(dots);
}

double lineDistance(const Cell &cell, int rows)
{
    const int rowsOfLineDistance = 3;
    return cell.lineToLine + (rows - rowsOfLineDistance) * cell.verticalDotToDot;
}

double inFeedSteps(double wanted, const QVariantMap &paper)
{
    const double hundredths = 100;
    const double step = paper.value(QStringLiteral("stepLength")).toInt() +
                        paper.value(QStringLiteral("stepLengthFraction")).toInt() / hundredths;
    return step > 0 ? std::ceil(wanted / step - tolerance) * step : wanted;
}

} // namespace simulator
