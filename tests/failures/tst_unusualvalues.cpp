// SPDX-License-Identifier: MIT

#include "FailedCalls.h"
#include "NamedCall.h"
#include "RecordingService.h"

#include <QtCore/QLoggingCategory>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVariant>
#include <QtTest/QTest>

/// A type that D-Bus does not know.
struct Unregistered
{
};
Q_DECLARE_METATYPE(Unregistered)

namespace {

QVariantMap nestedMaps(int depth)
{
    QVariantMap map{{QStringLiteral("value"), 1}};
    while (--depth > 0)
        map = {{QStringLiteral("map"), map}};
    return map;
}

QVariant nestedLists(int depth)
{
    QVariant value = 1;
    while (depth-- > 0)
        value = QVariantList{value};
    return value;
}

QVariant nestedVariants(int depth)
{
    QVariant value = 1;
    while (depth-- > 0)
        value = QVariant::fromValue(QDBusVariant(value));
    return value;
}

/// The maps of a received value in each other, of which each but the innermost has only one entry.
int depthOf(const QVariant &received)
{
    const auto map = qdbus_cast<QVariantMap>(received);
    return map.contains(QStringLiteral("map")) ? 1 + depthOf(map.first()) : 1;
}

} // namespace

/// Values that no one should pass get a clear error or arrive as well as they can, and neither
/// stop the process nor lose the connection.
class TestUnusualValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_service.start();
        QTRY_VERIFY(m_facade.isConnected());
    }

    void init()
    {
        m_service.setAnswer(Answer());
        m_service.takeCalls();
    }

    /// The service is still reached, over the connection that it had.
    void cleanup()
    {
        m_service.setAnswer(Answer::value(42));
        QCOMPARE(m_facade.getCounter(), 42);
    }

    void aMapThatCannotBeSentIsRefused_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("reason");
        const QVariantMap bad{{QStringLiteral("inner"), QVariant()}};
        const QString missing = QStringLiteral("outer: there is no value to send");
        const QString missingInner = QStringLiteral("outer: inner: there is no value to send");

        QTest::newRow("no value") << QVariant() << missing;
        QTest::newRow("unregistered type")
            << QVariant::fromValue(Unregistered())
            << QStringLiteral("outer: a value of the type Unregistered cannot be sent");
        QTest::newRow("float") << QVariant(1.0F)
                               << QStringLiteral("outer: a value of the type float cannot be sent");
        QTest::newRow("in a map") << QVariant(bad) << missingInner;
        QTest::newRow("in a hash")
            << QVariant(QVariantHash{{QStringLiteral("inner"), QVariant()}}) << missingInner;
        QTest::newRow("in a list") << QVariant(QVariantList{1, QVariant()}) << missing;
        QTest::newRow("in a property list")
            << QVariant::fromValue(lcm::PropList{{bad}}) << missingInner;
        QTest::newRow("in a configuration list")
            << QVariant::fromValue(ConfigurationList{{QStringLiteral("name"), bad}})
            << missingInner;
        QTest::newRow("in a variant")
            << QVariant::fromValue(QDBusVariant(QVariant(bad))) << missingInner;
        QTest::newRow("empty argument") << QVariant::fromValue(QDBusArgument()) << missing;
        QDBusArgument emptyStructure;
        emptyStructure.beginStructure();
        emptyStructure.endStructure();
        QTest::newRow("empty structure") << QVariant::fromValue(emptyStructure) << missing;
        QTest::newRow("empty object path") << QVariant::fromValue(QDBusObjectPath()) << missing;
        QTest::newRow("empty signature") << QVariant::fromValue(QDBusSignature()) << missing;
        QTest::newRow("no file descriptor")
            << QVariant::fromValue(QDBusUnixFileDescriptor()) << missing;
        QTest::newRow("variants too deep")
            << nestedVariants(60) << QStringLiteral("outer: too many maps and lists in each other");
        QTest::newRow("lists too deep")
            << nestedLists(31) << QStringLiteral("outer: too many maps and lists in each other");
    }

    void aMapThatCannotBeSentIsRefused()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, reason);
        const QVariantMap sequence{{QStringLiteral("before"), 1},
                                   {QStringLiteral("outer"), value},
                                   {QStringLiteral("zzz"), 2}};
        QCOMPARE(deviation(m_facade, processSequence(), {sequence}, errorLine(reason)), QString());
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void aMapThatIsNestedTooDeeplyIsRefused()
    {
        // A map is 3 containers, of the 64 that D-Bus allows in each other.
        QString tooDeep = QStringLiteral("too many maps and lists in each other");
        for (int i = 0; i < 21; ++i)
            tooDeep.prepend(QStringLiteral("map: "));
        QCOMPARE(deviation(m_facade, processSequence(), {nestedMaps(22)}, errorLine(tooDeep)),
                 QString());

        m_service.setAnswer(Answer::value(true));
        QVERIFY(m_facade.processSequence(nestedMaps(20)));
        QCOMPARE(depthOf(arguments().constFirst()), 20);
    }

    void aPartOfAReceivedValueCanBeSentOn()
    {
        const QVariantMap inner{{QStringLiteral("text"), QStringLiteral("a text")}};
        m_service.setAnswer(Answer::value(QVariantMap{{QStringLiteral("inner"), inner}}));
        const QVariantMap received = m_facade.embosserInfoCmd();
        QCOMPARE(received.first().userType(), qMetaTypeId<QDBusArgument>());

        m_service.takeCalls();
        m_service.setAnswer(Answer::value(true));
        QVERIFY(m_facade.processSequence(received));
        const auto arrived = qdbus_cast<QVariantMap>(arguments().constFirst());
        QCOMPARE(qdbus_cast<QVariantMap>(arrived.first()), inner);
    }

    void aPartOfAReceivedValueMayNotMakeAMapTooDeep()
    {
        m_service.setAnswer(Answer::value(nestedMaps(15)));
        QVariantMap sequence = m_facade.embosserInfoCmd();
        QCOMPARE(sequence.first().userType(), qMetaTypeId<QDBusArgument>());
        m_service.takeCalls();
        for (int depth = 16; depth <= 20; ++depth)
            sequence = {{QStringLiteral("map"), sequence}};
        m_service.setAnswer(Answer::value(true));
        QVERIFY(m_facade.processSequence(sequence));
        QCOMPARE(depthOf(arguments().constFirst()), 20);

        sequence = {{QStringLiteral("map"), QVariantMap{{QStringLiteral("map"), sequence}}}};
        LogCapture log;
        QVERIFY(!m_facade.processSequence(sequence));
        const QVector<LogLine> lines = log.takeLines();
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.at(0).text.contains(QLatin1String("too many maps and lists in each other")));
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void everyTextArrives_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("arrives");
        QTest::newRow("null") << QString() << QStringLiteral("");
        QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("");
        // Qt writes texts up to a NUL, which D-Bus does not allow in them.
        QTest::newRow("with NUL") << QStringLiteral("before") + QChar() + QStringLiteral("after")
                                  << QStringLiteral("before");
        QTest::newRow("lone surrogates")
            << QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b") + QChar(0xDC00)
            << QStringLiteral("a?b?");
        QTest::newRow("noncharacters") << QString(QChar(0xFFFF)) << QString(QChar(0xFFFF));
        const QString braille = QStringLiteral("\u2813\U0001F680");
        QTest::newRow("beyond Latin") << braille << braille;
    }

    void everyTextArrives()
    {
        QFETCH(QString, text);
        QFETCH(QString, arrives);
        m_facade.setCatalogsCollectionId(text);
        for (const QMetaMethod &slot : allSlots()) {
            QVariantList given = sampleArguments(slot);
            for (QVariant &argument : given) {
                if (argument.type() == QVariant::String)
                    argument = text;
            }
            LogCapture log;
            callByName(m_facade, slot, given);
            const QVector<RecordedCall> calls = m_service.takeCalls();
            QVERIFY2(calls.size() == 1, slot.methodSignature().constData());
            for (const QVariant &argument : calls.constFirst().arguments) {
                if (argument.type() == QVariant::String)
                    QVERIFY2(argument.toString() == arrives, slot.methodSignature().constData());
            }
        }
    }

    void aTextOfAMegabyteArrives()
    {
        const QString megabyte(1024 * 1024, QLatin1Char('x'));
        m_facade.setCatalogsCollectionId(megabyte);
        m_facade.setModel(megabyte);
        QCOMPARE(arguments(), (QVariantList{megabyte, megabyte, false}));

        m_service.setAnswer(Answer::value(true));
        QVERIFY(m_facade.processSequence({{megabyte, megabyte}}));
        QCOMPARE(qdbus_cast<QVariantMap>(arguments().constFirst()),
                 (QVariantMap{{megabyte, megabyte}}));
    }

    void noValueReachesTheLog_data()
    {
        QTest::addColumn<Answer>("answer");
        const QVariantMap map{{QStringLiteral("passphrase"), m_secret}};
        QTest::newRow("no value") << Answer();
        QTest::newRow("error") << Answer::error(QStringLiteral("tests.Error"),
                                                QStringLiteral("No such setting"));
        QTest::newRow("text") << Answer::value(m_secret);
        QTest::newRow("list") << Answer::value(QStringList{m_secret});
        QTest::newRow("map") << Answer::value(map);
        QTest::newRow("property list") << Answer::value(QVariant::fromValue(lcm::PropList{{map}}));
    }

    void noValueReachesTheLog()
    {
        QFETCH(Answer, answer);
        m_service.setAnswer(answer);
        m_facade.setCatalogsCollectionId(m_secret);
        QLoggingCategory::setFilterRules(QStringLiteral("*=true"));
        const QVector<LogLine> lines = linesOfCallsWithTheSecret();
        QLoggingCategory::setFilterRules(QString());
        QVERIFY(!lines.isEmpty());
        for (const LogLine &line : lines)
            QVERIFY2(!line.text.contains(m_secret), qPrintable(line.text));
    }

private:
    static QMetaMethod processSequence()
    {
        const QMetaObject &metaObject = Facade::staticMetaObject;
        return metaObject.method(metaObject.indexOfSlot("processSequence(QVariantMap)"));
    }

    /// The arguments of the only call that has arrived.
    QVariantList arguments()
    {
        const QVector<RecordedCall> calls = m_service.takeCalls();
        return calls.size() == 1 ? calls.constFirst().arguments : QVariantList();
    }

    QVector<LogLine> linesOfCallsWithTheSecret()
    {
        const QString key = QStringLiteral("passphrase");
        LogCapture log;
        for (const QMetaMethod &slot : allSlots()) {
            QVariantList given = sampleArguments(slot);
            for (QVariant &argument : given) {
                if (argument.type() == QVariant::String)
                    argument = m_secret;
                else if (argument.type() == QVariant::Map)
                    argument = QVariantMap{{key, m_secret}};
            }
            callByName(m_facade, slot, given);
        }
        m_facade.processSequence({{key, m_secret}, {QStringLiteral("z"), QVariant()}});
        m_facade.processSequence(
            {{key, m_secret}, {QStringLiteral("z"), QVariant::fromValue(QDBusObjectPath())}});
        return log.takeLines();
    }

    const QString m_secret = QStringLiteral("correct horse battery staple");
    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Facade m_facade{nullptr};
};

QTEST_GUILESS_MAIN(TestUnusualValues)
#include "tst_unusualvalues.moc"
