// SPDX-License-Identifier: MIT

#include "FailedCalls.h"
#include "RecordingService.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVariant>
#include <QtTest/QTest>

#include <functional>
#include <unistd.h>

using Points = QList<QPoint>;
Q_DECLARE_METATYPE(Points)
using Tables = QList<QList<QStringList>>;
Q_DECLARE_METATYPE(QList<QStringList>)
Q_DECLARE_METATYPE(Tables)

namespace {

constexpr int mebibyte = 1024 * 1024;
// What stands before the arguments is left 1 KiB.
constexpr int mostBytes = 32 * mebibyte - 1024;

const QString outer = QStringLiteral("outer");

QVariant maps(int count)
{
    QVariant value = 1;
    while (count-- > 0)
        value = QVariantMap{{QStringLiteral("map"), value}};
    return value;
}

QVariant lists(int count)
{
    QVariant value = 1;
    while (count-- > 0)
        value = QVariantList{value};
    return value;
}

QVariant variants(int count, QVariant value = 1)
{
    while (count-- > 0)
        value = QVariant::fromValue(QDBusVariant(value));
    return value;
}

QVariant structures(int count)
{
    QDBusArgument written;
    for (int i = 0; i < count; ++i)
        written.beginStructure();
    written << 1;
    for (int i = 0; i < count; ++i)
        written.endStructure();
    return QVariant::fromValue(written);
}

QVariantList descriptors(int count)
{
    const QDBusUnixFileDescriptor descriptor(STDIN_FILENO);
    QVariantList list;
    while (count-- > 0)
        list.append(QVariant::fromValue(descriptor));
    return list;
}

QVariant typedDescriptors(int count)
{
    const QDBusUnixFileDescriptor descriptor(STDIN_FILENO);
    QList<QDBusUnixFileDescriptor> list;
    while (count-- > 0)
        list.append(descriptor);
    return QVariant::fromValue(list);
}

QString text(int length, QChar character = QLatin1Char('x'))
{
    return QString(length, character);
}

} // namespace

/// What no bus takes is refused, and everything else arrives.
///
/// A bus answers what it does not take by ending the connection, after which a process has no
/// system bus any more.
class TestArgumentLimits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<Points>();
        qDBusRegisterMetaType<QList<QStringList>>();
        qDBusRegisterMetaType<Tables>();
        m_service.start();
        QTRY_VERIFY(m_facade.isConnected());
    }

    void init()
    {
        m_facade.setCatalogsCollectionId(QString());
        m_service.setAnswer(Answer::value(true));
        m_service.forgetCalls();
    }

    /// The service is still reached, over the connection that it had.
    void cleanup()
    {
        m_facade.setCatalogsCollectionId(QString());
        m_service.setAnswer(Answer::value(42));
        QCOMPARE(m_facade.getCounter(), 42);
    }

    // A map is 3 containers, a list with variants 2, and one stands around all that is given here.
    void onlySoManyContainersAreSent_data()
    {
        QTest::addColumn<QVariant>("most");
        QTest::addColumn<QVariant>("tooMany");
        QTest::newRow("maps") << maps(19) << maps(20);
        QTest::newRow("lists") << lists(29) << lists(30);
        QTest::newRow("variants") << variants(59) << variants(60);
        QTest::newRow("an empty map") << variants(59, QVariantMap()) << variants(60, QVariantMap());
        QTest::newRow("texts") << variants(59, QStringList{outer})
                               << variants(60, QStringList{outer});
        QTest::newRow("bytes") << variants(59, QByteArray("b")) << variants(60, QByteArray("b"));
        QTest::newRow("a structure") << variants(59, QPoint()) << variants(60, QPoint());
        const auto points = QVariant::fromValue(Points{QPoint()});
        QTest::newRow("a list of structures") << variants(58, points) << variants(59, points);
        const auto tables = QVariant::fromValue(Tables{{{outer}}});
        QTest::newRow("lists of lists of texts") << variants(57, tables) << variants(58, tables);
        QTest::newRow("a written argument")
            << variants(29, structures(31)) << variants(30, structures(31));
    }

    void onlySoManyContainersAreSent()
    {
        QFETCH(QVariant, most);
        QFETCH(QVariant, tooMany);
        isSent({{outer, most}});
        isRefusedFor({{outer, tooMany}}, QStringLiteral("too many maps and lists in each other"));
    }

    void theContainersOfAReceivedPartCount_data()
    {
        QTest::addColumn<QVariant>("part");
        QTest::addColumn<int>("containers");
        QTest::newRow("structures") << structures(20) << 20;
        QTest::newRow("maps") << maps(6) << 18;
        QTest::newRow("lists") << lists(9) << 18;
        QTest::newRow("lists of lists of texts") << QVariant::fromValue(Tables{{{outer}}}) << 2;
        QTest::newRow("a list of structures") << QVariant::fromValue(Points{QPoint()}) << 2;
    }

    void theContainersOfAReceivedPartCount()
    {
        QFETCH(QVariant, part);
        QFETCH(int, containers); // around what is innermost
        m_service.setAnswer(Answer::value(QVariantMap{{outer, part}}));
        const QVariant received = m_facade.embosserInfoCmd().value(outer);
        QCOMPARE(received.userType(), qMetaTypeId<QDBusArgument>());
        init();
        isSent({{outer, variants(59 - containers, received)}});
        isRefusedFor({{outer, variants(60 - containers, received)}},
                     QStringLiteral("too many maps and lists in each other"));
    }

    void onlySoManyFileDescriptorsAreSent_data()
    {
        QTest::addColumn<QVariant>("most");
        QTest::addColumn<QVariant>("one");
        const QVariant one = descriptors(1).constFirst();
        QTest::newRow("in a list") << QVariant(descriptors(16)) << one;
        QTest::newRow("in a list of their type") << typedDescriptors(16) << one;
        QTest::newRow("then in a list of their type")
            << QVariant(descriptors(16)) << typedDescriptors(1);
        QTest::newRow("in a written argument") << QVariant(descriptors(16)) << [] {
            QDBusArgument written;
            written << QDBusUnixFileDescriptor(STDIN_FILENO);
            return QVariant::fromValue(written);
        }();
    }

    void onlySoManyFileDescriptorsAreSent()
    {
        QFETCH(QVariant, most);
        QFETCH(QVariant, one);
        isSent({{outer, most}});
        isRefusedFor({{outer, most}, {QStringLiteral("second"), one}},
                     QStringLiteral("second: more than 16 file descriptors cannot be sent"));
    }

    void theFileDescriptorsOfAReceivedPartCount()
    {
        m_service.setAnswer(Answer::value(QVariantMap{{outer, typedDescriptors(9)}}));
        const QVariant received = m_facade.embosserInfoCmd().value(outer);
        QCOMPARE(received.userType(), qMetaTypeId<QDBusArgument>());
        init();
        isSent({{outer, received}, {QStringLiteral("second"), descriptors(7)}});
        isRefusedFor({{outer, received}, {QStringLiteral("second"), descriptors(8)}},
                     QStringLiteral("second: more than 16 file descriptors cannot be sent"));
    }

    void onlySoLargeAMapIsSent_data()
    {
        QTest::addColumn<QVariant>("large");
        QTest::addColumn<QVariant>("tooLarge");
        // 16 bytes of a text's own place, and the rest before it, stand beside the value.
        const int most = mostBytes - 64;
        QTest::newRow("a text") << QVariant(text(most)) << QVariant(text(mostBytes));
        QTest::newRow("a text of two bytes a character")
            << QVariant(text(most / 2, QChar(0xE4))) << QVariant(text(mostBytes / 2, QChar(0xE4)));
        QTest::newRow("a text of three bytes a character")
            << QVariant(text(most / 3, QChar(0x2813)))
            << QVariant(text(mostBytes / 3, QChar(0x2813)));
        QTest::newRow("bytes") << QVariant(QByteArray(most, 'x'))
                               << QVariant(QByteArray(mostBytes, 'x'));
        QTest::newRow("texts") << QVariant(QStringList{text(most / 2 - 8), text(most / 2 - 8)})
                               << QVariant(QStringList{text(mostBytes / 2), text(mostBytes / 2)});
        QTest::newRow("numbers of their type")
            << QVariant::fromValue(QVector<double>(most / 8))
            << QVariant::fromValue(QVector<double>(mostBytes / 8));
        QTest::newRow("texts in a list")
            << QVariant(QVariantList{text(most / 2 - 16), text(most / 2 - 16)})
            << QVariant(QVariantList{text(mostBytes / 2), text(mostBytes / 2)});
        QTest::newRow("a key") << QVariant(QVariantMap{{text(most), 1}})
                               << QVariant(QVariantMap{{text(mostBytes), 1}});
    }

    void onlySoLargeAMapIsSent()
    {
        QFETCH(QVariant, large);
        QFETCH(QVariant, tooLarge);
        isSent({{outer, large}});
        isRefusedFor({{outer, tooLarge}}, m_tooLarge);
    }

    void onlySoManyEntriesAreSent()
    {
        // An entry: its key's length, "0000000" and the end, the signature, and the integer.
        const int bytes = 4 + 8 + 4 + 4 + 4;
        QVariantMap map;
        const auto fill = [&](int count) {
            while (map.size() < count) {
                map.insert(map.cend(), QStringLiteral("%1").arg(map.size(), 7, 10, QChar(u'0')),
                           map.size());
            }
        };
        fill((mostBytes - 64) / bytes);
        isSent(map);
        fill(mostBytes / bytes + 1);
        isRefusedFor(map, m_tooLarge);
    }

    void onlySoLongATextIsSent()
    {
        m_facade.setModel(text(mostBytes - 64));
        QCOMPARE(m_service.forgetCalls(), 1);
        isRefused("setModel(QString,bool)", {text(mostBytes), false}, m_tooLarge);

        const QString half = text(mostBytes / 2 - 64);
        m_facade.setCatalogsCollectionId(half);
        m_facade.setModel(half);
        QCOMPARE(m_service.forgetCalls(), 1);
        isRefused("setModel(QString,bool)", {text(mostBytes / 2 + 64), false}, m_tooLarge);
    }

    void onlySoLongACollectionIdIsSent()
    {
        m_facade.setCatalogsCollectionId(text(mostBytes));
        isRefused("getModel()", {}, m_tooLarge);
    }

private:
    void isSent(const QVariantMap &sequence)
    {
        LogCapture log;
        QVERIFY(m_facade.processSequence(sequence));
        QVERIFY(log.takeLines().isEmpty());
        QCOMPARE(m_service.forgetCalls(), 1);
    }

    void isRefused(const char *slot, const QVariantList &arguments, const QString &reason)
    {
        QCOMPARE(deviation(m_facade, slotOf(slot), arguments, errorLine(reason)), QString());
        QCOMPARE(m_service.forgetCalls(), 0);
    }

    /// For a reason that ends in this, after keys.
    void isRefusedFor(const QVariantMap &sequence, const QString &reason)
    {
        const ExpectedLine line{
            QStringLiteral("default"),
            QRegularExpression(QStringLiteral("^\"((outer|map): )*%1\"$").arg(reason))};
        QCOMPARE(deviation(m_facade, slotOf("processSequence(QVariantMap)"), {sequence}, line),
                 QString());
        QCOMPARE(m_service.forgetCalls(), 0);
    }

    const QString m_tooLarge = QStringLiteral("a message of more than 32 MiB cannot be sent");

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Facade m_facade{nullptr};
};

QTEST_GUILESS_MAIN(TestArgumentLimits)
#include "tst_argumentlimits.moc"
