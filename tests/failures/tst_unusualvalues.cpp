// SPDX-License-Identifier: MIT

#include "FailedCalls.h"
#include "NamedCall.h"
#include "RecordingService.h"

#include <QtCore/QLoggingCategory>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVariant>
#include <QtTest/QTest>

#include <type_traits>

/// A type that D-Bus does not know.
struct Unregistered
{
};
Q_DECLARE_METATYPE(Unregistered)

// Types of an application's own, some of which write what they should not.

struct Holder
{
    QVariant held = 1;
};
Q_DECLARE_METATYPE(Holder)

struct Integers
{
    int count = 1;
};
Q_DECLARE_METATYPE(Integers)

struct Nothing
{
};
Q_DECLARE_METATYPE(Nothing)

struct TooManyIntegers
{
};
Q_DECLARE_METATYPE(TooManyIntegers)

using HolderList = QList<Holder>;
Q_DECLARE_METATYPE(HolderList)
using VariantList = QList<QDBusVariant>;
Q_DECLARE_METATYPE(VariantList)
using VariantsByNumber = QMap<int, QDBusVariant>;
Q_DECLARE_METATYPE(VariantsByNumber)
using NumberedVariant = QPair<int, QDBusVariant>;
Q_DECLARE_METATYPE(NumberedVariant)
using Texts = QMap<QString, QString>;
Q_DECLARE_METATYPE(Texts)
using Maps = QList<QVariantMap>;
Q_DECLARE_METATYPE(Maps)

QDBusArgument &operator<<(QDBusArgument &argument, const Holder &holder)
{
    argument.beginStructure();
    argument << 1 << QDBusVariant(holder.held);
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const Integers &integers)
{
    argument.beginStructure();
    for (int i = 0; i < integers.count; ++i)
        argument << i;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const Nothing & /*nothing*/)
{
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const TooManyIntegers & /*integers*/)
{
    return argument << Integers{254};
}

// Nobody reads them.
template<typename T>
std::enable_if_t<std::is_same_v<T, Holder> || std::is_same_v<T, Integers> ||
                     std::is_same_v<T, Nothing> || std::is_same_v<T, TooManyIntegers>,
                 const QDBusArgument &>
operator>>(const QDBusArgument &argument, T & /*value*/)
{
    return argument;
}

/// Values that no one should pass get a clear error or arrive as well as they can, and neither
/// stop the process nor lose the connection.
class TestUnusualValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Holder>();
        qDBusRegisterMetaType<HolderList>();
        qDBusRegisterMetaType<Integers>();
        qDBusRegisterMetaType<Maps>();
        qDBusRegisterMetaType<Nothing>();
        qDBusRegisterMetaType<NumberedVariant>();
        qDBusRegisterMetaType<Texts>();
        qDBusRegisterMetaType<TooManyIntegers>();
        qDBusRegisterMetaType<VariantList>();
        qDBusRegisterMetaType<VariantsByNumber>();
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
        QTest::newRow("list of paths")
            << QVariant::fromValue(QList<QDBusObjectPath>{QDBusObjectPath()}) << missing;
        QTest::newRow("list of variants")
            << QVariant::fromValue(VariantList{QDBusVariant(bad)}) << missingInner;
        QTest::newRow("map of variants")
            << QVariant::fromValue(VariantsByNumber{{1, QDBusVariant(bad)}})
            << QStringLiteral("outer: 1: inner: there is no value to send");
        QTest::newRow("pair with a variant")
            << QVariant::fromValue(NumberedVariant{1, QDBusVariant(bad)}) << missingInner;
        QTest::newRow("list of maps") << QVariant::fromValue(Maps{bad}) << missingInner;
        QTest::newRow("list of enumerations")
            << QVariant::fromValue(QList<lcm::Duplex>{lcm::Duplex::Booklet})
            << QStringLiteral(
                   "outer: a value of the type QList<lcm::EnumDetail::Duplex> cannot be sent");
        QTest::newRow("enumeration in a list that Qt writes")
            << QVariant::fromValue(
                   Maps{{{QStringLiteral("inner"), QVariant::fromValue(lcm::Duplex::Booklet)}}})
            << QStringLiteral(
                   "outer: inner: a value of the type lcm::EnumDetail::Duplex cannot be sent");
        const QString badSignature =
            QStringLiteral("outer: a value of the type QDBusSignature cannot be sent");
        QTest::newRow("signature that is too long")
            << QVariant::fromValue(QDBusSignature(QString(256, QLatin1Char('i')))) << badSignature;
        QTest::newRow("signature with too many arrays")
            << QVariant::fromValue(QDBusSignature(QString(33, QLatin1Char('a')) + QLatin1Char('i')))
            << badSignature;
        QTest::newRow("signature with too many structures")
            << QVariant::fromValue(QDBusSignature(QString(33, QLatin1Char('(')) + QLatin1Char('i') +
                                                  QString(33, QLatin1Char(')'))))
            << badSignature;
        QTest::newRow("type with a signature that is too long")
            << QVariant::fromValue(TooManyIntegers())
            << QStringLiteral("outer: a value of the type TooManyIntegers cannot be sent");
        QTest::newRow("type that writes less than it says")
            << QVariant::fromValue(Integers{0})
            << QStringLiteral("outer: a value of the type Integers cannot be sent");
        QTest::newRow("type that writes more than it says")
            << QVariant::fromValue(Integers{2})
            << QStringLiteral("outer: a value of the type Integers cannot be sent");
        QDBusArgument halfWritten;
        halfWritten.beginStructure();
        halfWritten << 1;
        QTest::newRow("half-written argument") << QVariant::fromValue(halfWritten) << missing;
        QDBusArgument number;
        number << 1;
        number.beginStructure();
        QTest::newRow("half-written argument behind a number")
            << QVariant::fromValue(number) << missing;
    }

    void aMapThatCannotBeSentIsRefused()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, reason);
        const QVariantMap sequence{{QStringLiteral("before"), 1},
                                   {QStringLiteral("outer"), value},
                                   {QStringLiteral("zzz"), 2}};
        QCOMPARE(deviation(m_facade, slotOf("processSequence(QVariantMap)"), {sequence},
                           errorLine(reason)),
                 QString());
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void aTypeThatWritesNothingIsRefused_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("type");
        QTest::newRow("nothing") << QVariant::fromValue(Nothing()) << QStringLiteral("Nothing");
        QTest::newRow("an empty variant")
            << QVariant::fromValue(Holder{QVariant()}) << QStringLiteral("Holder");
        QTest::newRow("an empty variant, in a list")
            << QVariant::fromValue(HolderList{Holder{QVariant()}}) << QStringLiteral("Holder");
    }

    void aTypeThatWritesNothingIsRefused()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, type);
        LogCapture log;
        QVERIFY(!m_facade.processSequence({{QStringLiteral("outer"), value}}));
        QStringList texts;
        for (const LogLine &line : log.takeLines()) {
            // Qt warns as well.
            if (line.type != QtWarningMsg)
                texts.append(line.text);
        }
        QCOMPARE(texts,
                 QStringList{
                     QStringLiteral("\"outer: a value of the type %1 cannot be sent\"").arg(type)});
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void whatCanBeSentArrives_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("hash") << QVariant(QVariantHash{{QStringLiteral("inner"), 1}});
        QTest::newRow("configuration list")
            << QVariant::fromValue(ConfigurationList{{QStringLiteral("name"), QVariantMap()}});
        QTest::newRow("list of integers") << QVariant::fromValue(QList<int>{1, 2});
        QTest::newRow("texts by text")
            << QVariant::fromValue(Texts{{QStringLiteral("key"), QStringLiteral("text")}});
        QTest::newRow("list of maps") << QVariant::fromValue(Maps{{{QStringLiteral("inner"), 1}}});
        QTest::newRow("variants by number")
            << QVariant::fromValue(VariantsByNumber{{1, QDBusVariant(2)}});
        QTest::newRow("pair") << QVariant::fromValue(NumberedVariant{1, QDBusVariant(2)});
        QTest::newRow("own type") << QVariant::fromValue(Holder());
        QTest::newRow("own type with a map")
            << QVariant::fromValue(Holder{QVariantMap{{QStringLiteral("inner"), 1}}});
        QTest::newRow("list of an own type") << QVariant::fromValue(HolderList{Holder(), Holder()});
        QTest::newRow("date") << QVariant(QDate(2026, 1, 2));
        QTest::newRow("rectangle") << QVariant(QRectF(1, 2, 3, 4));
        QTest::newRow("bytes") << QVariant(QByteArray("bytes"));
        QTest::newRow("path") << QVariant::fromValue(QDBusObjectPath(QStringLiteral("/path")));
        QTest::newRow("longest signature")
            << QVariant::fromValue(QDBusSignature(QString(255, QLatin1Char('i'))));
        QTest::newRow("signature with most arrays") << QVariant::fromValue(
            QDBusSignature(QString(32, QLatin1Char('a')) + QLatin1Char('i')));
        QDBusArgument written;
        written << Integers{2};
        QTest::newRow("written argument") << QVariant::fromValue(written);
    }

    void whatCanBeSentArrives()
    {
        QFETCH(QVariant, value);
        m_service.setAnswer(Answer::value(true));
        LogCapture log;
        QVERIFY(m_facade.processSequence({{QStringLiteral("outer"), value}}));
        QVERIFY(log.takeLines().isEmpty());
        QCOMPARE(arguments().size(), 1);
    }

    void anEnumerationInAMapArrivesAsItsInteger()
    {
        const auto integerOf = [this](const QVariant &value) {
            m_service.setAnswer(Answer::value(true));
            m_facade.processSequence({{QStringLiteral("value"), value}});
            const auto arrived = qdbus_cast<QVariantMap>(arguments().value(0));
            return arrived.value(QStringLiteral("value"));
        };
        QCOMPARE(integerOf(QVariant::fromValue(lcm::BrailleDimension::Graph_2p0)), QVariant(5));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::BrailleType::EightDot)), QVariant(8));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::Duplex::Booklet)), QVariant(4));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::EmbosserType::Kestan)), QVariant(3));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::ModelMask::All)), QVariant(255));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::HeadType::Sideway)), QVariant(3));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::FeedType::Tray)), QVariant(4));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::Orientation::Portrait)), QVariant(0));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::PrintSpeed::Draft)), QVariant(2500));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::ValidateCommand::ModelIsMarren)), QVariant(38));
        QCOMPARE(integerOf(QVariant::fromValue(lcm::RowValueList::TabSize)), QVariant(6));
        // Without a key.
        QCOMPARE(integerOf(QVariant::fromValue(lcm::ModelMask(-5))), QVariant(-5));
    }

    void anEnumerationInsideOthersArrivesAsItsInteger_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("asInteger");
        const QVariant enumeration = QVariant::fromValue(lcm::Duplex::Booklet);
        const auto map = [](const QVariant &value) {
            return QVariantMap{{QStringLiteral("a"), 1}, {QStringLiteral("b"), value}};
        };
        const auto configuration = [&](const QVariant &value) {
            return ConfigurationList{{QStringLiteral("name"), map(value)}};
        };
        const auto add = [&](const char *name, const auto &with) {
            QTest::newRow(name) << QVariant::fromValue(with(enumeration))
                                << QVariant::fromValue(with(4));
        };
        add("map", map);
        add("hash", [](const QVariant &value) {
            return QVariantHash{{QStringLiteral("inner"), value}};
        });
        add("list", [](const QVariant &value) { return QVariantList{1, value}; });
        add("variant", [](const QVariant &value) { return QDBusVariant(value); });
        add("property list", [&](const QVariant &value) {
            lcm::PropList list;
            list.maps = {map(1), map(value)};
            return list;
        });
        add("configuration list", configuration);
        add("pair", [&](const QVariant &value) { return configuration(value).constFirst(); });
        add("list in a map in a variant",
            [&](const QVariant &value) { return QDBusVariant(map(QVariantList{value})); });
    }

    void anEnumerationInsideOthersArrivesAsItsInteger()
    {
        QFETCH(QVariant, value);
        QFETCH(QVariant, asInteger);
        m_service.setAnswer(Answer::value(true));
        const QString key = QStringLiteral("outer");
        const QVariantMap given{{key, value}};
        QVERIFY(m_facade.processSequence(given));
        QVERIFY(m_facade.processSequence({{key, asInteger}}));
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 2);
        QCOMPARE(described(calls.at(0).arguments.constFirst()),
                 described(calls.at(1).arguments.constFirst()));
        QCOMPARE(given.first(), value); // the caller's own is left as it is
    }

    void aPartThatIsHalfReadIsRefused_data()
    {
        QTest::addColumn<int>("read");
        QTest::newRow("at an entry") << 0;
        QTest::newRow("at the second entry") << 1;
        QTest::newRow("at the end") << 2;
    }

    void aPartThatIsHalfReadIsRefused()
    {
        QFETCH(int, read);
        const QVariantMap inner{{QStringLiteral("a"), 1}, {QStringLiteral("b"), 2}};
        m_service.setAnswer(Answer::value(QVariantMap{{QStringLiteral("inner"), inner}}));
        const auto part = m_facade.embosserInfoCmd().first().value<QDBusArgument>();
        part.beginMap();
        for (int i = 0; i < read; ++i) {
            QString key;
            QDBusVariant value;
            const QDBusArgument &entry = part;
            entry.beginMapEntry();
            entry >> key >> value;
            entry.endMapEntry();
        }
        m_service.takeCalls();
        const QVariantMap sequence{{QStringLiteral("outer"), QVariant::fromValue(part)}};
        const QString reason =
            read == inner.size()
                ? QStringLiteral("outer: there is no value to send")
                : QStringLiteral("outer: a value of the type QDBusArgument cannot be sent");
        QCOMPARE(deviation(m_facade, slotOf("processSequence(QVariantMap)"), {sequence},
                           errorLine(reason)),
                 QString());
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void theEndOfAListIsRefused_data()
    {
        QTest::addColumn<QVariant>("list");
        QTest::newRow("empty") << QVariant(QVariantList());
        QTest::newRow("of numbers") << QVariant::fromValue(QList<double>());
        QTest::newRow("with elements") << QVariant(QVariantList{1, 2});
    }

    void theEndOfAListIsRefused()
    {
        QFETCH(QVariant, list);
        m_service.setAnswer(Answer::value(QVariantMap{{QStringLiteral("inner"), list}}));
        const auto part = m_facade.embosserInfoCmd().first().value<QDBusArgument>();
        part.beginArray();
        while (!part.atEnd())
            part.asVariant();
        m_service.takeCalls();
        LogCapture log;
        QVERIFY(!m_facade.processSequence({{QStringLiteral("outer"), QVariant::fromValue(part)}}));
        // Qt may have said before that the part cannot be written to.
        QCOMPARE(log.takeLines().constLast().text,
                 QStringLiteral("\"outer: there is no value to send\""));
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void aPartThatHasBeenLookedThroughCanStillBeRead()
    {
        const QVariantMap inner{{QStringLiteral("a"), 1}, {QStringLiteral("b"), 2}};
        const QVariantList list{inner, QVariant::fromValue(QDBusVariant(1))};
        m_service.setAnswer(Answer::value(QVariantMap{{QStringLiteral("inner"), list}}));
        const QVariantMap received = m_facade.embosserInfoCmd();
        const auto elements = received.first().value<QDBusArgument>();
        elements.beginArray();
        m_service.setAnswer(Answer::value(true));
        // The first element, which is a variant.
        QVERIFY(
            m_facade.processSequence({{QStringLiteral("outer"), QVariant::fromValue(elements)}}));
        QDBusVariant first;
        elements >> first;
        QCOMPARE(qdbus_cast<QVariantMap>(first.variant()), inner);
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
    /// What a value holds, with the types in it.
    static QString described(const QVariant &value)
    {
        QString text;
        QDebug(&text) << value;
        return text;
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
