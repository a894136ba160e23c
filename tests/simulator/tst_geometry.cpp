// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtTest/QTest>

class TestGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_simulator.start(); }

    void aPaperAgreesWithItself_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<int>("inchesWidth");
        QTest::addColumn<int>("inchesHeight");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<int>("orientation");
        QTest::addColumn<int>("step");
        QTest::addColumn<int>("stepFraction");
        QTest::newRow("A4") << 210.0 << 297.0 << 8 << 12 << "mm" << 0 << 2 << 50;
        QTest::newRow("A4Landscape") << 297.0 << 210.0 << 12 << 8 << "mm" << 1 << 2 << 50;
        QTest::newRow("A3") << 297.0 << 420.0 << 12 << 17 << "mm" << 0 << 2 << 50;
        QTest::newRow("110x120") << 279.4 << 304.8 << 11 << 12 << "inch" << 0 << 2 << 54;
        QTest::newRow("115x110") << 292.1 << 279.4 << 12 << 11 << "inch" << 1 << 2 << 54;
        QTest::newRow("Tabloid") << 279.4 << 431.8 << 11 << 17 << "inch" << 0 << 2 << 54;
    }

    void aPaperAgreesWithItself()
    {
        QFETCH(double, width);
        QFETCH(double, height);
        QFETCH(int, inchesWidth);
        QFETCH(int, inchesHeight);
        QFETCH(QString, unit);
        QFETCH(int, orientation);
        QFETCH(int, step);
        QFETCH(int, stepFraction);
        const QVariantList paper{QString::fromLatin1(QTest::currentDataTag())};
        QCOMPARE(m_simulator.value("getWidthForPaper", paper), QVariant(width));
        QCOMPARE(m_simulator.value("getHeightForPaper", paper), QVariant(height));
        QCOMPARE(m_simulator.value("getInchesWidthForPaper", paper), QVariant(inchesWidth));
        QCOMPARE(m_simulator.value("getInchesHeightForPaper", paper), QVariant(inchesHeight));
        QCOMPARE(inchesWidth, qRound(width / 25.4));
        QCOMPARE(m_simulator.value("getSizeUnitForPaper", paper), QVariant(unit));
        QCOMPARE(m_simulator.value("getFormatOrientationForPaper", paper), QVariant(orientation));
        QCOMPARE(m_simulator.value("getStepLengthForPaper", paper), QVariant(step));
        QCOMPARE(m_simulator.value("getStepLengthFractForPaper", paper), QVariant(stepFraction));
    }

    void theCurrentPaperIsTheOneThatIsSet()
    {
        const QVariantList here{QStringLiteral("a collection")};
        const QMap<QString, QString> byPaper{
            {"getPaperWidth", "getWidthForPaper"},
            {"getPaperLength", "getHeightForPaper"},
            {"getStepLength", "getStepLengthForPaper"},
            {"getStepLengthFraction", "getStepLengthFractForPaper"},
            {"getPrintHeadOffset", "getPrintHeadOffsetForPaper"},
            {"getFormatOrientation", "getFormatOrientationForPaper"}};
        for (const char *paper : {"A4", "115x110"}) {
            const QString name = QString::fromLatin1(paper);
            QCOMPARE(m_simulator.error("setPaperSize", QVariantList{name} + here), QString());
            for (auto getter = byPaper.begin(); getter != byPaper.end(); ++getter)
                QCOMPARE(m_simulator.value(getter.key(), here),
                         m_simulator.value(getter.value(), {name}));
            // A size of one's own lasts until the next paper.
            m_simulator.call("setPaperWidth", QVariantList{123.5} + here);
            QCOMPARE(m_simulator.value("getPaperWidth", here), QVariant(123.5));
        }
    }

    void theBoundsAreThoseOfTheCurrentPaper()
    {
        const QVariantList here{QStringLiteral("bounds")};
        const auto accepts = [&](const char *setter, double value) {
            return m_simulator.error(setter, QVariantList{value} + here).isEmpty();
        };
        const auto expectBounds = [&](const char *setter, const char *min, const char *max) {
            const double least = m_simulator.value(min).toDouble();
            const double most = m_simulator.value(max).toDouble();
            QVERIFY(accepts(setter, least) && !accepts(setter, least - 0.1));
            QVERIFY(accepts(setter, most) && !accepts(setter, most + 0.1));
        };
        expectBounds("setPaperWidth", "getMinWidth", "getMaxWidth");
        expectBounds("setPaperLength", "getMinHeight", "getMaxHeight");
    }

    void aBrailleDistanceIsThatOfItsName()
    {
        const QVariantList text{QStringLiteral("Text_2p5")};
        QCOMPARE(m_simulator.value("getHorizontalDotToDot", text), QVariant(2.5));
        QCOMPARE(m_simulator.value("getVerticalDotToDot", text), QVariant(2.5));
        QCOMPARE(m_simulator.value("getCellToCell", text), QVariant(6.0));
        QCOMPARE(m_simulator.value("getIsInterline", text), QVariant(false));
        const QVariantList graphics{QStringLiteral("Graph_1p6")};
        QCOMPARE(m_simulator.value("getVerticalDotToDot", graphics), QVariant(1.6));
        QCOMPARE(m_simulator.value("getIsInterline", graphics), QVariant(true));
        const QString single = QStringLiteral("Single");
        const QString twice = QStringLiteral("Double");
        QCOMPARE(m_simulator.value("getInterlineBackRowOffset", text + QVariantList{single}),
                 QVariant(1.25));
        QCOMPARE(m_simulator.value("getInterlineBackRowOffset", text + QVariantList{twice}),
                 QVariant(2.5));
        QCOMPARE(m_simulator.value("getInterlineBackRowOffset", graphics + QVariantList{single}),
                 QVariant(2.4));
    }

    void theLineDistanceReactsToEachInput_data()
    {
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<double>("distance");
        const auto row = [](const char *name, double d1, int i2, double d3, double d4,
                            const char *s5, const char *s6, const char *s7, const char *s8,
                            double distance) {
            QTest::newRow(name) << QVariantList{d1,
                                                i2,
                                                d3,
                                                d4,
                                                QString::fromLatin1(s5),
                                                QString::fromLatin1(s6),
                                                QString::fromLatin1(s7),
                                                QString::fromLatin1(s8)}
                                << distance;
        };
        row("of the cell", 0, 0, 0, 0, "A4", "Text_2p5", "SixDot", "Single", 10.0);
        row("dot distance", 3.75, 0, 0, 0, "A4", "Text_2p5", "SixDot", "Single", 12.5);
        row("rows", 0, 5, 0, 0, "A4", "Text_2p5", "SixDot", "Single", 15.0);
        row("cell distance", 0, 0, 7.5, 0, "A4", "Text_2p5", "SixDot", "Single", 10.0);
        row("line distance", 0, 0, 0, 15.0, "A4", "Text_2p5", "SixDot", "Single", 15.0);
        row("line distance of eight dots", 0, 0, 0, 12.5, "A4", "Text_2p5", "EightDot", "Single",
            15.0);
        row("paper", 0, 0, 0, 0, "110x120", "Text_2p5", "SixDot", "Single", 10.16);
        row("cell", 0, 0, 0, 0, "A4", "Graph_2p5", "SixDot", "Single", 7.5);
        row("eight dots", 0, 0, 0, 0, "A4", "Text_2p5", "EightDot", "Single", 12.5);
        row("spacing", 0, 0, 0, 0, "A4", "Text_2p5", "SixDot", "Double", 20.0);
        row("rounded up to whole steps", 0, 0, 0, 10.01, "A4", "Text_2p5", "SixDot", "Single",
            12.5);
        // Standard braille.
        row("all numbers", 2.5, 3, 6.0, 10.0, "A4", "Text_2p5", "SixDot", "Single", 10.0);
        row("all numbers, whatever the cell", 2.5, 3, 6.0, 10.0, "A4", "Text_3p2", "SixDot",
            "Single", 10.0);
        row("rows before dots", 2.5, 4, 6.0, 10.0, "A4", "Text_2p5", "SixDot", "Single", 12.5);
        // The current settings: 110x120, Text_2p5, SixDot and Single.
        row("nothing", 0, 0, 0, 0, "", "", "", "", 10.16);
    }

    void theLineDistanceReactsToEachInput()
    {
        QFETCH(QVariantList, arguments);
        QFETCH(double, distance);
        QCOMPARE(m_simulator.value("getLineToLine", arguments).toDouble(), distance);
    }

    void whatIsUnknownIsAnError_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("said");
        const QString no = QStringLiteral("no");
        QTest::newRow("paper") << "getWidthForPaper" << QVariantList{no}
                               << "there is no paper \"no\"; there are: 110x120, 115x110, ";
        QTest::newRow("cell") << "getCellToCell" << QVariantList{no}
                              << "there is no braille distance \"no\"; there are: Graph_1p6, ";
        QTest::newRow("spacing") << "getInterlineBackRowOffset"
                                 << QVariantList{QStringLiteral("Text_2p5"), no}
                                 << "there is no line spacing \"no\"; there are: Double, ";
        QTest::newRow("cell of a line")
            << "getLineToLine"
            << QVariantList{0.0, 0, 0.0, 0.0, QString(), QString(), no, QString()}
            << "there is no cell \"no\"; there are: EightDot, SixDot";
        QTest::newRow("negative") << "getLineToLine"
                                  << QVariantList{-1.0,      0,         0.0,       0.0,
                                                  QString(), QString(), QString(), QString()}
                                  << "getLineToLine: d1, i2, d3 and d4 are finite and not below 0";
        QTest::newRow("negative distance of cells")
            << "getLineToLine"
            << QVariantList{0.0, 0, -1.0, 0.0, QString(), QString(), QString(), QString()}
            << "getLineToLine: d1, i2, d3 and d4 are finite and not below 0";
        const QString text = QStringLiteral("Text_2p5");
        QTest::newRow("a line on the one before")
            << "getLineToLine"
            << QVariantList{0.0, 2, 0.0, 2.5, QString(), text, QString(), QString()}
            << "getLineToLine: d4 is too short for the rows that i2 and d1 say";
        QTest::newRow("a line above the one before")
            << "getLineToLine"
            << QVariantList{0.0, 2, 0.0, 1.25, QString(), text, QString(), QString()}
            << "getLineToLine: d4 is too short for the rows that i2 and d1 say";
        QTest::newRow("infinite") << "getLineToLine"
                                  << QVariantList{0.0,       0,         0.0,       qInf(),
                                                  QString(), QString(), QString(), QString()}
                                  << "getLineToLine: d1, i2, d3 and d4 are finite and not below 0";
        QTest::newRow("not a number")
            << "getLineToLine"
            << QVariantList{qQNaN(), 0, 0.0, 0.0, QString(), QString(), QString(), QString()}
            << "getLineToLine: d1, i2, d3 and d4 are finite and not below 0";
    }

    void whatIsUnknownIsAnError()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, said);
        const QString error = m_simulator.error(method, arguments);
        QVERIFY2(error.contains(said), qPrintable(error));
    }

private:
    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
};

QTEST_GUILESS_MAIN(TestGeometry)
#include "tst_geometry.moc"
