// SPDX-License-Identifier: MIT

#include "common/Failure.h"
#include "library/Secret.h"
#include "library/Value.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <QtTest/QTest>

#include <limits>

using namespace tool;

namespace {

ValueType typeOf(const QString &name, const QString &enumeration)
{
    return {name, Enumeration(enumeration)};
}

/// What is said of a text or JSON value that does not stand for a value of the type.
template<typename Convert>
QString refusal(const Convert &convert)
{
    try {
        convert();
    } catch (const Failure &failure) {
        return failure.status() == ExitStatus::Usage ? failure.message()
                                                     : QStringLiteral("another status");
    }
    return QStringLiteral("accepted");
}

} // namespace

/// What texts and JSON stand for, what results are shown as, and what is secret in them.
class TestToolValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAText_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("enumeration");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("value");
        const auto row = [](const char *type, const char *enumeration, const char *text,
                            const QVariant &value) {
            QTest::addRow("%s %s", type, text)
                << QString::fromLatin1(type) << QString::fromLatin1(enumeration)
                << QString::fromUtf8(text) << value;
        };
        row("int", "", "-2147483648", std::numeric_limits<int>::min());
        row("int", "", "2147483647", std::numeric_limits<int>::max());
        row("int", "", "PrintSpeed::High", int(lcm::PrintSpeed::High));
        row("int", "Orientation", "Landscape", int(lcm::Orientation::Landscape));
        row("int", "Orientation", "7", 7);
        row("int", "Orientation", "FeedType::Feeder", int(lcm::FeedType::Feeder));
        row("double", "", "-2.54", -2.54);
        row("double", "", "1e3", 1000.0);
        row("bool", "", "true", true);
        row("bool", "", "0", false);
        row("bool", "", "yes", true);
        row("bool", "", "off", false);
        row("QString", "", "", QString::fromLatin1(""));
        row("QString", "", "-3", QStringLiteral("-3"));
        row("QString", "", "\ue000hello", QStringLiteral("\ue000hello"));
        row("QVariantMap", "", R"({"a": 1, "b": [0.5, "x"], "c": {"d": true}})",
            QVariantMap{{QStringLiteral("a"), 1},
                        {QStringLiteral("b"), QVariantList{0.5, QStringLiteral("x")}},
                        {QStringLiteral("c"), QVariantMap{{QStringLiteral("d"), true}}}});
    }

    void readsAText()
    {
        QFETCH(QString, type);
        QFETCH(QString, enumeration);
        QFETCH(QString, text);
        QFETCH(QVariant, value);
        const QVariant argument = argumentFromText(text, typeOf(type, enumeration));
        QCOMPARE(argument, value);
        QCOMPARE(argument.userType(), value.userType());
    }

    void saysWhyATextIsNoValue_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("enumeration");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *type, const char *enumeration, const char *text,
                            const char *message) {
            QTest::addRow("%s %s", type, text)
                << QString::fromLatin1(type) << QString::fromLatin1(enumeration)
                << QString::fromUtf8(text) << QString::fromUtf8(message);
        };
        row("int", "", "2147483648", "'2147483648' is not a 32-bit integer");
        row("int", "", "1.5", "'1.5' is not a 32-bit integer");
        row("int", "", "Landscape", "'Landscape' is not a 32-bit integer");
        row("int", "", "NoEnum::High", "'NoEnum::High' is not a 32-bit integer");
        row("int", "Orientation", "Lanscape",
            "'Lanscape' is not a key of Orientation or a 32-bit integer; did you mean "
            "'Landscape'?");
        row("double", "", "wide", "'wide' is not a number");
        row("bool", "", "maybe", "'maybe' is not true or false");
        row("bool", "", "2", "'2' is not true or false");
        row("QVariantMap", "", "[1]", "not a JSON object");
        row("QVariantMap", "", R"({"a": null})", "a: null cannot be sent");
        row("QVariantMap", "", R"({"a": {"b": "\u0000"}})",
            "a: b: a text with a NUL or an unpaired surrogate cannot be sent");
        row("QVariantMap", "", R"({"a": "\ud800"})",
            "a: a text with a NUL or an unpaired surrogate cannot be sent");
        row("lcm::PropList", "", "[]", "a value of type lcm::PropList cannot be given here");
    }

    void saysWhyATextIsNoValue()
    {
        QFETCH(QString, type);
        QFETCH(QString, enumeration);
        QFETCH(QString, text);
        QFETCH(QString, message);
        QCOMPARE(refusal([&] { argumentFromText(text, typeOf(type, enumeration)); }), message);
    }

    void tellsIntegersFromOtherNumbersInJson()
    {
        const ValueType type = typeOf(QStringLiteral("QVariantMap"), {});
        const QVariantMap map =
            argumentFromText(QStringLiteral(R"({"max": 2147483647, "more": 2147483648, "half": 0.5,
                                               "min": -2147483647})"),
                             type)
                .toMap();
        QCOMPARE(map[QStringLiteral("max")].userType(), int(QMetaType::Int));
        QCOMPARE(map[QStringLiteral("min")].userType(), int(QMetaType::Int));
        QCOMPARE(map[QStringLiteral("more")].userType(), int(QMetaType::Double));
        QCOMPARE(map[QStringLiteral("half")].userType(), int(QMetaType::Double));
    }

    void readsJson()
    {
        const ValueType number = typeOf(QStringLiteral("int"), {});
        const ValueType orientation = typeOf(QStringLiteral("int"), QStringLiteral("Orientation"));
        const ValueType text = typeOf(QStringLiteral("QString"), {});
        QCOMPARE(argumentFromJson(3, number), QVariant(3));
        QCOMPARE(argumentFromJson(QStringLiteral("Landscape"), orientation), QVariant(1));
        QCOMPARE(argumentFromJson(1, orientation), QVariant(1));
        QCOMPARE(argumentFromJson(QStringLiteral("3"), text), QVariant(QStringLiteral("3")));
        QVERIFY(refusal([&] { argumentFromJson(QStringLiteral("3"), number); }) !=
                QLatin1String("accepted"));
        QVERIFY(refusal([&] { argumentFromJson(3, text); }) != QLatin1String("accepted"));
        QVERIFY(refusal([&] { argumentFromJson(QJsonValue(), number); }) !=
                QLatin1String("accepted"));
    }

    void showsEnumerationsByKey()
    {
        const ValueType type = typeOf(QStringLiteral("int"), QStringLiteral("Orientation"));
        QCOMPARE(toJson(1, type), QJsonValue(QStringLiteral("Landscape")));
        QCOMPARE(toJson(77, type), QJsonValue(77));
        QCOMPARE(toJson(1, typeOf(QStringLiteral("int"), {})), QJsonValue(1));
    }

    void showsEveryTypeOfTheBus_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QJsonValue>("shown");
        const QString text = QStringLiteral("/x");
        QTest::newRow("byte") << QVariant::fromValue<uchar>(200) << QJsonValue(200);
        QTest::newRow("short") << QVariant::fromValue<short>(-3) << QJsonValue(-3);
        QTest::newRow("ushort") << QVariant::fromValue<ushort>(65535) << QJsonValue(65535);
        QTest::newRow("double") << QVariant(0.1) << QJsonValue(0.1);
        QTest::newRow("path") << QVariant::fromValue(QDBusObjectPath(text)) << QJsonValue(text);
        QTest::newRow("variant") << QVariant::fromValue(QDBusVariant(5)) << QJsonValue(5);
        QTest::newRow("strings") << QVariant(QStringList{text}) << QJsonValue(QJsonArray{text});
        QTest::newRow("map in a list") << QVariant(QVariantList{QVariantMap{{text, true}}})
                                       << QJsonValue(QJsonArray{QJsonObject{{text, true}}});
        QTest::newRow("list of maps")
            << QVariant::fromValue(lcm::PropList{{QVariantMap{{text, 1}}}})
            << QJsonValue(QJsonArray{QJsonObject{{text, 1}}});
        QTest::newRow("configuration")
            << QVariant::fromValue(ConfigurationList{{text, QVariantMap{{text, 1}}}})
            << QJsonValue(
                   QJsonArray{QJsonObject{{QStringLiteral("name"), text},
                                          {QStringLiteral("properties"), QJsonObject{{text, 1}}}}});
    }

    void showsEveryTypeOfTheBus()
    {
        QFETCH(QVariant, value);
        QFETCH(QJsonValue, shown);
        QCOMPARE(toJson(value, {}), shown);
    }

    void leavesSecretsOut()
    {
        const QString passphrase = QStringLiteral("Passphrase");
        QVERIFY(isSecret(passphrase));
        QVERIFY(!isSecret(QStringLiteral("Ssid")));
        const QJsonObject object{{passphrase, QStringLiteral("secret")},
                                 {QStringLiteral("Ssid"), QStringLiteral("x")}};
        const QJsonObject without{{passphrase, QJsonValue()},
                                  {QStringLiteral("Ssid"), QStringLiteral("x")}};
        QCOMPARE(withoutSecrets(object), QJsonValue(without));
        QCOMPARE(withoutSecrets(QJsonArray{QJsonObject{{QStringLiteral("a"), object}}}),
                 QJsonValue(QJsonArray{QJsonObject{{QStringLiteral("a"), without}}}));
        QCOMPARE(withoutSecrets(QStringLiteral("secret")), QJsonValue(QStringLiteral("secret")));
    }
};

QTEST_GUILESS_MAIN(TestToolValues)
#include "tst_tool_values.moc"
