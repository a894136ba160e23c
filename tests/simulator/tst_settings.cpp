// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtTest/QTest>

class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_simulator.start(); }

    void aCollectionHasValuesOfItsOwn()
    {
        QCOMPARE(m_simulator.error("setLetterFont", {3, QStringLiteral("one"), false}), QString());
        QCOMPARE(m_simulator.value("getLetterFont", {QStringLiteral("one")}), QVariant(3));
        QCOMPARE(m_simulator.value("getLetterFont", {QStringLiteral("other")}), QVariant(0));
        QCOMPARE(m_simulator.value("getLetterFont", {QString()}), QVariant(0));
        QCOMPARE(m_simulator.error("setLetterFont", {4, QString(), false}), QString());
        QCOMPARE(m_simulator.value("getLetterFont", {QString()}), QVariant(4));
        QCOMPARE(m_simulator.value("getLetterFont", {QStringLiteral("one")}), QVariant(3));
    }

    void whatIsReadWithoutCollectionIsOfTheDevice()
    {
        const QString path = QStringLiteral("/tables");
        QCOMPARE(m_simulator.error("setTablePath", {path, QStringLiteral("any"), false}),
                 QString());
        QCOMPARE(m_simulator.value("getTablePath"), QVariant(path));
        QCOMPARE(m_simulator.error("setReleaseLevel", {5, QStringLiteral("other"), false}),
                 QString());
        QCOMPARE(m_simulator.value("getReleaseLevel"), QVariant(5));
        QCOMPARE(m_simulator.error("setKeepFormat", {true}), QString());
        QCOMPARE(m_simulator.value("getKeepFormat"), QVariant(true));
    }

    void aSettingOfAnotherRemoteNameHasTheNameOfItsOperation()
    {
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(m_simulator.error("setStepLength", QVariantList{7} + master), QString());
        QCOMPARE(m_simulator.value("getStepLength", master), QVariant(7));
        QCOMPARE(m_simulator.value("getIntValue",
                                   QVariantList{QStringLiteral("PaperStepLength")} + master),
                 QVariant(7));
        QVERIFY(
            !m_simulator.error("getIntValue", QVariantList{QStringLiteral("StepLength")} + master)
                 .isEmpty());
        QCOMPARE(m_simulator.error("setPrintHeadOffset", QVariantList{1.5} + master), QString());
        QCOMPARE(m_simulator.value("getPrintHeadOffset", master), QVariant(1.5));
    }

    void whatIsSetAsDoubleIsReadAsInt_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<double>("set");
        QTest::addColumn<int>("read");
        QTest::newRow("size") << "FileSize" << 1234.0 << 1234;
        QTest::newRow("largest size") << "FileSize" << 2147483647.0 << 2147483647;
        QTest::newRow("checksum") << "FileCRC" << 4711.0 << 4711;
        QTest::newRow("checksum with the sign bit") << "FileCRC" << 4023233417.0 << -271733879;
        QTest::newRow("largest checksum") << "FileCRC" << 4294967295.0 << -1;
        QTest::newRow("checksum as it is read") << "FileCRC" << -1.0 << -1;
        QTest::newRow("checksum with the sign bit alone")
            << "FileCRC" << 2147483648.0 << std::numeric_limits<int>::min();
        QTest::newRow("the same as it is read")
            << "FileCRC" << -2147483648.0 << std::numeric_limits<int>::min();
    }

    void whatIsSetAsDoubleIsReadAsInt()
    {
        QFETCH(QString, setting);
        QFETCH(double, set);
        QFETCH(int, read);
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(m_simulator.error("set" + setting, QVariantList{set} + master), QString());
        QCOMPARE(m_simulator.value("get" + setting, master), QVariant(read));
        QCOMPARE(m_simulator.value("getParamIntValue", QVariantList{setting} + master),
                 QVariant(read));
    }

    void aValueThatCannotBeIsRefused_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("said");
        const QString c = Simulator::masterCollection();
        QTest::newRow("above") << "setOddHighPulseTime" << QVariantList{1501, c, false}
                               << "OddHighPulseTime: 1501 is not between 100 and 1500 us";
        QTest::newRow("below") << "setAlignLow" << QVariantList{-101, c, false}
                               << "AlignLow: -101 is not between -100 and 100";
        QTest::newRow("double") << "setTopOfForm" << QVariantList{100.01, c, false}
                                << "TopOfForm: 100.01 is not between 0 and 100 mm";
        QTest::newRow("not a number") << "setTopOfForm" << QVariantList{qQNaN(), c, false}
                                      << "TopOfForm: nan is not between 0 and 100 mm";
        QTest::newRow("infinite") << "setTopOfForm" << QVariantList{qInf(), c, false}
                                  << "TopOfForm: inf is not between 0 and 100 mm";
        QTest::newRow("no whole number")
            << "setFileSize" << QVariantList{1.5, c} << "FileSize: 1.5 is not a whole number";
        QTest::newRow("negative size") << "setFileSize" << QVariantList{-1.0, c}
                                       << "FileSize: -1 is not between 0 and 2147483647 bytes";
        QTest::newRow("checksum of more than 32 bits")
            << "setFileCRC" << QVariantList{4294967296.0, c}
            << "FileCRC: 4294967296 is not between -2147483648 and 4294967295";
        QTest::newRow("negative checksum of more than 32 bits")
            << "setFileCRC" << QVariantList{-2147483649.0, c}
            << "FileCRC: -2147483649 is not between -2147483648 and 4294967295";
        QTest::newRow("number of no list")
            << "setTabSize" << QVariantList{9} << "TabSize: 9 is none of: 1, 2, 3, 4, 5, 6, 7, 8";
        QTest::newRow("text of no list")
            << "setParity" << QVariantList{QStringLiteral("odd"), c, false}
            << "Parity: the value is none of: None, Even, Odd";
        QTest::newRow("too long") << "setSsid" << QVariantList{QString(33, QLatin1Char('x')), c}
                                  << " is longer than 32 bytes";
        QTest::newRow("too long in bytes")
            << "setSsid" << QVariantList{QString(17, QChar(0xe9)), c} << " is longer than 32 bytes";
        QTest::newRow("key") << "setReleaseTime"
                             << QVariantList{QStringLiteral("Opne"), 1, c, false}
                             << "there is no setting \"ReleaseTime/Opne\"; the keys are: Close, "
                                "Open, Tray";
        QTest::newRow("value of a key")
            << "setReleaseTime" << QVariantList{QStringLiteral("Open"), 501, c, false}
            << "ReleaseTime/Open: 501 is not between 0 and 500 ms";
        QTest::newRow("counter") << "setCounter" << QVariantList{1, 9, c}
                                 << "there is no setting \"Counter/9\"";
        QTest::newRow("by name") << "setIntValue"
                                 << QVariantList{QStringLiteral("AlignLow"), 101, c, false}
                                 << "AlignLow: 101 is not between -100 and 100";
        QTest::newRow("by a delta")
            << "setIntDeltaValue"
            << QVariantList{QStringLiteral("OddLowPulseTime"), 2147483647, c, false}
            << "OddLowPulseTime: 2147484267 is not between 100 and 1500 us";
        QTest::newRow("by a delta below int")
            << "setIntDeltaValue"
            << QVariantList{QStringLiteral("AlignLow"), std::numeric_limits<int>::min(), c, false}
            << "AlignLow: -2147483648 is not between -100 and 100";
        QTest::newRow("by the name of a text")
            << "setIntValue" << QVariantList{QStringLiteral("Model"), 1, c, false}
            << "Model is not an integer, but of D-Bus type s";
    }

    void aValueThatCannotBeIsRefused()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, said);
        const QString message = m_simulator.error(method, arguments);
        QVERIFY2(message.contains(said), qPrintable(message));
    }

    void theBoundsThemselvesAreAccepted()
    {
        const QString master = Simulator::masterCollection();
        const QString name = QStringLiteral("OddHighPulseTime");
        for (const char *bound : {"getMinValue", "getMaxValue"}) {
            const int number = m_simulator.value(bound, {name}).toInt();
            QCOMPARE(m_simulator.error("setOddHighPulseTime", {number, master, false}), QString());
            QCOMPARE(m_simulator.value("getOddHighPulseTime", {master}), QVariant(number));
        }
    }

    void aSecretIsInNoMessage()
    {
        const QString secret(70, QLatin1Char('s'));
        const QString master = Simulator::masterCollection();
        QCOMPARE(m_simulator.error("setPassphrase", {secret, master}),
                 QStringLiteral("Passphrase: the value is longer than 63 bytes"));
        const QString shortSecret = QStringLiteral("open sesame");
        QCOMPARE(m_simulator.error("setPassphrase", {shortSecret, master}), QString());
        QCOMPARE(m_simulator.value("getPassphrase", {master}), QVariant(shortSecret));
        const QString other = QStringLiteral("other");
        QCOMPARE(m_simulator.error("setPassphrase", {shortSecret, other}), QString());
        QCOMPARE(m_simulator.error("setSsid", {QStringLiteral("theirs"), other}), QString());
        QCOMPARE(m_simulator.value("getValueSentence", {QStringLiteral("Passphrase")}),
                 QVariant("The passphrase of the wireless network: set"));
        const QDBusMessage report = m_simulator.call("currentConfigurationCmd");
        QCOMPARE(report.signature(), QStringLiteral("a(sa{sv})"));
        const auto parts =
            qdbus_cast<QList<QPair<QString, QVariantMap>>>(report.arguments().constFirst());
        QVERIFY(parts.size() > 5);
        for (const auto &part : parts) {
            // What is set in the master collection stands in the families.
            QVERIFY(part.first != QStringLiteral("collection ") + master);
            QVERIFY(!part.second.contains(QStringLiteral("Passphrase")));
            for (const QVariant &value : part.second)
                QVERIFY(!value.toString().contains(shortSecret));
        }
        QCOMPARE(parts.constLast().first, QStringLiteral("collection other"));
        QCOMPARE(parts.constLast().second,
                 QVariantMap({{QStringLiteral("Ssid"), QStringLiteral("theirs")}}));
    }

    void settingsAreReadAndWrittenByName()
    {
        const QString c = QStringLiteral("by name");
        const QString name = QStringLiteral("OddLowPulseTime");
        const int initial = m_simulator.value("getOddLowPulseTime", {c}).toInt();
        QCOMPARE(m_simulator.value("getIntDeltaValue", {name, c}), QVariant(0));
        QCOMPARE(m_simulator.value("setIntDeltaValue", {name, 10, c, false}), QVariant(true));
        QCOMPARE(m_simulator.value("getOddLowPulseTime", {c}), QVariant(initial + 10));
        QCOMPARE(m_simulator.value("getIntDeltaValue", {name, c}), QVariant(10));
        QCOMPARE(m_simulator.value("setIntValue", {name, 700, c, false}), QVariant(true));
        QCOMPARE(m_simulator.value("getIntValue", {name, c}), QVariant(700));
        QCOMPARE(m_simulator.value("getParamIntValue", {name, c}), QVariant(700));
        QCOMPARE(m_simulator.value("getParamFloatValue", {name, c}), QVariant(700.0));
        QCOMPARE(m_simulator.error("setTopOfForm", {12.6, c, false}), QString());
        QCOMPARE(m_simulator.value("getParamFloatValue", {QStringLiteral("TopOfForm"), c}),
                 QVariant(12.6));
        QCOMPARE(m_simulator.value("getParamIntValue", {QStringLiteral("TopOfForm"), c}),
                 QVariant(13));
        QCOMPARE(m_simulator.value("getPrecision", {QStringLiteral("TopOfForm")}), QVariant(2));
        QVERIFY(!m_simulator.error("getParamFloatValue", {QStringLiteral("Model"), c}).isEmpty());
        QVERIFY(!m_simulator.error("getMinValue", {QStringLiteral("Model")}).isEmpty());
        QVERIFY(!m_simulator.error("getIntValue", {QStringLiteral("TopOfForm"), c}).isEmpty());
    }

    void aDeltaIsRelativeToTheValueOfTheCallsCollection()
    {
        const QString c = QStringLiteral("with another paper");
        const QString name = QStringLiteral("PaperStepLengthFraction");
        QCOMPARE(m_simulator.value("getIntValue", {name, Simulator::masterCollection()}),
                 QVariant(54));
        QCOMPARE(m_simulator.error("setPaperSize", {QStringLiteral("A4"), c}), QString());
        QCOMPARE(m_simulator.value("setIntDeltaValue", {name, 1, c, false}), QVariant(true));
        QCOMPARE(m_simulator.value("getIntValue", {name, c}), QVariant(51));
        QCOMPARE(m_simulator.value("getIntDeltaValue", {name, c}), QVariant(1));
    }

    void theWholeNumbersWithinTheBoundsAreTold_data()
    {
        QTest::addColumn<int>("least");
        QTest::addColumn<int>("most");
        QTest::newRow("PhStepDist") << 0 << 1;
        QTest::newRow("PFStepAdjustment") << -1 << 1;
        QTest::newRow("TopOfForm") << 0 << 100;
        QTest::newRow("TabSize") << 1 << 8; // a list
    }

    void theWholeNumbersWithinTheBoundsAreTold()
    {
        QFETCH(int, least);
        QFETCH(int, most);
        const QVariantList name{QString::fromLatin1(QTest::currentDataTag())};
        QCOMPARE(m_simulator.value("getMinValue", name), QVariant(least));
        QCOMPARE(m_simulator.value("getMaxValue", name), QVariant(most));
    }

    void keyedSettingsAreKeptPerKey()
    {
        const QString c = Simulator::masterCollection();
        QCOMPARE(m_simulator.value("setReleaseTime", {QStringLiteral("Open"), 77, c, false}),
                 QVariant(true));
        QCOMPARE(m_simulator.value("getReleaseTime", {QStringLiteral("Open"), c}), QVariant(77));
        QCOMPARE(m_simulator.value("getReleaseTime", {QStringLiteral("Close"), c}), QVariant(15));
        QCOMPARE(m_simulator.value("setSensorState", {QStringLiteral("CoverOpen"), true, c, false}),
                 QVariant(true));
        QCOMPARE(m_simulator.value("getSensorState", {QStringLiteral("CoverOpen"), c}),
                 QVariant(true));
        QCOMPARE(m_simulator.value("getSensorState", {QStringLiteral("PaperOut"), c}),
                 QVariant(false));
        QCOMPARE(m_simulator.error("setCounter", {5, 2, c}), QString());
        QCOMPARE(m_simulator.value("getCounter", {2, c}), QVariant(5));
        QCOMPARE(m_simulator.value("getCounter", {1, c}), QVariant(0));
    }

    void aSequenceIsAppliedWhole()
    {
        const QVariantMap sequence{{QStringLiteral("TabSize"), 8},
                                   {QStringLiteral("Ssid"), QStringLiteral("net")},
                                   {QStringLiteral("PaperLength"), 200.0},
                                   {QStringLiteral("PaperWidth"), 150.0},
                                   {QStringLiteral("PaperSize"), QStringLiteral("A4")},
                                   {QStringLiteral("KeepFormat"), true},
                                   {QStringLiteral("TopOfForm"), 5}};
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(m_simulator.value("processSequence", {sequence}), QVariant(true));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(8));
        QCOMPARE(m_simulator.value("getSsid", master), QVariant("net"));
        QCOMPARE(m_simulator.value("getPaperSize", master), QVariant("A4"));
        // The order of their names does not matter: the paper comes first.
        QCOMPARE(m_simulator.value("getPaperLength", master), QVariant(200.0));
        QCOMPARE(m_simulator.value("getPaperWidth", master), QVariant(150.0));
        QCOMPARE(m_simulator.value("getKeepFormat"), QVariant(true));
        QCOMPARE(m_simulator.value("getTopOfForm", master), QVariant(5.0));
        QCOMPARE(m_simulator.value("processSequence", {QVariantMap()}), QVariant(true));
    }

    void processSequenceIsAtomic_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("said");
        QTest::newRow("unknown") << "Zebra" << QVariant(1) << "there is no setting \"Zebra\"";
        QTest::newRow("out of bounds") << "TabSize" << QVariant(99) << "TabSize: 99 is none of";
        QTest::newRow("of another type")
            << "TabSize" << QVariant("8") << "TabSize: takes a value of D-Bus type i";
        QTest::newRow("no whole number")
            << "TabSize" << QVariant(2.5) << "TabSize: 2.5 is none of: 1, 2, ";
        QTest::newRow("no whole number within bounds")
            << "AlignHigh" << QVariant(2.5) << "AlignHigh: 2.5 is not a whole number";
        QTest::newRow("more than an int")
            << "AlignHigh" << QVariant(1e30) << "AlignHigh: 1e+30 is not between -100 and 100";
        QTest::newRow("a number for a truth value")
            << "KeepFormat" << QVariant(1) << "KeepFormat: takes a value of D-Bus type b";
        QTest::newRow("a list") << "TabSize" << QVariant(QStringList(QStringLiteral("8")))
                                << "TabSize: takes a value of D-Bus type i";
    }

    void processSequenceIsAtomic()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, value);
        QFETCH(QString, said);
        // One before and one after it, in the order of names.
        const QVariantMap sequence{
            {QStringLiteral("AlignLow"), 5}, {name, value}, {QStringLiteral("ZZ"), 1}};
        QVariantMap valid = sequence;
        valid.remove(QStringLiteral("ZZ"));
        const QString message = m_simulator.error("processSequence", {valid});
        QVERIFY2(message.contains(said), qPrintable(message));
        QVERIFY(!m_simulator.error("processSequence", {sequence}).isEmpty());
        QCOMPARE(m_simulator.value("getAlignLow", {Simulator::masterCollection()}), QVariant(0));
    }

    void aCollectionIsDuplicatedAndRemoved()
    {
        const QString one = QStringLiteral("one");
        const QString two = QStringLiteral("two");
        QCOMPARE(m_simulator.value("duplicateCatalog", {one, two}),
                 QVariant(false)); // there is none
        QCOMPARE(m_simulator.error("setLetterFont", {3, one, false}), QString());
        QCOMPARE(m_simulator.value("duplicateCatalog", {one, two}), QVariant(true));
        QCOMPARE(m_simulator.value("getLetterFont", {two}), QVariant(3));
        QCOMPARE(m_simulator.error("setLetterFont", {4, two, false}), QString());
        QCOMPARE(m_simulator.value("getLetterFont", {one}), QVariant(3));
        QCOMPARE(m_simulator.value("duplicateCatalog", {one, two}),
                 QVariant(false)); // there is one
        QCOMPARE(m_simulator.value("getLetterFont", {two}), QVariant(4));
        QCOMPARE(m_simulator.value("removeCatalogsCollection", {two}), QVariant(true));
        QCOMPARE(m_simulator.value("getLetterFont", {two}), QVariant(0));
        QCOMPARE(m_simulator.value("removeCatalogsCollection", {two}), QVariant(false));
        QCOMPARE(m_simulator.value("removeCatalogsCollection", {QString()}), QVariant(false));
        QCOMPARE(m_simulator.value("removeCatalogsCollection", {Simulator::masterCollection()}),
                 QVariant(false));
        QCOMPARE(m_simulator.value("duplicateCatalog", {Simulator::masterCollection(), two}),
                 QVariant(true));
        QCOMPARE(m_simulator.value("removeCatalogsCollection", {two}), QVariant(true));
    }

    void thePageCounterCountsWhatSeveralClientsAdd()
    {
        const int clients = 4;
        const int each = 50;
        QVector<QDBusPendingCall> calls;
        for (int client = 0; client < clients; ++client) {
            const QDBusConnection connection =
                m_bus.connect(QStringLiteral("client %1").arg(client));
            for (int i = 0; i < each; ++i) {
                QDBusMessage message = QDBusMessage::createMethodCall(
                    Simulator::serviceName(), QStringLiteral("/"), Simulator::serviceName(),
                    QStringLiteral("incrementPageCounter"));
                message << Simulator::masterCollection();
                calls << connection.asyncCall(message);
            }
        }
        for (QDBusPendingCall &call : calls) {
            call.waitForFinished();
            QVERIFY(!call.isError());
        }
        QCOMPARE(m_simulator.value("getCounter", {1, Simulator::masterCollection()}),
                 QVariant(clients * each));
    }

    void aCounterThatIsFullIsAnError()
    {
        const QString master = Simulator::masterCollection();
        const int most = std::numeric_limits<int>::max();
        QCOMPARE(m_simulator.error("setCounter", {most, 1, master}), QString());
        QCOMPARE(m_simulator.error("incrementPageCounter", {master}),
                 QStringLiteral("Counter/1: 2147483648 is not between 0 and 2147483647"));
        QCOMPARE(m_simulator.value("getCounter", {1, master}), QVariant(most));
    }

    void theServiceDescribesItsParameters()
    {
        const QVariantMap map = m_simulator
                                    .value("getTableMetadata", {QStringLiteral("settings"),
                                                                QStringLiteral("TopOfForm")})
                                    .toMap();
        QCOMPARE(map.value(QStringLiteral("type")), QVariant("d"));
        QCOMPARE(map.value(QStringLiteral("min")), QVariant(0.0));
        QCOMPARE(map.value(QStringLiteral("max")), QVariant(100.0));
        QCOMPARE(map.value(QStringLiteral("default")), QVariant(12.7));
        QCOMPARE(map.value(QStringLiteral("unit")), QVariant("mm"));
        QCOMPARE(map.value(QStringLiteral("meaning")).toString().left(11),
                 QStringLiteral("the top of "));
        QCOMPARE(
            m_simulator.value("getTableMetadata", {QStringLiteral("papers"), QStringLiteral("A4")})
                .toMap()
                .value(QStringLiteral("width")),
            QVariant(210.0));
        QCOMPARE(m_simulator.error("getTableMetadata", {QStringLiteral("no"), QString()}),
                 QStringLiteral(
                     "there is no table \"no\"; there are: cells, lineSpacings, page, papers, "
                     "settings"));
        QCOMPARE(m_simulator.value("getProposition", {QStringLiteral("Baudrate")}),
                 QVariant("The baud rate of the serial line"));
        QCOMPARE(m_simulator.value("getValueSentence", {QStringLiteral("Baudrate")}),
                 QVariant("The baud rate of the serial line: 9600"));
        const auto shown = [this](const char *name) {
            return m_simulator.value("getValueSentence", {QString::fromLatin1(name)})
                .toString()
                .section(QStringLiteral(": "), 1);
        };
        QCOMPARE(shown("AllowMultipleHammers"), QStringLiteral("On"));
        QCOMPARE(shown("Parity"), QStringLiteral("None"));
        QCOMPARE(shown("TopOfForm"), QStringLiteral("12.7 mm"));
        QCOMPARE(m_simulator.value("returnDocSettingKey", {QStringLiteral("PageNumber"), 1}),
                 QVariant("Top"));
        for (const int position : {-1, 3}) {
            QVERIFY(
                m_simulator.error("returnDocSettingKey", {QStringLiteral("PageNumber"), position})
                    .endsWith(QStringLiteral("there is no choice %1").arg(position)));
        }
        const QVariantMap limits = m_simulator.value("getVolumeFineAdjustmentLimits").toMap();
        QCOMPARE(m_simulator.error("setVolumeFineAdjustment",
                                   {limits.value(QStringLiteral("max")), QString(), false}),
                 QString());
        QVERIFY(!m_simulator
                     .error("setVolumeFineAdjustment",
                            {limits.value(QStringLiteral("max")).toInt() + 1, QString(), false})
                     .isEmpty());
    }

    void theHammerBatchStringHasWhatWasSet()
    {
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(m_simulator.error("setHammerBatchParameters", QVariantList{1234} + master),
                 QString());
        QVERIFY(m_simulator.value("buildHammerBatchString")
                    .toString()
                    .contains(QLatin1String("HammerBatchParameters=1234")));
    }

private:
    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
