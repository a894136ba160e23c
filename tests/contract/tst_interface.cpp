// SPDX-License-Identifier: MIT

#include <contract/Interface.h>

#include <QtTest/QtTest>

using contract::Interface;
using contract::Method;
using contract::Role;
using contract::Setting;

namespace {

const Interface &interface()
{
    return Interface::configurationManager();
}

QVector<Role> rolesOf(const char *method)
{
    QVector<Role> roles;
    for (const contract::Argument &argument : interface().method(QLatin1String(method))->arguments)
        roles.append(argument.role);
    return roles;
}

QStringList settingsThat(bool (Setting::*hold)() const)
{
    QStringList names;
    for (const Setting &setting : interface().settings()) {
        if ((setting.*hold)())
            names.append(setting.name);
    }
    names.sort();
    return names;
}

} // namespace

/// What programs read off the introspection XML.
class TestInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMethodIsDescribed()
    {
        QCOMPARE(interface().name(), QStringLiteral("com.tavelornbraille.ConfigurationManager"));
        const Method *method = interface().method(QStringLiteral("setStepLength"));
        QVERIFY(method);
        QCOMPARE(method->operation, QStringLiteral("setPaperStepLength(int)"));
        QCOMPARE(method->operationName(), QStringLiteral("setPaperStepLength"));
        QCOMPARE(method->signature(), QStringLiteral("is"));
        QCOMPARE(method->setting, QStringLiteral("PaperStepLength"));
        QVERIFY(method->writes);
        QCOMPARE(method->sentence, QStringLiteral("Sets %1.").arg(method->meaning));
        QVERIFY(!interface().method(QStringLiteral("setPaperStepLength")));
    }

    void everyArgumentHasItsRole()
    {
        QCOMPARE(rolesOf("setIntValue"),
                 (QVector<Role>{Role::Setting, Role::Value, Role::CollectionId, Role::Flag}));
        QCOMPARE(rolesOf("setSensorState"),
                 (QVector<Role>{Role::Key, Role::Value, Role::CollectionId, Role::Flag}));
        QCOMPARE(rolesOf("setCounter"),
                 (QVector<Role>{Role::Value, Role::Key, Role::CollectionId}));
        QCOMPARE(rolesOf("getWidthForPaper"), QVector<Role>{Role::Paper});
        QCOMPARE(rolesOf("processSequence"), QVector<Role>{Role::Other});
        QCOMPARE(rolesOf("getType"), QVector<Role>());
    }

    void aSettingHasItsReaderAndItsWriter()
    {
        const Setting *setting = interface().setting(QStringLiteral("FormatOrientation"));
        QVERIFY(setting);
        QCOMPARE(setting->reader->name, QStringLiteral("getFormatOrientation"));
        QCOMPARE(setting->writer->name, QStringLiteral("setFormatOrientation"));
        QCOMPARE(setting->type(), QStringLiteral("i"));
        QCOMPARE(setting->enumeration(), QStringLiteral("Orientation"));
        QVERIFY(!setting->isKeyed());

        const Setting *readOnly = interface().setting(QStringLiteral("Type"));
        QVERIFY(readOnly && !readOnly->writer);
        QCOMPARE(readOnly->enumeration(), QStringLiteral("EmbosserType"));

        const Setting *writeOnly = interface().setting(QStringLiteral("HammerBatchParameters"));
        QVERIFY(writeOnly && !writeOnly->reader);
    }

    void whatNamesASettingInAnArgumentReadsNone()
    {
        QVERIFY(interface().method(QStringLiteral("getIntValue"))->setting.isEmpty());
        QVERIFY(!interface().setting(QStringLiteral("IntValue")));
    }

    void enumerationsStandAtTheirArguments()
    {
        QCOMPARE(interface().method(QStringLiteral("getValueList"))->arguments[0].enumeration,
                 QStringLiteral("RowValueList"));
        QCOMPARE(
            interface().method(QStringLiteral("getFormatOrientationForPaper"))->resultEnumeration,
            QStringLiteral("Orientation"));
        QCOMPARE(
            interface().method(QStringLiteral("setPrintOrientation"))->arguments[0].enumeration,
            QStringLiteral("Orientation"));
    }

    void whatMayBeLeftOutHasItsDefault()
    {
        const auto defaultsOf = [](const char *method) {
            QStringList defaults;
            for (const auto &argument : interface().method(QLatin1String(method))->arguments)
                defaults.append(argument.defaultValue);
            return defaults;
        };
        QCOMPARE(defaultsOf("setCounter"),
                 (QStringList{QString(), QStringLiteral("1"), QString()}));
        QCOMPARE(defaultsOf("setModel"),
                 (QStringList{QString(), QString(), QStringLiteral("false")}));
    }

    void secretsAndKeysAreMarked()
    {
        QCOMPARE(settingsThat(&Setting::isSecret), QStringList{QStringLiteral("Passphrase")});
        QCOMPARE(settingsThat(&Setting::isKeyed),
                 (QStringList{QStringLiteral("Counter"), QStringLiteral("ReleaseTime"),
                              QStringLiteral("SensorState")}));
        const QStringList identity = settingsThat(&Setting::isIdentity);
        QVERIFY(identity.contains(QStringLiteral("SerialNo")));
        QVERIFY(!identity.contains(QStringLiteral("PaperSize")));
    }

    void theXmlIsTheInterfaceElement()
    {
        QVERIFY(interface().xml().startsWith(QStringLiteral("<interface name=")));
        QVERIFY(interface().xml().endsWith(QStringLiteral("</interface>")));
    }
};

QTEST_APPLESS_MAIN(TestInterface)

#include "tst_interface.moc"
