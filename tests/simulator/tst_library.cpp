// SPDX-License-Identifier: MIT

#include "LogCapture.h"
#include "NamedCall.h"
#include "Simulator.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;

/// The library as the client.
class TestLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_simulator.start({QStringLiteral("--usb"), m_medium.path()});
        m_manager = std::make_unique<ConfigurationManager>(nullptr);
        QVERIFY(m_manager->isConnected());
        for (const QMetaMethod &slot : slotsOf(*m_manager->metaObject()))
            m_slots.insert(slot.methodSignature(), slot);
    }

    void everyOperationThatIsNoSetterIsAnswered()
    {
        // What those with arguments are asked about.
        const QHash<QByteArray, QVariantList> arguments{
            {"getCounter(int)", {1}},
            {"getReleaseTime(QString)", {QStringLiteral("Open")}},
            {"getSensorState(QString)", {QStringLiteral("PaperIn")}},
            {"getValueList(int)", {2}},
            {"getTableMetadata(QString,QString)",
             {QStringLiteral("settings"), QStringLiteral("Baudrate")}},
            {"getInterlineBackRowOffset(QString,QString)",
             {QStringLiteral("Text_2p5"), QStringLiteral("Single")}},
            {"getLineToLine(double,int,double,double,QString,QString,QString,QString)",
             {2.5, 3, 6.0, 10.0, QString(), QString(), QString(), QString()}},
            {"returnDocSettingKey(QString,int)", {QStringLiteral("Duplexing"), 0}},
            {"processSequence(QVariantMap)", {QVariantMap{{QStringLiteral("TabSize"), 3}}}},
            {"duplicateCatalog(QString,QString)",
             {Simulator::masterCollection(), QStringLiteral("copy")}},
            {"removeCatalogsCollection(QString)", {QStringLiteral("copy")}}};
        const QString parameter = QStringLiteral("OddLowPulseTime");
        const QHash<QByteArray, QVariantList> byParameter{
            {"getProposition(QString)", {parameter}},    {"getValueSentence(QString)", {parameter}},
            {"getMinValue(QString)", {parameter}},       {"getMaxValue(QString)", {parameter}},
            {"getPrecision(QString)", {parameter}},      {"getIntValue(QString)", {parameter}},
            {"getIntDeltaValue(QString)", {parameter}},  {"getParamIntValue(QString)", {parameter}},
            {"getParamFloatValue(QString)", {parameter}}};
        const QByteArrayList ofCells{"getIsInterline(QString)", "getCellToCell(QString)",
                                     "getHorizontalDotToDot(QString)",
                                     "getVerticalDotToDot(QString)"};

        LogCapture log;
        QVERIFY(!m_slots.isEmpty());
        for (auto slot = m_slots.begin(); slot != m_slots.end(); ++slot) {
            const QByteArray &signature = slot.key();
            // The service is gone for a while after it: it stands in a test of its own.
            if (signature.startsWith("set") || signature == "restartServicesAfterReset()")
                continue;
            QVariantList given = arguments.value(signature, byParameter.value(signature));
            if (given.isEmpty() && slot->parameterCount() == 1)
                given = {ofCells.contains(signature) ? QStringLiteral("Text_2p5")
                                                     : QStringLiteral("A4")};
            QCOMPARE(given.size(), slot->parameterCount());
            callByName(*m_manager, *slot, given);
            QCOMPARE(linesAbout(signature, log), QStringList());
        }
    }

    void everySetterIsReadByItsGetter()
    {
        LogCapture log;
        QByteArrayList withoutGetter;
        for (const QMetaMethod &setter : qAsConst(m_slots)) {
            const QByteArray name = setter.name().mid(3);
            const bool isVariant = (setter.attributes() & QMetaMethod::Cloned) != 0;
            if (!setter.name().startsWith("set") || isVariant)
                continue;
            const QMetaMethod getter = m_slots.value("get" + name + "()");
            const QByteArrayList types = setter.parameterTypes();
            const bool hasFlag = types.mid(1) == QByteArrayList{"bool"};
            if (types.value(0) != getter.typeName() || (types.size() > 1 && !hasFlag)) {
                withoutGetter << setter.name();
                continue;
            }
            for (const QVariant &value : valuesOf(QString::fromLatin1(name))) {
                callByName(*m_manager, setter,
                           hasFlag ? QVariantList{value, false} : QVariantList{value});
                QCOMPARE(callByName(*m_manager, getter, {}), value);
            }
            QCOMPARE(linesAbout(name, log), QStringList());
        }
        // They have one with arguments, of another type, or none.
        QCOMPARE(withoutGetter, (QByteArrayList{"setCounter", "setFileCRC", "setFileSize",
                                                "setHammerBatchParameters", "setIntDeltaValue",
                                                "setIntValue", "setLayoutFromPath", "setLogger",
                                                "setReleaseTime", "setSensorState"}));
    }

    void theCollectionIdIsKeptApart()
    {
        m_manager->setLetterFont(1);
        m_manager->setCatalogsCollectionId(QStringLiteral("other"));
        QCOMPARE(m_manager->getLetterFont(), 0);
        m_manager->setLetterFont(2);
        m_manager->setCatalogsCollectionId(Simulator::masterCollection());
        QCOMPARE(m_manager->getLetterFont(), 1);
    }

    void aRefusalIsOneLineThatNamesSettingValueAndRange()
    {
        LogCapture log;
        m_manager->setOddHighPulseTime(9000);
        const QVector<LogLine> lines = log.takeLines();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).text,
                 QStringLiteral("\"OddHighPulseTime: 9000 is not between 100 and 1500 us\""));
    }

    void aRestartIsSeenAsLeavingAndComing()
    {
        int left = 0;
        int came = 0;
        connect(m_manager.get(), &ConfigurationManager::disconnected, this, [&] { ++left; });
        connect(m_manager.get(), &ConfigurationManager::connected, this, [&] { ++came; });
        m_manager->restartServicesAfterReset();
        QTRY_COMPARE(left, 1);
        QTRY_COMPARE(came, 1);
        QCOMPARE(m_manager->getType(), lcm::EmbosserType::Kestan);
    }

private:
    static QStringList linesAbout(const QByteArray &what, LogCapture &log)
    {
        QStringList lines;
        for (const LogLine &line : log.takeLines())
            lines += QString::fromLatin1(what) + QLatin1String(": ") + line.text;
        return lines;
    }

    /// Values that the service says a setting can have: all choices, or the bounds.
    QVariantList valuesOf(const QString &name) const
    {
        const QVariantMap about = m_manager->getTableMetadata(QStringLiteral("settings"), name);
        const QString type = about.value(QStringLiteral("type")).toString();
        if (type == QLatin1String("b"))
            return {true, false};
        const QString row = about.value(QStringLiteral("row")).toString();
        if (row.isEmpty() && type == QLatin1String("s"))
            return {QStringLiteral("some text"), QString(QChar(0x283f)), QString("")};
        if (row.isEmpty()) {
            QVariantList bounds{about.value(QStringLiteral("min")),
                                about.value(QStringLiteral("max"))};
            for (QVariant &bound : bounds)
                bound.convert(type == QLatin1String("i") ? QMetaType::Int : QMetaType::Double);
            return bounds;
        }
        const auto rows = QMetaEnum::fromType<lcm::EnumDetail::RowValueList>();
        QVariantList values;
        for (const QVariantMap &choice :
             m_manager->getValueList(rows.keyToValue(row.toLatin1().constData())))
            values << choice.value(type == QLatin1String("i") ? QStringLiteral("value")
                                                              : QStringLiteral("key"));
        return values;
    }

    PrivateBus m_bus;
    const QTemporaryDir m_medium;
    Simulator m_simulator{m_bus};
    std::unique_ptr<ConfigurationManager> m_manager;
    QMap<QByteArray, QMetaMethod> m_slots;
};

QTEST_GUILESS_MAIN(TestLibrary)
#include "tst_library.moc"
