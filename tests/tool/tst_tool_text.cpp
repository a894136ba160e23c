// SPDX-License-Identifier: MIT

#include "common/Failure.h"
#include "common/JsonText.h"
#include "common/Quoting.h"
#include "common/Suggestion.h"
#include "common/Utf8.h"
#include "terminal/Columns.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

using namespace tool;

/// Suggestions, quoting and the width of columns.
class TestToolText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void suggestsWhatWasMeant_data()
    {
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("suggestion");
        const auto row = [](const char *given, const char *suggestion) {
            QTest::newRow(given) << QString::fromUtf8(given) << QString::fromUtf8(suggestion);
        };
        row("AlignLwo", "; did you mean 'AlignLow'?");  // swapped
        row("AlignLo", "; did you mean 'AlignLow'?");   // removed
        row("AlignLoww", "; did you mean 'AlignLow'?"); // added
        row("AlignLaw", "; did you mean 'AlignLow'?");  // replaced
        row("alignlow", "; did you mean 'AlignLow'?");  // another case
        row("AlignLot", "; did you mean 'AlignLow'?");  // the nearest, not those further away
        row("Tba1", "; did you mean 'Tab1'?");          // a swap is one slip, not two
        row("AlignXYZ", ""); // as far from all as three of eight characters
        row("Speed", "; did you mean 'DraftSpeed' or 'PrintSpeed'?"); // a part of them
        row("x", "");
        row("Quite another", "");
        row("", "");
        row("Tab", "; did you mean 'Tab1' or 'Tab2' or 'Tab3'?"); // no more than three
    }

    void suggestsWhatWasMeant()
    {
        QFETCH(QString, given);
        QFETCH(QString, suggestion);
        const QStringList known{QStringLiteral("AlignHigh"),  QStringLiteral("AlignLow"),
                                QStringLiteral("DraftSpeed"), QStringLiteral("PrintSpeed"),
                                QStringLiteral("Tab1"),       QStringLiteral("Tab2"),
                                QStringLiteral("Tab3"),       QStringLiteral("Tab4")};
        QCOMPARE(didYouMean(given, known), suggestion);
    }

    void suggestsNothingWhereNothingIsKnown()
    {
        QCOMPARE(didYouMean(QStringLiteral("AlignLow"), {}), QString());
    }

    void escapesWhatATerminalWouldObey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char *name, const QString &text, const char *shown) {
            QTest::newRow(name) << text << QString::fromUtf8(shown);
        };
        row("plain", QStringLiteral("plain \u00e4\u2801"), "plain \u00e4\u2801");
        row("newline", QStringLiteral("a\nb"), "a\\nb");
        row("tab", QStringLiteral("a\tb"), "a\\tb");
        row("backslash", QStringLiteral("a\\b"), "a\\\\b");
        row("escape", QStringLiteral("\x1b[2J"), "\\x1b[2J");
        row("delete", QStringLiteral("\x7f"), "\\x7f");
        row("C1", QString(QChar(0x9b)), "\\x9b");
        row("override", QString(QChar(0x202e)) + QLatin1String("abc"), "\\u202eabc");
        row("isolate", QString(QChar(0x2066)), "\\u2066");
        row("line separator", QString(QChar(0x2028)), "\\u2028");
        row("Hebrew stays", QStringLiteral("\u05d0"), "\u05d0");
        row("above U+FFFF stays", QString::fromUtf8("\U0001F600"), "\U0001F600");
    }

    void escapesWhatATerminalWouldObey()
    {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        QCOMPARE(printable(text), shown);
    }

    void takesOnlyUtf8ForText_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isText");
        QTest::newRow("empty") << QByteArray("") << true;
        QTest::newRow("ASCII") << QByteArray("a") << true;
        QTest::newRow("a byte order mark") << QByteArray("\xef\xbb\xbf"
                                                         "a")
                                           << true;
        QTest::newRow("above U+FFFF") << QByteArray("\xf0\x9f\x98\x80") << true;
        QTest::newRow("Latin-1") << QByteArray("\xe9") << false;
        QTest::newRow("half a character") << QByteArray("\xc3") << false;
        QTest::newRow("a surrogate") << QByteArray("\xed\xa0\x80") << false;
        QTest::newRow("overlong") << QByteArray("\xc0\xaf") << false;
        QTest::newRow("a NUL") << QByteArray("a\0b", 3) << false;
    }

    void takesOnlyUtf8ForText()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isText);
        const std::optional<QString> text = textFromUtf8(bytes);
        QCOMPARE(text.has_value(), isText);
        if (text)
            QCOMPARE(text->toUtf8(), bytes);
    }

    void measuresTextInColumns_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("columns");
        QTest::newRow("empty") << QString() << 0;
        QTest::newRow("ASCII") << QStringLiteral("abc") << 3;
        QTest::newRow("Braille") << QStringLiteral("\u2801\u28ff") << 2;
        QTest::newRow("wide") << QStringLiteral("\u6f22\u5b57") << 4;
        QTest::newRow("emoji") << QString::fromUtf8("\U0001F600") << 2;
        QTest::newRow("combining") << QStringLiteral("e\u0301") << 1;
    }

    void measuresTextInColumns()
    {
        QFETCH(QString, text);
        QFETCH(int, columns);
        QCOMPARE(displayWidth(text), columns);
        QCOMPARE(displayWidth(padded(text, 10)), 10);
        QVERIFY(padded(text, 10).startsWith(text));
        QCOMPARE(padded(text, 0), text);
    }

    void breaksTextAtSpaces_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("lines");
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("fits") << QStringLiteral("ab cd ef") << QStringLiteral("ab cd ef");
        QTest::newRow("two lines") << QStringLiteral("ab cd efg") << QStringLiteral("ab cd|efg");
        QTest::newRow("long word")
            << QStringLiteral("a bcdefghijk l") << QStringLiteral("a|bcdefghijk|l");
        QTest::newRow("wide") << QStringLiteral("\u6f22\u5b57 \u6f22\u5b57")
                              << QStringLiteral("\u6f22\u5b57|\u6f22\u5b57");
    }

    void breaksTextAtSpaces()
    {
        QFETCH(QString, text);
        QTEST(wrapped(text, 8).join(QLatin1Char('|')), "lines");
    }

    void fitsColumnsIntoALine()
    {
        const QVector<int> widths{20, 40, 60};
        const QVector<int> least{20, 16, 10};
        QCOMPARE(fitted(widths, least, 124), widths);
        // The widest gives way until it is as narrow as the next.
        QCOMPARE(fitted(widths, least, 114), (QVector<int>{20, 40, 50}));
        QCOMPARE(fitted(widths, least, 84), (QVector<int>{20, 30, 30}));
        QCOMPARE(fitted(widths, least, 10), least);
    }

    void knowsHowNarrowAColumnCanBe()
    {
        const QVector<QStringList> rows{{QStringLiteral("two words"), QStringLiteral("two words")},
                                        {QStringLiteral("one"), QStringLiteral("longest one")}};
        QCOMPARE(leastWidths(rows, {1}), (QVector<int>{9, 7}));
    }

    void shortensTextToColumns()
    {
        const QString ellipsis(QChar(0x2026));
        QCOMPARE(elided(QStringLiteral("abcdef"), 6), QStringLiteral("abcdef"));
        QCOMPARE(elided(QStringLiteral("abcdef"), 5), QStringLiteral("abcd") + ellipsis);
        QCOMPARE(elided(QStringLiteral("abcdef"), 1), ellipsis);
        const QString wide = QStringLiteral("\u6f22\u5b57\u6f22");
        QCOMPARE(elided(wide, 6), wide);
        QCOMPARE(elided(wide, 5), wide.left(2) + ellipsis);
        QCOMPARE(elided(wide, 4), wide.left(1) + ellipsis);
    }

    void columnsAreAsWideAsTheirWidestCell()
    {
        const auto row = [](const char *first, const char *second) {
            return QStringList{QString::fromUtf8(first), QString::fromUtf8(second)};
        };
        QCOMPARE(columnWidths({row("a", "bbb"), row("\u6f22\u5b57", "b"), {}}),
                 (QVector<int>{4, 3}));
        QCOMPARE(columnWidths({}), QVector<int>());
    }

    void showsJsonAsText()
    {
        QCOMPARE(toText(QStringLiteral("a \"b\"")), QStringLiteral("a \"b\""));
        QCOMPARE(toText(-3), QStringLiteral("-3"));
        QCOMPARE(toText(0.5), QStringLiteral("0.5"));
        QCOMPARE(toText(true), QStringLiteral("true"));
        QCOMPARE(toText(QJsonValue()), QStringLiteral("(not shown)"));
        QCOMPARE(toText(QJsonObject{{QStringLiteral("a"), QJsonArray{1, QStringLiteral("x")}}}),
                 QStringLiteral("{\"a\":[1,\"x\"]}"));
    }

    void namesAMessageOnce()
    {
        const QString name = QStringLiteral("TabSize");
        QCOMPARE(about(name, QStringLiteral("no")), QStringLiteral("TabSize: no"));
        QCOMPARE(about(name, QStringLiteral("TabSize: no")), QStringLiteral("TabSize: no"));
        QCOMPARE(reason(name, QStringLiteral("TabSize: no")), QStringLiteral("no"));
        QCOMPARE(reason(name, QStringLiteral("TabSizes: no")), QStringLiteral("TabSizes: no"));
    }
};

QTEST_GUILESS_MAIN(TestToolText)
#include "tst_tool_text.moc"
