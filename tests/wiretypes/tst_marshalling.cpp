// SPDX-License-Identifier: MIT

#include "LogCapture.h"
#include "RecordingService.h"
#include "ServiceName.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <QtTest/QTest>

#include <optional>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

const QVariantMap unorderedMap{{QStringLiteral("zebra"), 1},
                               {QStringLiteral("Zebra"), 2},
                               {QStringLiteral("ant"), 3},
                               {QStringLiteral("\u00e4nt"), 4},
                               {QString(), 5}};
const QStringList ascendingKeys{QString(), QStringLiteral("Zebra"), QStringLiteral("ant"),
                                QStringLiteral("zebra"), QStringLiteral("\u00e4nt")};

const QVariantMap innerMap{{QStringLiteral("depth"), 2}};
const QVariantMap outerMap{{QStringLiteral("inner"), innerMap}, {QStringLiteral("depth"), 1}};

lcm::PropList propList(const QVector<QVariantMap> &maps)
{
    lcm::PropList list;
    list.maps = maps;
    return list;
}

/// The keys of an a{sv}, in the order in which they stand on the wire.
QStringList readKeys(const QDBusArgument &map)
{
    QStringList keys;
    map.beginMap();
    while (!map.atEnd()) {
        QString key;
        QDBusVariant value;
        map.beginMapEntry();
        map >> key >> value;
        map.endMapEntry();
        keys.append(key);
    }
    map.endMap();
    return keys;
}

} // namespace

class TestMarshalling : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_service.start(); }

    void init()
    {
        QTRY_VERIFY(m_manager.isConnected());
        m_log.emplace();
    }

    void cleanup()
    {
        const QVector<LogLine> unexpected = m_log->takeLines();
        m_log.reset();
        QVERIFY2(unexpected.isEmpty(), qPrintable(unexpected.value(0).text));
    }

    void aTypeIsWrittenWithItsSignature_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("signature");
        const auto add = [](const char *what, const QVariant &value, const char *signature) {
            QTest::newRow(what) << value << QString::fromLatin1(signature);
        };
        add("no map at all", QVariant::fromValue(lcm::PropList()), "aa{sv}");
        add("an empty map", QVariant::fromValue(propList({QVariantMap()})), "aa{sv}");
        add("maps", QVariant::fromValue(propList({outerMap, unorderedMap})), "aa{sv}");
        add("a pair", QVariant::fromValue(qMakePair(QStringLiteral("name"), outerMap)), "(sa{sv})");
        add("an empty configuration", QVariant::fromValue(ConfigurationList()), "a(sa{sv})");
        add("a configuration",
            QVariant::fromValue(ConfigurationList{{QStringLiteral("name"), outerMap}}),
            "a(sa{sv})");
    }

    void aTypeIsWrittenWithItsSignature()
    {
        QFETCH(const QVariant, value);
        QFETCH(const QString, signature);
        const RecordedCall call = send(value);
        QCOMPARE(call.signature, signature);
        QCOMPARE(call.arguments.size(), 1);
    }

    void aPropListArrivesAsItWasWritten()
    {
        const QVector<QVariantMap> maps{unorderedMap, QVariantMap(), innerMap};
        const RecordedCall call = send(QVariant::fromValue(propList(maps)));
        QCOMPARE(qdbus_cast<lcm::PropList>(call.arguments.at(0)).maps, maps);
    }

    void theKeysOfAPropListAreWrittenInAscendingOrder()
    {
        const RecordedCall call = send(QVariant::fromValue(propList({unorderedMap})));
        const auto argument = call.arguments.at(0).value<QDBusArgument>();
        argument.beginArray();
        QCOMPARE(readKeys(argument), ascendingKeys);
        QVERIFY(argument.atEnd());
        argument.endArray();
    }

    void theKeysOfAConfigurationAreWrittenInAscendingOrder()
    {
        const RecordedCall call =
            send(QVariant::fromValue(ConfigurationList{{QStringLiteral("name"), unorderedMap}}));
        const auto argument = call.arguments.at(0).value<QDBusArgument>();
        QString name;
        argument.beginArray();
        argument.beginStructure();
        argument >> name;
        QCOMPARE(name, QStringLiteral("name"));
        QCOMPARE(readKeys(argument), ascendingKeys);
        argument.endStructure();
        argument.endArray();
    }

    void readingAPropListAppends()
    {
        const RecordedCall call = send(QVariant::fromValue(propList({unorderedMap})));
        lcm::PropList target = propList({innerMap});
        call.arguments.at(0).value<QDBusArgument>() >> target;
        QCOMPARE(target.maps, (QVector<QVariantMap>{innerMap, unorderedMap}));
    }

    void readingAConfigurationReplaces()
    {
        const ConfigurationList sent{{QStringLiteral("new"), innerMap}};
        const RecordedCall call = send(QVariant::fromValue(sent));
        ConfigurationList target{{QStringLiteral("old"), QVariantMap()}};
        call.arguments.at(0).value<QDBusArgument>() >> target;
        QCOMPARE(target, sent);
    }

    void aValueListIsReadInItsOrder_data()
    {
        QTest::addColumn<QVector<QVariantMap>>("maps");
        QTest::newRow("no map at all") << QVector<QVariantMap>();
        QTest::newRow("an empty map") << QVector<QVariantMap>{QVariantMap()};
        QTest::newRow("maps") << QVector<QVariantMap>{unorderedMap, QVariantMap(), innerMap};
    }

    void aValueListIsReadInItsOrder()
    {
        QFETCH(const QVector<QVariantMap>, maps);
        m_service.setAnswer(Answer::value(QVariant::fromValue(propList(maps))));
        QCOMPARE(m_manager.getValueList(1).maps, maps);
    }

    void aConfigurationIsReadInItsOrder_data()
    {
        QTest::addColumn<ConfigurationList>("configuration");
        QTest::newRow("empty") << ConfigurationList();
        QTest::newRow("an empty section")
            << ConfigurationList{{QStringLiteral("name"), QVariantMap()}};
        QTest::newRow("sections") << ConfigurationList{{QStringLiteral("z"), unorderedMap},
                                                       {QStringLiteral("a"), innerMap},
                                                       {QStringLiteral("z"), QVariantMap()},
                                                       {QString(), innerMap}};
    }

    void aConfigurationIsReadInItsOrder()
    {
        QFETCH(const ConfigurationList, configuration);
        m_service.setAnswer(Answer::value(QVariant::fromValue(configuration)));
        QCOMPARE(m_manager.currentConfigurationCmd(), configuration);
    }

    void aMapIsRead_data()
    {
        QTest::addColumn<QVariantMap>("map");
        QTest::newRow("empty") << QVariantMap();
        QTest::newRow("one entry") << innerMap;
        QTest::newRow("entries") << unorderedMap;
    }

    void aMapIsRead()
    {
        QFETCH(const QVariantMap, map);
        m_service.setAnswer(Answer::value(map));
        QCOMPARE(m_manager.embosserInfoCmd(), map);
    }

    void aSimpleValueKeepsItsType_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("y") << QVariant::fromValue(uchar(200));
        QTest::newRow("b") << QVariant(true);
        QTest::newRow("n") << QVariant::fromValue(short(-2));
        QTest::newRow("q") << QVariant::fromValue(ushort(65535));
        QTest::newRow("i") << QVariant(-2147483647);
        QTest::newRow("u") << QVariant(4294967295U);
        QTest::newRow("x") << QVariant(-9007199254740993LL);
        QTest::newRow("t") << QVariant(18446744073709551615ULL);
        QTest::newRow("d") << QVariant(0.1);
        QTest::newRow("s") << QVariant(QStringLiteral("br\u00e4ille"));
        QTest::newRow("as") << QVariant(QStringList{QStringLiteral("b"), QStringLiteral("a")});
        QTest::newRow("as, empty") << QVariant(QStringList());
        QTest::newRow("ay") << QVariant(QByteArray("\0\xff", 2));
    }

    void aSimpleValueKeepsItsType()
    {
        QFETCH(const QVariant, value);
        const QString key = QStringLiteral("key");
        const QVariantMap map{{key, value}};

        m_service.setAnswer(Answer::value(map));
        const QVariant inMap = m_manager.embosserInfoCmd().value(key);
        QCOMPARE(inMap.userType(), value.userType());
        QCOMPARE(inMap, value);

        m_service.setAnswer(Answer::value(QVariant::fromValue(propList({map}))));
        const QVariant inList = m_manager.getValueList(1).at(0).value(key);
        QCOMPARE(inList.userType(), value.userType());
        QCOMPARE(inList, value);
    }

    void aNestedStructureIsLeftToTheReceiver()
    {
        const QString key = QStringLiteral("inner");

        m_service.setAnswer(Answer::value(outerMap));
        const QVariant inMap = m_manager.embosserInfoCmd().value(key);
        QCOMPARE(inMap.userType(), qMetaTypeId<QDBusArgument>());
        QCOMPARE(qdbus_cast<QVariantMap>(inMap), innerMap);

        m_service.setAnswer(Answer::value(QVariant::fromValue(propList({outerMap}))));
        const QVariant inValueList = m_manager.getValueList(1).at(0).value(key);
        QCOMPARE(inValueList.userType(), qMetaTypeId<QDBusArgument>());
        QCOMPARE(qdbus_cast<QVariantMap>(inValueList), innerMap);

        m_service.setAnswer(Answer::value(
            QVariant::fromValue(ConfigurationList{{QStringLiteral("name"), outerMap}})));
        const QVariant inConfiguration =
            m_manager.currentConfigurationCmd().constFirst().second.value(key);
        QCOMPARE(inConfiguration.userType(), qMetaTypeId<QDBusArgument>());
        QCOMPARE(qdbus_cast<QVariantMap>(inConfiguration), innerMap);
    }

    void aReplyOfAnotherSignatureIsAnEmptyListAndOneLine_data()
    {
        QTest::addColumn<QVariant>("reply");
        QTest::newRow("aa{sv}") << QVariant::fromValue(propList({innerMap}));
        QTest::newRow("(sa{sv})") << QVariant::fromValue(
            qMakePair(QStringLiteral("name"), innerMap));
        QTest::newRow("a{sv}") << QVariant(outerMap);
        QTest::newRow("as") << QVariant(QStringList{QStringLiteral("name")});
        QTest::newRow("s") << QVariant(QStringLiteral("name"));
        QTest::newRow("i") << QVariant(1);
        QTest::newRow("nothing") << QVariant();
    }

    void aReplyOfAnotherSignatureIsAnEmptyListAndOneLine()
    {
        QFETCH(const QVariant, reply);
        m_service.setAnswer(reply.isValid() ? Answer::value(reply) : Answer());
        QCOMPARE(m_manager.currentConfigurationCmd(), ConfigurationList());
        const QVector<LogLine> lines = m_log->takeLines();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).type, QtCriticalMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("default"));
    }

    void aConfigurationIsNoValueList()
    {
        m_service.setAnswer(Answer::value(
            QVariant::fromValue(ConfigurationList{{QStringLiteral("name"), innerMap}})));
        QVERIFY(m_manager.getValueList(1).isEmpty());
        QCOMPARE(m_log->takeLines().size(), 1);
    }

    void aSequenceIsSentWithItsKeysInAscendingOrder()
    {
        m_service.setAnswer(Answer::value(true));
        m_service.takeCalls();
        QVERIFY(m_manager.processSequence(unorderedMap));
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls.at(0).signature, QStringLiteral("a{sv}"));
        QCOMPARE(readKeys(calls.at(0).arguments.at(0).value<QDBusArgument>()), ascendingKeys);
    }

    void aSequenceKeepsItsValues_data()
    {
        QTest::addColumn<QVariantMap>("sequence");
        QTest::newRow("empty") << QVariantMap();
        QTest::newRow("simple values")
            << QVariantMap{{QStringLiteral("b"), true},
                           {QStringLiteral("d"), 0.5},
                           {QStringLiteral("i"), -1},
                           {QStringLiteral("s"), QStringLiteral("text")},
                           {QStringLiteral("as"), QStringList{QStringLiteral("text")}}};
    }

    void aSequenceKeepsItsValues()
    {
        QFETCH(const QVariantMap, sequence);
        m_service.setAnswer(Answer::value(true));
        m_service.takeCalls();
        QVERIFY(m_manager.processSequence(sequence));
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls.at(0).signature, QStringLiteral("a{sv}"));
        QCOMPARE(qdbus_cast<QVariantMap>(calls.at(0).arguments.at(0)), sequence);
    }

private:
    /// Sends one value to the service, and returns what has arrived there.
    RecordedCall send(const QVariant &value)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(serviceName, QStringLiteral("/"),
                                                              serviceName, QStringLiteral("take"));
        message.setArguments({value});
        m_service.setAnswer(Answer());
        m_service.takeCalls();
        m_connection.call(message);
        return m_service.takeCalls().value(0);
    }

    std::optional<LogCapture> m_log;
    const PrivateBus m_bus;
    QDBusConnection m_connection = m_bus.connect(QStringLiteral("sender"));
    RecordingService m_service{m_bus};
    ConfigurationManager m_manager{nullptr};
};

QTEST_GUILESS_MAIN(TestMarshalling)
#include "tst_marshalling.moc"
