// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QFile>
#include <QtTest/QTest>

class TestProfiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBrokenProfileIsRefusedWithFileLineAndReason_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *name, const char *text, int line, const char *reason) {
            QTest::newRow(name) << QString::fromLatin1(text) << line << QString::fromLatin1(reason);
        };
        row("no JSON", "{\n  \"base\": \"Arvo\"\n  \"answers\": {}\n}", 3, "");
        row("empty", "", 1, "illegal value");
        row("no object", "[]", 1, "is no JSON object");
        row("unfinished", "{\n\"base\": \"Arvo\",\n\"settings\": {", 3, "");
        row("twice the same",
            "{\"base\": \"Arvo\",\n\"settings\": {\"TabSize\": {\"default\": 1},\n"
            "\"TabSize\": {\"default\": 2}}}",
            3, "a second \"TabSize\"");
        row("unknown member", "{\"base\": \"Arvo\",\n\"seetings\": {}}", 2,
            "seetings: is none of: answers, settings, ");
        row("unknown base", "{\n\"base\": \"Avro\"}", 2, "base: there is no \"Avro\"");
        row("base that is no name", "{\n\"base\": 1}", 2, "base: is no text");
        row("base that is itself", "{\n\"base\": \"profile.json\"}", 2, "is based on itself");
        row("no base and nothing else", "{}", 1, "answers: is missing");
        row("unknown setting", "{\"base\": \"Arvo\", \"settings\": {\n\"TabSiez\": {}}}", 2,
            "settings/TabSiez: is no setting of the service");
        row("setting without its key", "{\"base\": \"Arvo\", \"settings\": {\n\"Counter\": {}}}", 2,
            "settings/Counter: needs a key");
        row("setting with a key", "{\"base\": \"Arvo\", \"settings\": {\n\"TabSize/1\": {}}}", 2,
            "settings/TabSize/1: takes no key");
        row("setting that is missing", "{\"base\": \"Arvo\",\n\"settings\": {\"TabSize\": null}}",
            2, "settings/TabSize: is missing");
        row("keyed setting that is missing",
            "{\"base\": \"Arvo\",\n\"settings\": {\"ReleaseTime/Open\": null, "
            "\"ReleaseTime/Close\": null, \"ReleaseTime/Tray\": null}}",
            2, "settings/ReleaseTime/: is missing");
        row("value of another type",
            "{\"base\": \"Arvo\", \"settings\": {\n\"Model\": {\n\"default\": 7}}}", 3,
            "settings/Model/default: is no text");
        row("value that is no integer",
            "{\"base\": \"Arvo\", \"settings\": {\"AlignLow\": {\n\"default\": 1.5}}}", 2,
            "settings/AlignLow/default: is no 32-bit integer");
        row("value out of its bounds",
            "{\"base\": \"Arvo\", \"settings\": {\"AlignLow\": {\n\"default\": 101}}}", 2,
            "settings/AlignLow/default: 101 is not between -100 and 100");
        row("bounds that exclude the value of the base",
            "{\"base\": \"Arvo\", \"settings\": {\n\"TotalCharPerLine\": {\"max\": 20}}}", 0,
            ":/profiles/Arvo.json:");
        row("bounds the wrong way round",
            "{\"base\": \"Arvo\", \"settings\": {\"AlignLow\": {\n\"min\": 101}}}", 2,
            "settings/AlignLow/min: is above max");
        row("value that is not in its list",
            "{\"base\": \"Arvo\", \"settings\": {\"Baudrate\": {\n\"default\": 9601}}}", 2,
            "settings/Baudrate/default: 9601 is none of: 1200, 2400, ");
        row("list that is none",
            "{\"base\": \"Arvo\", \"settings\": {\"Baudrate\": {\n\"row\": \"Baud\"}}}", 2,
            "settings/Baudrate/row: is no value list");
        row("unknown property of a setting",
            "{\"base\": \"Arvo\", \"settings\": {\"Baudrate\": {\n\"maximum\": 1}}}", 2,
            "settings/Baudrate/maximum: is none of: default, ");
        row("unknown property of the paper",
            "{\"base\": \"Arvo\", \"settings\": {\"PaperWidth\": {\n\"follows\": \"depth\"}}}", 2,
            "settings/PaperWidth/follows: is no property of a paper");
        row("paper that does not fit",
            "{\"base\": \"Arvo\", \"settings\": {\"PaperWidth\": {\"max\": 250.0}}}", 0,
            "papers/110x120: PaperWidth: 279.4 is not between 89 and 250 mm");
        row("paper in an unknown unit",
            "{\"base\": \"Arvo\", \"papers\": {\"A4\": {\n\"unit\": \"ell\"}}}", 2,
            "papers/A4/unit: is neither mm nor inch");
        row("paper that does not move",
            "{\"base\": \"Arvo\", \"papers\": {\"A4\": {\n\"feedStep\": 0}}}", 2,
            "papers/A4/feedStep: is not above 0");
        row("unknown key of an enumeration",
            "{\"base\": \"Arvo\", \"answers\": {\n\"getType\": \"EmbosserType.Avro\"}}", 2,
            "answers/getType: EmbosserType has no key Avro");
        row("unknown enumeration",
            "{\"base\": \"Arvo\", \"answers\": {\n\"getType\": \"Embosser.Arvo\"}}", 2,
            "answers/getType: is neither a number nor the key of an enumeration");
        row("answer to no method", "{\"base\": \"Arvo\", \"answers\": {\n\"isAvro\": true}}", 2,
            "answers/isAvro: is no method of the service");
        row("answer to another method", "{\"base\": \"Arvo\", \"answers\": {\n\"getTabSize\": 4}}",
            2, "answers/getTabSize: is no query that the profile answers");
        row("answer that is missing", "{\"base\": \"Arvo\",\n\"answers\": {\"isUlm\": null}}", 2,
            "answers/isUlm: is missing");
        row("empty list", "{\"base\": \"Arvo\", \"rows\": {\n\"OnOff\": []}}", 2,
            "rows/OnOff: is empty");
        row("unknown list", "{\"base\": \"Arvo\", \"rows\": {\n\"OffOn\": [\"Off\"]}}", 2,
            "rows/OffOn: is none of: ");
        row("unknown name in a list",
            "{\"base\": \"Arvo\",\n\"layoutParameters\": [\n\"TabSize\",\n\"TabSiez\"]}", 4,
            "layoutParameters/1: is no setting");
        row("unknown family",
            "{\"base\": \"Arvo\", \"userSettings\": {\n\"families\": [\"Sound\"]}}", 2,
            "userSettings/families/0: is no family of settings");
    }

    void aBrokenProfileIsRefusedWithFileLineAndReason()
    {
        QFETCH(QString, text);
        QFETCH(int, line);
        QFETCH(QString, reason);
        const QString path = write(QStringLiteral("profile.json"), text);
        const Ended ended = runSimulator({QStringLiteral("--profile"), path});
        QCOMPARE(ended.exitCode, 1);
        if (line > 0) {
            const QString place = QStringLiteral("%1:%2: ").arg(path).arg(line);
            QVERIFY2(ended.errors.startsWith(QLatin1String("embosser-simulator: ") + place),
                     qPrintable(ended.errors));
        }
        QVERIFY2(ended.errors.contains(reason), qPrintable(ended.errors));
    }

    void aProfileMayChangeOneThingOfAModel()
    {
        const QString path = write(QStringLiteral("mine.json"),
                                   QStringLiteral("{\"base\": \"Dovrik\", \"settings\": "
                                                  "{\"SerialNo\": {\"default\": \"mine\"}}}"));
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"), path});
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(simulator.value(QStringLiteral("getSerialNo"), master), QVariant("mine"));
        QCOMPARE(simulator.value(QStringLiteral("getModel"), master), QVariant("Dovrik"));
    }

    void aProfileMayBeBasedOnAnotherFile()
    {
        write(QStringLiteral("base.json"),
              QStringLiteral("{\"base\": \"Feyra\", \"answers\": {\"getShortID\": \"base\"}}"));
        const QString path =
            write(QStringLiteral("derived.json"), QStringLiteral("{\"base\": \"base.json\"}"));
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"), path});
        QCOMPARE(simulator.value(QStringLiteral("getShortID")), QVariant("base"));
        QCOMPARE(simulator.value(QStringLiteral("isFeyra")), QVariant(true));
    }

private:
    QString write(const QString &name, const QString &text) const
    {
        QFile file(m_directory.filePath(name));
        if (!file.open(QFile::WriteOnly))
            qFatal("%s", qPrintable(file.errorString()));
        file.write(text.toUtf8());
        return file.fileName();
    }

    PrivateBus m_bus;
    const QTemporaryDir m_directory;
};

QTEST_GUILESS_MAIN(TestProfiles)
#include "tst_profiles.moc"
