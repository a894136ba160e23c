// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "RecordingService.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libconfigurationmanager/QmlTypes.h>

#include <QtCore/QMetaMethod>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtTest/QTest>

#include <memory>

using libconfigurationmanager::detail::ConfigurationManager;

namespace {

// What the meta-object system does not know by the name that the operations use.
QByteArrayList unknownTypes()
{
    const QMetaObject &object = ConfigurationManager::staticMetaObject;
    QByteArrayList unknown;
    for (int i = object.methodOffset(); i < object.methodCount(); ++i) {
        const QMetaMethod method = object.method(i);
        QByteArrayList names = method.parameterTypes();
        names.append(method.typeName());
        for (const QByteArray &name : qAsConst(names)) {
            if (QMetaType::type(name) == QMetaType::UnknownType && !unknown.contains(name))
                unknown.append(name);
        }
    }
    return unknown;
}

} // namespace

// What a program that uses QML calls from its scripts.
class TestQml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_service.start();
        m_manager = std::make_unique<ConfigurationManager>();
        QQmlEngine::setObjectOwnership(m_manager.get(), QQmlEngine::CppOwnership);
        m_engine.globalObject().setProperty(QStringLiteral("manager"),
                                            m_engine.newQObject(m_manager.get()));
    }

    void refusesWhatIsNotRegistered()
    {
        QVERIFY(!unknownTypes().isEmpty());
        QVERIFY(evaluate(QStringLiteral("manager.getType()")).isError());
    }

    void knowsTheTypesOfAllOperationsOnceRegistered()
    {
        libconfigurationmanager::registerQmlTypes();
        libconfigurationmanager::registerQmlTypes(); // and may be repeated
        QCOMPARE(unknownTypes(), QByteArrayList());
    }

    void answersNumbersForEnumerations()
    {
        m_service.setAnswer(Answer::value(7));
        for (const char *call : {"getType()", "getFeedType()", "getHeadType()", "getModelMask()",
                                 "getFormatOrientation('A4')", "getLoadOrientation('A4')",
                                 "getPaperModelMask('A4')", "getPaperFeedType('A4')"}) {
            const QJSValue result = evaluate(QStringLiteral("manager.") + QLatin1String(call));
            QVERIFY2(result.isNumber() && result.toInt() == 7, call);
        }
    }

    void answersObjectsForPropertyMaps()
    {
        lcm::PropList list;
        list.maps = {
            {{QStringLiteral("text"), QStringLiteral("Off")}, {QStringLiteral("value"), 0}},
            {{QStringLiteral("text"), QStringLiteral("On")}, {QStringLiteral("value"), 1}}};
        m_service.setAnswer(QStringLiteral("getValueList"),
                            Answer::value(QVariant::fromValue(list)));
        QCOMPARE(evaluate(QStringLiteral("JSON.stringify(manager.getValueList(2))")).toString(),
                 QStringLiteral(R"([{"text":"Off","value":0},{"text":"On","value":1}])"));
    }

    void answersAnArrayForAConfiguration()
    {
        const ConfigurationList configuration{
            {QStringLiteral("Paper"), {{QStringLiteral("TopMargin"), 2}}},
            {QStringLiteral("Volume"), {}}};
        m_service.setAnswer(QStringLiteral("currentConfigurationCmd"),
                            Answer::value(QVariant::fromValue(configuration)));
        const QJSValue result = evaluate(QStringLiteral("manager.currentConfigurationCmd()"));
        QCOMPARE(result.property(QStringLiteral("length")).toInt(), 2);
        const auto section = result.property(0).toVariant().value<QPair<QString, QVariantMap>>();
        QCOMPARE(section, configuration.first());
    }

    void namesTheEnumeratorsInQml()
    {
        QQmlComponent component(&m_engine);
        component.setData("import QtQml 2.0\n"
                          "import LibConfigurationManager 1.0\n"
                          "QtObject {\n"
                          "    property int marren: Lcm.EmbosserType.Marren\n"
                          "    property int tray: Lcm.FeedType.Tray\n"
                          "}\n",
                          QUrl());
        const std::unique_ptr<QObject> object(component.create());
        QVERIFY2(object, qPrintable(component.errorString()));
        QCOMPARE(object->property("marren").toInt(), int(lcm::EmbosserType::Marren));
        QCOMPARE(object->property("tray").toInt(), int(lcm::FeedType::Tray));
    }

private:
    QJSValue evaluate(const QString &script) { return m_engine.evaluate(script); }

    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
    std::unique_ptr<ConfigurationManager> m_manager;
    QQmlEngine m_engine;
};

QTEST_GUILESS_MAIN(TestQml)
#include "tst_qml.moc"
