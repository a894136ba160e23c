// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "RecordingService.h"
#include "Shell.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libconfigurationmanager/lcm.h>

#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMetaMethod>
#include <QtCore/QSet>
#include <QtDBus/QDBusMetaType>
#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

/// How a value of a type is typed, goes over the bus, and is shown.
struct Sample
{
    QString typed;
    QVariant value;
    QJsonValue shown;
};

Sample sampleOf(const QString &type)
{
    const QVariantMap map{{QStringLiteral("a"), 1}, {QStringLiteral("b"), QStringLiteral("x")}};
    const QJsonObject object = QJsonObject::fromVariantMap(map);
    const QString json = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    const QHash<QString, Sample> samples{
        {QStringLiteral("void"), {QString(), QVariant(), QJsonValue::Null}},
        {QStringLiteral("int"), {QStringLiteral("-70000"), -70000, -70000}},
        {QStringLiteral("double"), {QStringLiteral("-2.54"), -2.54, -2.54}},
        {QStringLiteral("bool"), {QStringLiteral("true"), true, true}},
        {QStringLiteral("QString"),
         {QString::fromUtf8("sch\u00f6n \u2801"), QString::fromUtf8("sch\u00f6n \u2801"),
          QString::fromUtf8("sch\u00f6n \u2801")}},
        {QStringLiteral("QVariantMap"), {json, map, object}},
        {QStringLiteral("lcm::PropList"),
         {QString(), QVariant::fromValue(lcm::PropList{{map, {}}}),
          QJsonArray{object, QJsonObject()}}},
        {QStringLiteral("ConfigurationList"),
         {QString(), QVariant::fromValue(ConfigurationList{{QStringLiteral("part"), map}}),
          QJsonArray{QJsonObject{{QStringLiteral("name"), QStringLiteral("part")},
                                 {QStringLiteral("properties"), object}}}}},
        {QStringLiteral("lcm::EmbosserType"), {QString(), 13, QStringLiteral("MarrenPlus")}},
        {QStringLiteral("lcm::FeedType"), {QString(), 3, QStringLiteral("Feeder")}},
        {QStringLiteral("lcm::HeadType"), {QString(), 4, QStringLiteral("Single")}},
        {QStringLiteral("lcm::ModelMask"), {QString(), 3, 3}}, // a combination without a key
        {QStringLiteral("lcm::Orientation"), {QString(), 1, QStringLiteral("Landscape")}},
    };
    return samples.value(type);
}

QString typeOf(const QJsonValue &described)
{
    return described[QStringLiteral("type")].toString();
}

QStringList parameterTypes(const QJsonObject &operation)
{
    QStringList types;
    for (const QJsonValue parameter : operation[QStringLiteral("parameters")].toArray())
        types.append(typeOf(parameter));
    return types;
}

int requiredParameters(const QJsonObject &operation)
{
    int required = 0;
    for (const QJsonValue parameter : operation[QStringLiteral("parameters")].toArray())
        required += parameter[QStringLiteral("optional")].toBool() ? 0 : 1;
    return required;
}

QVariant plain(const QVariant &argument)
{
    return argument.userType() == qMetaTypeId<QDBusArgument>()
               ? QVariant(qdbus_cast<QVariantMap>(argument))
               : argument;
}

} // namespace

/// Every operation of the library is in the tool, and can be called from it.
class TestToolOperations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qDBusRegisterMetaType<lcm::PropList>();
        qDBusRegisterMetaType<ConfigurationList>();
        qDBusRegisterMetaType<QPair<QString, QVariantMap>>();
        m_service.start();
    }

    void listsEveryOperationWithItsMeaning()
    {
        QSet<QByteArray> listed;
        const QJsonArray operations = list();
        for (const QJsonValue &operation : operations) {
            const QString signature = operation[QStringLiteral("signature")].toString();
            listed.insert(QMetaObject::normalizedSignature(qPrintable(signature)));
            for (const char *key : {"group", "meaning", "remoteMethod"})
                QVERIFY2(!operation[QLatin1String(key)].toString().isEmpty(),
                         qPrintable(signature));
        }
        QCOMPARE(listed.size(), operations.size());

        QSet<QByteArray> declared;
        const QMetaObject &library = ConfigurationManager::staticMetaObject;
        for (int i = library.methodOffset(); i < library.methodCount(); ++i) {
            const QMetaMethod method = library.method(i);
            if (method.methodType() == QMetaMethod::Slot &&
                !(method.attributes() & QMetaMethod::Cloned))
                declared.insert(method.methodSignature());
        }
        QCOMPARE(listed, declared);
    }

    void callsOperationsOfEveryShape_data()
    {
        QTest::addColumn<QJsonObject>("operation");
        QTest::addColumn<int>("arguments");
        QSet<QString> shapes;
        for (const auto &value : list()) {
            const QJsonObject operation = value.toObject();
            const QStringList types = parameterTypes(operation);
            for (int count = requiredParameters(operation); count <= types.size(); ++count) {
                const QString shape =
                    QStringLiteral("%1(%2) with %3")
                        .arg(typeOf(operation[QStringLiteral("result")]),
                             types.join(QStringLiteral(", ")), QString::number(count));
                if (!shapes.contains(shape))
                    QTest::newRow(qPrintable(shape)) << operation << count;
                shapes.insert(shape);
            }
        }
    }

    void callsOperationsOfEveryShape()
    {
        QFETCH(QJsonObject, operation);
        QFETCH(int, arguments);
        const QString name = operation[QStringLiteral("name")].toString();
        const QString remoteMethod = operation[QStringLiteral("remoteMethod")].toString();
        const Sample result = sampleOf(typeOf(operation[QStringLiteral("result")]));
        if (result.value.isValid())
            m_service.setAnswer(remoteMethod, Answer::value(result.value));
        m_service.takeCalls();

        QString command = QStringLiteral("embosserctl call --json ") + name;
        QVariantList expected;
        for (const QString &type : parameterTypes(operation).mid(0, arguments)) {
            const Sample sample = sampleOf(type);
            command += QStringLiteral(" '%1'").arg(sample.typed);
            expected.append(sample.value);
        }
        const Outcome outcome = m_shell.run(command);
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(outcome.status, 0);
        const QJsonObject printed = QJsonDocument::fromJson(outcome.output).object();
        QCOMPARE(printed[QStringLiteral("operation")], operation[QStringLiteral("signature")]);
        QCOMPARE(printed[QStringLiteral("result")], result.shown);

        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls[0].member, remoteMethod);
        QVariantList sent;
        for (const QVariant &argument : calls[0].arguments) {
            if (argument.toString() != QLatin1String("masterCollectionKey"))
                sent.append(plain(argument));
        }
        QCOMPARE(sent.mid(0, expected.size()), expected);
    }

    void sendsEveryTypeOfJson()
    {
        m_service.takeCalls();
        const Outcome outcome = m_shell.run(
            QStringLiteral("embosserctl call processSequence '{\"int\": -1, \"double\": 0.5, "
                           "\"big\": 3000000000, \"bool\": true, \"text\": \"x\", "
                           "\"list\": [2, \"y\"], \"map\": {\"a\": 3}}'"));
        QCOMPARE(outcome.errors, QByteArray());
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        auto sent = qdbus_cast<QVariantMap>(calls[0].arguments[0]);
        QCOMPARE(qdbus_cast<QVariantList>(sent.take(QStringLiteral("list"))),
                 (QVariantList{2, QStringLiteral("y")}));
        QCOMPARE(qdbus_cast<QVariantMap>(sent.take(QStringLiteral("map"))),
                 (QVariantMap{{QStringLiteral("a"), 3}}));
        QCOMPARE(sent, (QVariantMap{{QStringLiteral("int"), -1},
                                    {QStringLiteral("double"), 0.5},
                                    {QStringLiteral("big"), 3000000000.0},
                                    {QStringLiteral("bool"), true},
                                    {QStringLiteral("text"), QStringLiteral("x")}}));
    }

    void showsEveryTypeOfDBus_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QJsonValue>("shown");
        const auto row = [](const char *name, const QVariant &value, const QJsonValue &shown) {
            QTest::newRow(name) << value << shown;
        };
        const QVariantMap map{{QStringLiteral("a"), 3}, {QStringLiteral("b"), QVariantMap()}};
        row("BYTE", QVariant::fromValue(uchar(200)), 200);
        row("INT16", QVariant::fromValue(short(-5)), -5);
        row("UINT16", QVariant::fromValue(ushort(65535)), 65535);
        row("INT32", -70000, -70000);
        row("UINT32", 4294967295U, 4294967295.0);
        row("INT64", qlonglong(-5000000000), -5000000000.0);
        row("UINT64", qulonglong(5000000000), 5000000000.0);
        row("DOUBLE", 0.5, 0.5);
        row("BOOLEAN", true, true);
        row("STRING", QStringLiteral("x"), QStringLiteral("x"));
        row("OBJECT_PATH", QVariant::fromValue(QDBusObjectPath(QStringLiteral("/a"))),
            QStringLiteral("/a"));
        row("SIGNATURE", QVariant::fromValue(QDBusSignature(QStringLiteral("ai"))),
            QStringLiteral("ai"));
        row("VARIANT", QVariant::fromValue(QDBusVariant(7)), 7);
        row("an ARRAY of texts", QStringList{QStringLiteral("x")}, QJsonArray{QStringLiteral("x")});
        row("an ARRAY of variants", QVariantList{1, map},
            QJsonArray{1, QJsonObject::fromVariantMap(map)});
        row("a DICT", map, QJsonObject::fromVariantMap(map));
    }

    void showsEveryTypeOfDBus()
    {
        QFETCH(QVariant, value);
        QFETCH(QJsonValue, shown);
        const QString key = QStringLiteral("key");
        m_service.setAnswer(QStringLiteral("embosserInfoCmd"),
                            Answer::value(QVariantMap{{key, value}}));
        const Outcome outcome =
            m_shell.run(QStringLiteral("embosserctl call embosserInfoCmd --json"));
        const QJsonValue printed =
            QJsonDocument::fromJson(outcome.output)[QStringLiteral("result")][key];
        QCOMPARE(printed, shown);
    }

    void sendsTheGivenCollection_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("collection");
        QTest::newRow("none") << QString() << QStringLiteral("masterCollectionKey");
        QTest::newRow("one") << QStringLiteral("--collection other") << QStringLiteral("other");
        QTest::newRow("an empty one") << QStringLiteral("--collection ''") << QString();
        QTest::newRow("one like a number")
            << QStringLiteral("--collection -1") << QStringLiteral("-1");
    }

    void sendsTheGivenCollection()
    {
        QFETCH(QString, options);
        QFETCH(QString, collection);
        m_service.takeCalls();
        QCOMPARE(
            m_shell.run(QStringLiteral("embosserctl set AlignLow -3 --flag ") + options).status, 0);
        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls[0].arguments, (QVariantList{-3, collection, true}));
    }

private:
    QJsonArray list()
    {
        const Outcome outcome = m_shell.run(QStringLiteral("embosserctl list --json"));
        return QJsonDocument::fromJson(outcome.output).array();
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Shell m_shell;
};

QTEST_GUILESS_MAIN(TestToolOperations)
#include "tst_tool_operations.moc"
