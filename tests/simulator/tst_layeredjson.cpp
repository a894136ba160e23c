// SPDX-License-Identifier: MIT

#include "model/LayeredJson.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using simulator::JsonError;
using simulator::JsonNode;
using simulator::LayeredJson;

class TestLayeredJson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void objectsAreMergedAndEverythingElseIsReplaced()
    {
        write("base", R"({"a": {"x": 1, "y": 2}, "list": [1, 2, 3], "text": "base"})");
        write("middle", R"({"base": "base", "a": {"y": 3, "z": 4}, "text": {"is": "an object"}})");
        write("top", R"({"base": "middle", "list": [9], "text": {"too": true}})");
        const LayeredJson json = read("top");
        const JsonNode root(json);
        QCOMPARE(root.keys(), QStringList({"a", "list", "text"}));
        QCOMPARE(root["a"]["x"].toInteger(), 1);
        QCOMPARE(root["a"]["y"].toInteger(), 3);
        QCOMPARE(root["a"]["z"].toInteger(), 4);
        QCOMPARE(root["list"].elements().size(), 1);
        QCOMPARE(root["list"].elements().at(0).toInteger(), 9);
        QCOMPARE(root["text"]["is"].toText(), QStringLiteral("an object"));
        QCOMPARE(root["text"]["too"].toBool(), true);
    }

    void nullRemoves()
    {
        write("base", R"({"a": {"x": 1, "y": 2}, "b": 1})");
        write("top", R"({"base": "base", "a": {"x": null}, "b": null, "c": null})");
        const LayeredJson json = read("top");
        const JsonNode root(json);
        QCOMPARE(root.keys(), QStringList({"a"}));
        QCOMPARE(root["a"].keys(), QStringList({"y"}));
    }

    void aValueIsRefusedWhereItStands_data()
    {
        QTest::addColumn<QStringList>("path");
        QTest::addColumn<QString>("said");
        const auto row = [](const char *path, const char *said) {
            QTest::newRow(path) << QString::fromLatin1(path).split(' ', Qt::SkipEmptyParts)
                                << QString::fromLatin1(said);
        };
        row("", "top:1: no");
        row("own", "top:3: own: no");
        row("both x", "top:4: both/x: no");
        row("both y", "base:3: both/y: no");
        row("list 1", "base:5: list/1: no");
        row("with/slash", "base:6: with/slash: no");
        // Where it should be: in the file that was written last and has its parent.
        row("both missing", "top:4: both/missing: is missing");
        row("list 7", "base:4: list/7: no");
        row("missing deep down", "top:1: missing/deep/down: is missing");
    }

    void aValueIsRefusedWhereItStands()
    {
        QFETCH(QStringList, path);
        QFETCH(QString, said);
        write("base", "{\"own\": 1,\n\"both\": {\"x\": 1,\n\"y\": 2}, \n\"list\": [1,\n2],\n"
                      "\"with/slash\": 1}");
        write("top", "{\"base\": \"base\",\n\n\"own\": 2, \n\"both\": {\"x\": 2}}");
        const LayeredJson json = read("top");
        if (path.value(0) == QLatin1String("list")) {
            QCOMPARE(message([&] { json.refuse(path, QStringLiteral("no")); }), said);
            return;
        }
        QCOMPARE(message([&] { refuseAt(JsonNode(json), path); }), said);
    }

    void aContradictionIsRefusedInTheOutermostFile()
    {
        write("base", "{\"min\": 1,\n\"max\": 2}");
        write("top", "{\"base\": \"base\",\n\n\n\"max\": 0}");
        const LayeredJson json = read("top");
        const JsonNode root(json);
        QCOMPARE(message([&] { root["min"].refuse("is above max", {root["max"]}); }),
                 QStringLiteral("top:4: min: is above max"));
        QCOMPARE(message([&] { root["min"].refuse("is odd", {root["none"]}); }),
                 QStringLiteral("base:1: min: is odd"));
    }

    void whatIsNotAsItIsAskedForIsRefused_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("reason");
        QTest::newRow("text") << QByteArray("1") << "is not a string";
        QTest::newRow("number") << QByteArray("true") << "is not a number";
        QTest::newRow("integer") << QByteArray("1.5") << "is not a 32-bit integer";
        QTest::newRow("integer beyond") << QByteArray("2147483648") << "is not a 32-bit integer";
        QTest::newRow("integer below") << QByteArray("-2147483649") << "is not a 32-bit integer";
        QTest::newRow("bool") << QByteArray("1") << "is neither true nor false";
        QTest::newRow("object") << QByteArray("[]") << "is not an object";
        QTest::newRow("array") << QByteArray("{}") << "is not an array";
        QTest::newRow("texts") << QByteArray("[1]") << "is not a string";
    }

    void whatIsNotAsItIsAskedForIsRefused()
    {
        QFETCH(QByteArray, value);
        QFETCH(QString, reason);
        const QByteArray type = QByteArray(QTest::currentDataTag()).split(' ').constFirst();
        write("file", "{\"v\": " + value + "}");
        const LayeredJson json = read("file");
        const JsonNode node = JsonNode(json)["v"];
        const QHash<QByteArray, std::function<void()>> readers{
            {"text", [&] { node.toText(); }},       {"number", [&] { node.toNumber(); }},
            {"integer", [&] { node.toInteger(); }}, {"bool", [&] { node.toBool(); }},
            {"object", [&] { node.keys(); }},       {"array", [&] { node.elements(); }},
            {"texts", [&] { node.toTexts(); }}};
        const QString said = message(readers.value(type));
        QVERIFY2(said.endsWith(": " + reason), qPrintable(said));
    }

    void theBoundsOfAnIntegerAreIntegers()
    {
        write("file", R"({"least": -2147483648, "most": 2147483647, "whole": 2.0})");
        const LayeredJson json = read("file");
        const JsonNode root(json);
        QCOMPARE(root["least"].toInteger(), std::numeric_limits<int>::min());
        QCOMPARE(root["most"].toInteger(), std::numeric_limits<int>::max());
        QCOMPARE(root["whole"].toInteger(), 2);
    }

    void aFileThatIsNoJsonIsRefused_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("said");
        QTest::newRow("empty") << QByteArray()
                               << "file:1: Syntax error: value, object or array expected.";
        QTest::newRow("comma") << QByteArray("{\"a\": 1,\n}")
                               << "file:2: Missing '}' or object member name";
        QTest::newRow("twice") << QByteArray("{\"a\": {\"b\": 1,\n\"b\": 2}}")
                               << "file:2: Duplicate key: 'b'";
        QTest::newRow("more") << QByteArray("{}\n{}")
                              << "file:2: Extra non-whitespace after JSON value.";
        QTest::newRow("array") << QByteArray("[]") << "file:1: is not a JSON object";
        QTest::newRow("deep") << QByteArray(5000, '[') << "file: is nested too deeply";
    }

    void aFileThatIsNoJsonIsRefused()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, said);
        write("file", text);
        QCOMPARE(message([&] { read("file"); }), said);
    }

    void aByteOrderMarkIsLeftOut()
    {
        write("file", "\xef\xbb\xbf{\n\"a\": 1}");
        const LayeredJson json = read("file");
        QCOMPARE(message([&] { JsonNode(json)["a"].refuse("no"); }),
                 QStringLiteral("file:2: a: no"));
    }

private:
    static void refuseAt(JsonNode node, const QStringList &path)
    {
        for (const QString &step : path)
            node = node[step];
        node.refuse(QStringLiteral("no"));
    }

    void write(const char *name, const QByteArray &text) const
    {
        QFile file(m_directory.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(text);
    }

    LayeredJson read(const char *name) const
    {
        return {
            m_directory.filePath(QString::fromLatin1(name)),
            [this](const QString &base, const QString &) { return m_directory.filePath(base); }};
    }

    /// What the error says that is thrown, without the folder of its file.
    QString message(const std::function<void()> &function) const
    {
        try {
            function();
        } catch (const JsonError &error) {
            return QString::fromUtf8(error.what()).remove(m_directory.path() + '/');
        }
        return QStringLiteral("nothing is thrown");
    }

    const QTemporaryDir m_directory;
};

QTEST_GUILESS_MAIN(TestLayeredJson)
#include "tst_layeredjson.moc"
