// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
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
            QTest::newRow(name) << QString::fromUtf8(text) << line << QString::fromLatin1(reason);
        };
        row("no JSON", R"({
  "base": "Arvo"
  "answers": {}
})",
            3, "");
        row("empty", "", 1, "value, object or array expected");
        row("no object", R"([])", 1, "is not a JSON object");
        row("unfinished", R"({
"base": "Arvo",
"settings": {)",
            3, "");
        row("twice the same", R"({"base": "Arvo",
"settings": {"TabSize": {"default": 1},
"TabSize": {"default": 2}}})",
            3, "Duplicate key: 'TabSize'");
        row("unknown member", R"({"base": "Arvo",
"seetings": {}})",
            2, "seetings: is none of: answers, settings, ");
        row("unknown base", R"({
"base": "Avro"})",
            2, "base: there is no \"Avro\"");
        row("base that is no name", R"({
"base": 1})",
            2, "base: is not a string");
        row("base that is itself", R"({
"base": "profile.json"})",
            2, "is based on itself");
        row("no base and nothing else", R"({})", 1, "answers: is missing");
        row("unknown setting", R"({"base": "Arvo", "settings": {
"TabSiez": {}}})",
            2, "settings/TabSiez: is not a setting of the service");
        row("setting without its key", R"({"base": "Arvo", "settings": {
"Counter": {}}})",
            2, "settings/Counter: needs a key");
        row("setting with a key", R"({"base": "Arvo", "settings": {
"TabSize/1": {}}})",
            2, "settings/TabSize/1: takes no key");
        row("setting that is missing", R"({"base": "Arvo",
"settings": {"TabSize": null}})",
            2, "settings/TabSize: is missing");
        row("keyed setting that is missing", R"({"base": "Arvo",
"settings": {"ReleaseTime/Open": null, "ReleaseTime/Close": null, "ReleaseTime/Tray": null}})",
            2, "settings/ReleaseTime/: is missing");
        row("value of another type", R"({"base": "Arvo", "settings": {
"Model": {
"default": 7}}})",
            3, "settings/Model/default: is not a string");
        row("value that is no integer", R"({"base": "Arvo", "settings": {"AlignLow": {
"default": 1.5}}})",
            2, "settings/AlignLow/default: is not a 32-bit integer");
        row("value out of its bounds", R"({"base": "Arvo", "settings": {"AlignLow": {
"default": 101}}})",
            2, "settings/AlignLow/default: 101 is not between -100 and 100");
        // What contradicts something of the base is to be changed here.
        row("bound that excludes the value of the base", R"({"base": "Arvo", "settings": {
"MaxPaperInBin": {
"max": 20}}})",
            3, "settings/MaxPaperInBin/default: 250 is not between 1 and 20");
        row("bound that excludes the value of the base's base",
            R"({"base": "Arvo", "settings": {"AlignLow": {
"min": 50}}})",
            2, "settings/AlignLow/default: 0 is not between 50 and 100");
        row("bound above that of the base", R"({"base": "Arvo", "settings": {"AlignLow": {
"max": -101}}})",
            2, "settings/AlignLow/min: is above max");
        row("list that has not the value of the base", R"({"base": "Arvo", "rows": {
"BaudRate": [1200, 2400]}})",
            2, "settings/Baudrate/default: 9600 is none of: 1200, 2400");
        row("list for what has bounds in the base", R"({"base": "Arvo", "settings": {"AlignLow": {
"row": "OnOff"}}})",
            2, "settings/AlignLow/max: is none of: default, unit, available, row");
        row("length that the value of the base exceeds",
            R"({"base": "Arvo", "settings": {"SerialNo": {
"maxLength": 5}}})",
            2, "settings/SerialNo/default: the value is longer than 5 bytes");
        row("length below 0", R"({"base": "Arvo", "settings": {"Ssid": {
"maxLength": -3}}})",
            2, "settings/Ssid/maxLength: is below 0");
        row("decimals below 0", R"({"base": "Arvo", "settings": {"TopOfForm": {
"precision": -3}}})",
            2, "settings/TopOfForm/precision: is below 0");
        row("byte order mark",
            "\xef\xbb\xbf"
            R"({"base": "Arvo",
"settings": {
"TabSiez": {}}})",
            3, "settings/TabSiez: is not a setting of the service");
        row("bounds the wrong way round", R"({"base": "Arvo", "settings": {"AlignLow": {
"min": 101}}})",
            2, "settings/AlignLow/min: is above max");
        row("value that is not in its list", R"({"base": "Arvo", "settings": {"Baudrate": {
"default": 9601}}})",
            2, "settings/Baudrate/default: 9601 is none of: 1200, 2400, ");
        row("list that is none", R"({"base": "Arvo", "settings": {"Baudrate": {
"row": "Baud"}}})",
            2, "settings/Baudrate/row: is not a value list");
        row("unknown property of a setting", R"({"base": "Arvo", "settings": {"Baudrate": {
"maximum": 1}}})",
            2, "settings/Baudrate/maximum: is none of: default, ");
        row("list for a length", R"({"base": "Arvo", "settings": {"PaperWidth": {
"row": "OnOff"}}})",
            2,
            "settings/PaperWidth/row: is none of: follows, unit, available, min, max, below, "
            "precision");
        row("unknown property of the paper", R"({"base": "Arvo", "settings": {"PaperWidth": {
"follows": "depth"}}})",
            2, "settings/PaperWidth/follows: is not a property of a paper");
        row("current paper that follows itself", R"({"base": "Arvo", "settings": {"PaperSize": {
"default": null, "row": null,
"follows": "sizeUnit"}}})",
            2, "settings/PaperSize/row: is missing");
        row("setting that follows itself by way of another one",
            R"({"base": "Arvo", "settings": {"BrailleCellSize": {
"default": null,
"follows": "linesPerPage"}}})",
            3, "settings/BrailleCellSize/follows: depends on BrailleCellSize itself");
        row("rule that is none", R"({"base": "Arvo", "settings": {"TabSize": {
"available": ["IsDoubleSide"]}}})",
            2, "settings/TabSize/available/0: is not a value of ValidateCommand");
        row("rule of which nobody says when it holds", R"({"base": "Arvo", "rows": {"OnOff": ["Off",
{"key": "On", "value": 1, "available": ["HammerBatchIsOk"]}]}})",
            2,
            "rows/OnOff/1/available/0: is a rule of which the simulator does not know when it "
            "holds");
        row("list of which no entry is available",
            R"({"base": "Arvo", "rows": {
"Unit": [{"key": "mm", "value": 0, "available": ["AlwaysInvalid"]}]}})",
            2, "rows/Unit: is empty");
        row("value in the wrong order", R"({"base": "Arvo", "settings": {"FanTemperatureOff": {
"default": 45}}})",
            2, "settings/FanTemperatureOff/default: is not below that of FanTemperatureOn");
        row("order to no setting", R"({"base": "Arvo", "settings": {"AlignLow": {
"below": "AlignHihg"}}})",
            2, "settings/AlignLow/below: is not a setting that has bounds");
        row("booklets without booklet printing", R"({"base": "Marren", "answers": {
"hasBooklet": false}})",
            2, "answers/hasBooklet: does not agree with the choice Booklet of Duplex");
        row("two sides without double-sided printing", R"({"base": "Arvo",
"rows": {"Duplex": ["Duplex.Single", "Duplex.Double"]},
"answers": {"isDoubleSided": false}})",
            3, "answers/isDoubleSided: does not agree with the choice Double of Duplex");
        row("dots that no cell has", R"({"base": "Arvo", "rows": {
"BrailleCellDots": ["SixDot", "TenDot"]}})",
            2, "rows/BrailleCellDots: has a choice that is neither SixDot nor EightDot");
        row("margin below 0", R"({"base": "Arvo", "unprintable": {
"width": -1}})",
            2, "unprintable/width: is below 0");
        row("paper that does not fit",
            R"({"base": "Arvo", "settings": {"PaperWidth": {
"max": 250.0}}})",
            2, "papers/110x120: PaperWidth: 279.4 is not between 89 and 250 mm");
        row("paper in an unknown unit", R"({"base": "Arvo", "papers": {"A4": {
"unit": "ell"}}})",
            2, "papers/A4/unit: is neither mm nor inch");
        row("paper that does not move", R"({"base": "Arvo", "papers": {"A4": {
"feedStep": 0}}})",
            2, "papers/A4/feedStep: is not above 0");
        row("paper without width", R"({"base": "Arvo", "papers": {"A4": {
"width": 0}}})",
            2, "papers/A4/width: is not above 0");
        row("paper that is too long for any number of inches",
            R"({"base": "Arvo", "papers": {"A4": {
"height": 1e30}}})",
            2, "papers/A4/height: is not above 0 and up to 1000000");
        row("paper that moves less than can be told", R"({"base": "Arvo", "papers": {"A4": {
"feedStep": 0.004}}})",
            2, "papers/A4/feedStep: is not above 0 in hundredths");
        row("paper of no orientation", R"({"base": "Arvo", "papers": {"A4": {
"loadOrientation": 2}}})",
            2, "papers/A4/loadOrientation: is not a value of Orientation");
        row("paper of another orientation", R"({"base": "Arvo", "papers": {"A4": {
"formatOrientation": "Orientation.Landscape"}}})",
            2, "papers/A4/formatOrientation: does not agree with width and height");
        row("paper that is wider than the base's and of its orientation",
            R"({"base": "Arvo", "papers": {"A4": {
"width": 298.0}}})",
            2, "papers/A4/formatOrientation: does not agree with width and height");
        row("paper of no feed", R"({"base": "Arvo", "papers": {"A4": {
"feedType": 5}}})",
            2, "papers/A4/feedType: is not a value of FeedType");
        row("no paper that suits the model", R"({"base": "Arvo", "answers": {
"getMaskValue": 0}})",
            2, "answers/getMaskValue: there is no paper for it and for getFeedType");
        row("distance below 0", R"({"base": "Arvo", "cells": {"Text_2p5": {
"cellToCell": -1}}})",
            2, "cells/Text_2p5/cellToCell: is not above 0");
        row("factor of 0", R"({"base": "Arvo", "lineSpacings": {
"Single": 0}})",
            2, "lineSpacings/Single: is not above 0");
        row("braille distance that can be set and does not exist",
            R"({"base": "Arvo", "cells": {
"Text_2p5": null}})",
            2, "cells/Text_2p5: is missing");
        row("graphic distance that can be set and does not exist",
            R"({"base": "Arvo", "cells": {
"Graph_1p6": null}})",
            2, "cells/Graph_1p6: is missing");
        row("line spacing that can be set and does not exist",
            R"({"base": "Arvo", "lineSpacings": {
"Double": null}})",
            2, "lineSpacings/Double: is missing");
        row("current paper of any name", R"({"base": "Arvo", "settings": {"PaperSize": {
"row": null}}})",
            2, "settings/PaperSize/row: is missing");
        row("bound beyond an int", R"({"base": "Arvo", "settings": {"AlignLow": {
"max": 1e30}}})",
            2, "settings/AlignLow/max: is not a 32-bit integer");
        row("documents of an unknown kind", R"({"base": "Arvo", "documents": {
"foo": {}}})",
            2, "documents/foo: is none of: demo, manual, service");
        row("entry that stands twice in a list", R"({"base": "Arvo", "rows": {"BaudRate": [9600,
9600]}})",
            2, "rows/BaudRate/1: has the key or the value of another entry");
        row("two entries with one value", R"({"base": "Arvo", "rows": {"OnOff": ["Off", "On",
{"key": "Auto", "value": 1}]}})",
            2, "rows/OnOff/2: has the key or the value of another entry");
        row("type that is none", R"({"base": "Arvo", "answers": {
"getType": 9999}})",
            2, "answers/getType: is not a value of EmbosserType");
        row("feed that is none", R"({"base": "Arvo", "answers": {
"getFeedType": 5}})",
            2, "answers/getFeedType: is not a value of FeedType");
        row("head that is none", R"({"base": "Arvo", "answers": {
"getHeadType": -1}})",
            2, "answers/getHeadType: is not a value of HeadType");
        row("mask that is none", R"({"base": "Arvo", "answers": {
"getModelMask": 8}})",
            2, "answers/getModelMask: is not a value of ModelMask");
        row("two models", R"({"base": "Kestan", "answers": {
"isArvo": true}})",
            2, "answers/isArvo: does not agree with getType");
        row("another type than the base's", R"({"base": "Kestan", "answers": {
"getType": "EmbosserType.Arvo"}})",
            2, "answers/isArvo: does not agree with getType");
        row("another feed than the base's", R"({"base": "Arvo", "answers": {
"getFeedType": "FeedType.Feeder"}})",
            2, "answers/hasFeeder: does not agree with getFeedType");
        row("choice of a list that does not exist", R"({"base": "Arvo", "rows": {
"TextDistance": ["Text_2p5", "Text_9p9"]}})",
            2, "cells/Text_9p9: is missing");
        row("no model", R"({"base": "Kestan_V5", "answers": {
"isKestan": false}})",
            2, "answers/isKestan: does not agree with getType");
        row("tractor that is none", R"({"base": "Arvo", "answers": {
"hasTractorFeed": false}})",
            2, "answers/hasTractorFeed: does not agree with getFeedType");
        row("feeder that is none", R"({"base": "Feyra", "answers": {
"hasFeeder": false}})",
            2, "answers/hasFeeder: does not agree with getFeedType");
        row("unknown key of an enumeration", R"({"base": "Arvo", "answers": {
"getType": "EmbosserType.Avro"}})",
            2, "answers/getType: EmbosserType has no key Avro");
        row("unknown enumeration", R"({"base": "Arvo", "answers": {
"getType": "Embosser.Arvo"}})",
            2, "answers/getType: is neither a number nor the key of an enumeration");
        row("answer to no method", R"({"base": "Arvo", "answers": {
"isAvro": true}})",
            2, "answers/isAvro: is not a method of the service");
        row("answer to another method", R"({"base": "Arvo", "answers": {
"getTabSize": 4}})",
            2, "answers/getTabSize: is not a query that the profile answers");
        row("answer that is missing", R"({"base": "Arvo",
"answers": {"isUlm": null}})",
            2, "answers/isUlm: is missing");
        row("empty list", R"({"base": "Arvo", "rows": {
"OnOff": []}})",
            2, "rows/OnOff: is empty");
        row("unknown list", R"({"base": "Arvo", "rows": {
"OffOn": ["Off"]}})",
            2, "rows/OffOn: is none of: ");
        row("unknown name in a list", R"({"base": "Arvo",
"layoutParameters": [
"TabSize",
"TabSiez"]})",
            4, "layoutParameters/1: is not a setting");
        row("name in a list of the base of a setting that is missing",
            R"({"base": "profile-base.json", "settings": {
"Counter/8": null}})",
            2, "layoutParameters/0: is not a setting");
        row("unknown family", R"({"base": "Arvo", "userSettings": {
"families": ["Sound"]}})",
            2, "userSettings/families/0: is not a family of settings");
        row("user setting that is none", R"({"base": "Arvo", "userSettings": {
"families": null, "except": null, "names": [
"TabSize", "TabSiez"]}})",
            3, "userSettings/names/1: is not a setting");
        row("recorded answer of no method", R"({"base": "Arvo", "recorded": [
{"method": "isAvro", "arguments": [], "answer": true}]})",
            2, "recorded/0/method: is not a query of the service");
        row("recorded answer of a command", R"({"base": "Arvo", "recorded": [
{"method": "setTabSize", "arguments": [4], "error": "no"}]})",
            2, "recorded/0/method: is not a query of the service");
        row("recorded answer to other arguments", R"({"base": "Arvo", "recorded": [
{"method": "getTabSize", "arguments": [4], "answer": 4}]})",
            2, "recorded/0/arguments: are not those of the method");
        row("recorded answer of another type", R"({"base": "Arvo", "recorded": [
{"method": "getTabSize", "arguments": [],
"answer": "four"}]})",
            3, "recorded/0/answer: is neither a number nor the key of an enumeration");
        row("recorded map without types", R"({"base": "Arvo", "recorded": [
{"method": "getVolumeFineAdjustmentLimits", "arguments": [],
"answer": {"min": 4}}]})",
            3, "recorded/0/answer/min: is not an object");
        row("recorded map of unknown types", R"({"base": "Arvo", "recorded": [
{"method": "getVolumeFineAdjustmentLimits", "arguments": [],
"answer": {"min": {"z": 4}}}]})",
            3, "recorded/0/answer/min/z: is not of a type that can be read");
        row("recorded map of two types", R"({"base": "Arvo", "recorded": [
{"method": "getVolumeFineAdjustmentLimits", "arguments": [],
"answer": {"min": {"d": 4, "i": 4}}}]})",
            3, "recorded/0/answer/min: is not one value with its type");
        row("recorded number out of its type", R"({"base": "Arvo", "recorded": [
{"method": "getVolumeFineAdjustmentLimits", "arguments": [],
"answer": {"min": {"i": 4.5}}}]})",
            3, "recorded/0/answer/min/i: is not a number of its type");
        row("recorded number beyond its type", R"({"base": "Arvo", "recorded": [
{"method": "getVolumeFineAdjustmentLimits", "arguments": [],
"answer": {"min": {"y": 256}}}]})",
            3, "recorded/0/answer/min/y: is not a number of its type");
        row("recorded number beyond a double", R"({"base": "Arvo", "recorded": [
{"method": "getVolumeFineAdjustmentLimits", "arguments": [],
"answer": {"min": {"t": 1e300}}}]})",
            3, "recorded/0/answer/min/t: is not a number of its type");
        row("captured bound of an integer that is none", R"({"base": "captured.json", "settings": {
"AlignLow": {"min": 0.5, "max": 4}}})",
            2, "settings/AlignLow/min: is not a 32-bit integer");
        row("captured setting with half its bounds", R"({"base": "captured.json", "settings": {
"AlignLow": {"min": 4}}})",
            2, "settings/AlignLow/max: is missing");
        row("captured setting with an unknown member", R"({"base": "captured.json", "settings": {
"AlignLow": {"valeu": 4}}})",
            2, "settings/AlignLow/valeu: is none of: value, default, ");
        row("captured paper with an unknown member", R"({"base": "captured.json", "papers": {
"A4": {"widht": 4}}})",
            2, "papers/A4/widht: is not a property of a paper");
    }

    void aBrokenProfileIsRefusedWithFileLineAndReason()
    {
        QFETCH(QString, text);
        QFETCH(int, line);
        QFETCH(QString, reason);
        write(QStringLiteral("captured.json"), nothingCaptured);
        write(QStringLiteral("profile-base.json"),
              QStringLiteral("{\"base\": \"Arvo\", \"layoutParameters\": [\"Counter/8\"]}"));
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

    void aProfileThatIsItsOwnBaseByAnotherPathIsRefused_data()
    {
        QTest::addColumn<QString>("base");
        QTest::newRow("same folder") << "./cycle.json";
        QTest::newRow("through the parent")
            << QStringLiteral("../%1/./cycle.json").arg(QFileInfo(m_directory.path()).fileName());
        QTest::newRow("link") << "link.json";
    }

    void aProfileThatIsItsOwnBaseByAnotherPathIsRefused()
    {
        QFETCH(QString, base);
        const QString path =
            write(QStringLiteral("cycle.json"), QStringLiteral("{\n\"base\": \"%1\"}").arg(base));
        QFile::link(path, m_directory.filePath(QStringLiteral("link.json")));
        const Ended ended = runSimulator({QStringLiteral("--profile"), path});
        QCOMPARE(ended.exitCode, 1);
        QCOMPARE(ended.errors, QStringLiteral("embosser-simulator: %1:2: base: %2 is based on "
                                              "itself\n")
                                   .arg(path, m_directory.filePath(base)));
    }

    void aProfileMayChangeOneThingOfAModel()
    {
        const QString path = write(QStringLiteral("mine.json"),
                                   QStringLiteral("{\"base\": \"Dovrik\", \"settings\": "
                                                  "{\"SerialNo\": {\"default\": \"mine\"}}}"));
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"), path});
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(simulator.value("getSerialNo", master), QVariant("mine"));
        QCOMPARE(simulator.value("getModel", master), QVariant("Dovrik"));
    }

    void boundsThatAreNotWholeAreWithinThoseThatAreTold()
    {
        const QString path =
            write(QStringLiteral("fractions.json"),
                  QStringLiteral("{\"base\": \"Kestan\", \"settings\": "
                                 "{\"TopOfForm\": {\"min\": -0.5, \"max\": 99.5}}}"));
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"), path});
        const QVariantList name{QStringLiteral("TopOfForm")};
        QCOMPARE(simulator.value("getMinValue", name), QVariant(-1));
        QCOMPARE(simulator.value("getMaxValue", name), QVariant(100));
    }

    void choicesMayDependOnWhatIsSet_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("setter");
        QTest::addColumn<QString>("holding");
        QTest::addColumn<QString>("other");
        QTest::newRow("paper") << "PaperSizeIs85x110"
                               << "setPaperSize"
                               << "85x110"
                               << "A4";
        QTest::newRow("page number") << "PageNumberIsSelected"
                                     << "setPageNumber"
                                     << "Top"
                                     << "None";
        QTest::newRow("no page number") << "PageNumberNotSelected"
                                        << "setPageNumber"
                                        << "None"
                                        << "Bottom";
        QTest::newRow("top margin") << "TmIsSelected"
                                    << "setTopMargin"
                                    << "2"
                                    << "0";
        QTest::newRow("booklet") << "IsBookletTypeSelected"
                                 << "setDuplexing"
                                 << "Booklet16"
                                 << "Double";
    }

    void choicesMayDependOnWhatIsSet()
    {
        QFETCH(QString, rule);
        QFETCH(QString, setter);
        QFETCH(QString, holding);
        QFETCH(QString, other);
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"),
                         write(QStringLiteral("rules.json"), QStringLiteral(R"({"base": "Dovrik",
"rows": {"LineSpacing": ["Single", "Double", {"value": "OneAndHalf", "available": ["AlwaysInvalid", "%1"]}]},
"settings": {"AlignLow": {"available": ["%1"]}}})")
                                                                 .arg(rule))});
        const QString master = Simulator::masterCollection();
        const auto set = [&](const QString &value) {
            return simulator.error(setter, {value, master});
        };
        const auto spacings = [&] { return simulator.value("getValueList", {15}).toList().size(); };
        const QString expected =
            QStringLiteral("BrailleLineSpacing: the value is not available while %1 "
                           "does not hold")
                .arg(rule);
        const int align = simulator.value("getAlignLow", {master}).toInt();

        QCOMPARE(set(other), QString());
        QCOMPARE(spacings(), 2);
        QCOMPARE(simulator.error("setBrailleLineSpacing", {"OneAndHalf", master}), expected);
        QCOMPARE(simulator.value("getBrailleLineSpacing", {master}), QVariant("Single"));
        QCOMPARE(simulator.error("setAlignLow", {align + 1, master, false}),
                 QStringLiteral("AlignLow: cannot be changed while %1 does not hold").arg(rule));
        QCOMPARE(simulator.error("setAlignLow", {align, master, false}), QString());

        QCOMPARE(set(holding), QString());
        QCOMPARE(spacings(), 3);
        QCOMPARE(simulator.error("setBrailleLineSpacing", {"OneAndHalf", master}), QString());
        QCOMPARE(simulator.error("setAlignLow", {align + 1, master, false}), QString());

        // What is set stays, and stays in its list, until it is changed.
        QCOMPARE(set(other), QString());
        QCOMPARE(simulator.value("getBrailleLineSpacing", {master}), QVariant("OneAndHalf"));
        QCOMPARE(spacings(), 3);
        QCOMPARE(simulator.error("setBrailleLineSpacing", {"OneAndHalf", master}), QString());
        QCOMPARE(simulator.error("setBrailleLineSpacing", {"Double", master}), QString());
        QCOMPARE(spacings(), 2);
        QCOMPARE(simulator.error("setBrailleLineSpacing", {"OneAndHalf", master}), expected);

        // In one sequence, it is what is set in the end that counts.
        QVariantMap sequence{{QStringLiteral("BrailleLineSpacing"), QStringLiteral("OneAndHalf")},
                             {setter.mid(3), other}};
        QCOMPARE(simulator.error("processSequence", {sequence}), expected);
        sequence.insert(setter.mid(3), holding);
        QCOMPARE(simulator.error("processSequence", {sequence}), QString());
        QCOMPARE(simulator.value("getBrailleLineSpacing", {master}), QVariant("OneAndHalf"));
    }

    void aCapturedServiceMayTellNothing()
    {
        Simulator simulator(m_bus);
        simulator.start(
            {QStringLiteral("--profile"), write(QStringLiteral("captured.json"), nothingCaptured)});
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(simulator.value("getTabSize"), QVariant(0));
        QCOMPARE(simulator.value("getSerialNo", master), QVariant(QString()));
        QCOMPARE(simulator.value("getTopOfForm", master), QVariant(0.0));
        QCOMPARE(simulator.value("getType"), QVariant(0));
        QCOMPARE(simulator.value("getMaxWidth"), QVariant(0.0));
        QCOMPARE(simulator.value("getValueList", {7}).toList(), QVariantList());
        QCOMPARE(simulator.error("getMinValue", {QStringLiteral("AlignLow")}),
                 QStringLiteral("AlignLow has no bounds"));
        QVERIFY(!simulator.error("getWidthForPaper", {QStringLiteral("A4")}).isEmpty());
        QVERIFY(!simulator.error("getReleaseTime", {QStringLiteral("Open"), master[0]}).isEmpty());
        QCOMPARE(simulator.error("setAlignLow", {5, master[0], false}), QString());
        QCOMPARE(simulator.value("getAlignLow", master), QVariant(5));
    }

    void aCapturedServiceMayContradictItself()
    {
        write(QStringLiteral("captured.json"), nothingCaptured);
        const QString path =
            write(QStringLiteral("odd.json"), QStringLiteral(R"({"base": "captured.json",
"answers": {"getType": 99, "isArvo": true, "isKestan": true},
"rows": {"OnOff": [{"key": "Off", "value": 0}, {"key": "Off", "value": 0}]},
"settings": {
"AlignLow": {"value": 500, "min": -100, "max": 100},
"HTTPS": {"value": 7, "row": "OnOff"},
"Parity": {"value": "Mark", "row": "Parity"},
"PaperSize": {"value": "A99", "row": "Papers"}}})"));
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"), path});
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(simulator.value("getType"), QVariant(99));
        QCOMPARE(simulator.value("getAlignLow", master), QVariant(500));
        QCOMPARE(simulator.value("getHTTPS", master), QVariant(7));
        QCOMPARE(simulator.value("getParity", master), QVariant("Mark"));
        QCOMPARE(simulator.value("getPaperSize", master), QVariant("A99"));
        QCOMPARE(simulator.value("getValueList", {int(2)}).toList().size(), 2);
        QCOMPARE(simulator.error("setAlignLow", {101, master[0], false}),
                 QStringLiteral("AlignLow: 101 is not between -100 and 100"));
        QCOMPARE(simulator.error("setAlignLow", {100, master[0], false}), QString());
        QCOMPARE(simulator.error("setAlignLow", {500, master[0], false}), QString());
    }

    void anAnswerMayBeRecorded()
    {
        const QString path =
            write(QStringLiteral("recorded.json"), QStringLiteral(R"({"base": "Arvo", "recorded": [
{"method": "getTabSize", "arguments": [], "answer": 3},
{"method": "getAlignLow", "arguments": [], "error": "not now"},
{"method": "getWidthForPaper", "arguments": ["A5"], "answer": 148},
{"method": "getVolumeFineAdjustmentLimits", "arguments": [],
 "answer": {"whole": {"i": 4}, "real": {"d": 4}, "map": {"a{sv}": {"text": {"s": "x"}}}}},
{"method": "getValueList", "arguments": [1], "answer": [{"name": {"as": ["a", "b"]}}]}]})"));
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"), path});
        QCOMPARE(simulator.value("getTabSize"), QVariant(3));
        QCOMPARE(simulator.error("getAlignLow", {QStringLiteral("any collection")}),
                 QStringLiteral("not now"));
        QCOMPARE(simulator.value("getWidthForPaper", {QStringLiteral("A5")}), QVariant(148.0));
        QCOMPARE(simulator.value("getWidthForPaper", {QStringLiteral("A4")}), QVariant(210.0));
        const QVariantMap limits = simulator.value("getVolumeFineAdjustmentLimits").toMap();
        QCOMPARE(limits.value(QStringLiteral("whole")).userType(), int(QMetaType::Int));
        QCOMPARE(limits.value(QStringLiteral("real")).userType(), int(QMetaType::Double));
        QCOMPARE(limits.size(), 3);
        QCOMPARE(simulator.value("getValueList", {1})
                     .toList()
                     .value(0)
                     .toMap()
                     .value(QStringLiteral("name")),
                 QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    }

    void aProfileMayBeBasedOnAnotherFile()
    {
        write(QStringLiteral("base.json"),
              QStringLiteral("{\"base\": \"Feyra\", \"answers\": {\"getShortID\": \"base\"}}"));
        const QString path =
            write(QStringLiteral("derived.json"), QStringLiteral("{\"base\": \"base.json\"}"));
        Simulator simulator(m_bus);
        simulator.start({QStringLiteral("--profile"), path});
        QCOMPARE(simulator.value("getShortID"), QVariant("base"));
        QCOMPARE(simulator.value("isFeyra"), QVariant(true));
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
