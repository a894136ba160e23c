// SPDX-License-Identifier: MIT

#include "ConfigurationManager_p.h"
#include "PrivateBus.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;
using libconfigurationmanager::detail::ConfigurationManagerPrivate;

Q_DECLARE_METATYPE(const QMetaObject *)

namespace {

constexpr int signalCount = 2;
constexpr int slotCount = 647;

/// The methods that the class itself adds.
QVector<QMetaMethod> ownMethods(const QMetaObject &metaObject)
{
    QVector<QMetaMethod> methods;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i)
        methods.append(metaObject.method(i));
    return methods;
}

QList<QByteArray> signatures(const QVector<QMetaMethod> &methods)
{
    QList<QByteArray> texts;
    for (const QMetaMethod &method : methods)
        texts.append(method.methodSignature());
    return texts;
}

/// The result type and the signature, as the meta-object gives them.
QByteArray description(const QMetaMethod &method)
{
    return method.typeName() + QByteArray(" ") + method.methodSignature();
}

} // namespace

class TestInvokableSurface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothClassesHoldMethodsOnly_data()
    {
        QTest::addColumn<const QMetaObject *>("metaObject");
        const char *const names[] = {
            "libconfigurationmanager::detail::ConfigurationManager",
            "libconfigurationmanager::detail::ConfigurationManagerPrivate",
        };
        QTest::newRow(names[0]) << &ConfigurationManager::staticMetaObject;
        QTest::newRow(names[1]) << &ConfigurationManagerPrivate::staticMetaObject;
    }

    void bothClassesHoldMethodsOnly()
    {
        QFETCH(const QMetaObject *, metaObject);
        QCOMPARE(metaObject->className(), QTest::currentDataTag());
        QCOMPARE(metaObject->superClass(), &QObject::staticMetaObject);
        QCOMPARE(metaObject->propertyCount(), metaObject->propertyOffset());
        QCOMPARE(metaObject->enumeratorCount(), metaObject->enumeratorOffset());
        QCOMPARE(metaObject->classInfoCount(), 0);
        QCOMPARE(metaObject->constructorCount(), 0);
    }

    void theFacadeHasTwoSignalsAndThenTheSlots()
    {
        QCOMPARE(m_facade.size(), signalCount + slotCount);
        QCOMPARE(signatures(m_facade.mid(0, signalCount)),
                 (QList<QByteArray>{"connected()", "disconnected()"}));
        for (int i = 0; i < m_facade.size(); ++i) {
            const QMetaMethod &method = m_facade.at(i);
            QCOMPARE(method.access(), QMetaMethod::Public);
            QCOMPARE(method.methodType(),
                     i < signalCount ? QMetaMethod::Signal : QMetaMethod::Slot);
            QCOMPARE(method.revision(), 0);
            QCOMPARE(method.tag(), "");
        }
    }

    void thePrivateClassHasTheSameSlotsInTheSameOrder()
    {
        QCOMPARE(m_private.size(), slotCount);
        for (int i = 0; i < slotCount; ++i) {
            const QMetaMethod &slot = m_private.at(i);
            const QMetaMethod &facadeSlot = m_facade.at(signalCount + i);
            QCOMPARE(description(slot), description(facadeSlot));
            QCOMPARE(slot.parameterNames(), facadeSlot.parameterNames());
            QCOMPARE(slot.attributes(), facadeSlot.attributes());
            QCOMPARE(slot.access(), QMetaMethod::Public);
            QCOMPARE(slot.methodType(), QMetaMethod::Slot);
        }
    }

    void theFirstAndTheLastSlotsStandInAFixedOrder()
    {
        QCOMPARE(signatures(m_facade.mid(signalCount, 12)), (QList<QByteArray>{
                                                                "generateLegacyJson()",
                                                                "embosserInfoCmd()",
                                                                "currentConfigurationCmd()",
                                                                "getFirmwareDate()",
                                                                "setArchitecture(QString,bool)",
                                                                "setArchitecture(QString)",
                                                                "getArchitecture()",
                                                                "getCounter(int)",
                                                                "getCounter()",
                                                                "setCounter(int,int)",
                                                                "setCounter(int)",
                                                                "incrementPageCounter()",
                                                            }));
        QCOMPARE(signatures(m_facade.mid(m_facade.size() - 6)),
                 (QList<QByteArray>{
                     "setTabSize(int)",
                     "processSequence(QVariantMap)",
                     "removeCatalogsCollection(QString)",
                     "duplicateCatalog(QString,QString)",
                     "setLogger(bool)",
                     "clearLog()",
                 }));
    }

    void aVariantFollowsItsFullFormDirectly()
    {
        int variants = 0;
        for (int i = signalCount; i < m_facade.size(); ++i) {
            const QMetaMethod &variant = m_facade.at(i);
            if (!(variant.attributes() & QMetaMethod::Cloned))
                continue;
            ++variants;
            const QMetaMethod &fullForm = m_facade.at(i - 1);
            QVERIFY(!(fullForm.attributes() & QMetaMethod::Cloned));
            QCOMPARE(variant.name(), fullForm.name());
            QCOMPARE(QByteArray(variant.typeName()), QByteArray(fullForm.typeName()));
            QList<QByteArray> types = fullForm.parameterTypes();
            types.removeLast();
            QCOMPARE(variant.parameterTypes(), types);
        }
        QCOMPARE(variants, 130);
    }

    void parametersAreOfFiveTypes()
    {
        const QSet<QByteArray> types{"int", "double", "bool", "QString", "QVariantMap"};
        QSet<QByteArray> actual;
        for (const QMetaMethod &slot : m_facade.mid(signalCount)) {
            for (const QByteArray &type : slot.parameterTypes())
                actual.insert(type);
        }
        QCOMPARE(actual, types);
    }

    void compoundAndEnumeratedResultsHaveTheirNames_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("currentConfigurationCmd()") << QByteArray("ConfigurationList");
        QTest::newRow("getValueList(int)") << QByteArray("lcm::PropList");
        QTest::newRow("embosserInfoCmd()") << QByteArray("QVariantMap");
        QTest::newRow("getType()") << QByteArray("lcm::EmbosserType");
        QTest::newRow("getFeedType()") << QByteArray("lcm::FeedType");
        QTest::newRow("getPaperFeedType(QString)") << QByteArray("lcm::FeedType");
        QTest::newRow("getHeadType()") << QByteArray("lcm::HeadType");
        QTest::newRow("getModelMask()") << QByteArray("lcm::ModelMask");
        QTest::newRow("getPaperModelMask(QString)") << QByteArray("lcm::ModelMask");
        QTest::newRow("getFormatOrientation(QString)") << QByteArray("lcm::Orientation");
        QTest::newRow("getLoadOrientation(QString)") << QByteArray("lcm::Orientation");
    }

    void compoundAndEnumeratedResultsHaveTheirNames()
    {
        QFETCH(const QByteArray, type);
        for (const QMetaObject *metaObject : {&ConfigurationManager::staticMetaObject,
                                              &ConfigurationManagerPrivate::staticMetaObject}) {
            const int index = metaObject->indexOfSlot(QTest::currentDataTag());
            QCOMPARE(QByteArray(metaObject->method(index).typeName()), type);
        }
    }

    void onlyOperationsAreInvokable()
    {
        for (const QList<QByteArray> &all : {signatures(m_facade), signatures(m_private)}) {
            QVERIFY(!all.contains("isConnected()"));
            QVERIFY(!all.contains("setCheckConnection(bool)"));
            QVERIFY(!all.contains("setCatalogsCollectionId(QString)"));
        }
    }

    void noArgumentNeedsItsTypeRegistered_data()
    {
        QTest::addColumn<QObject *>("object");
        QTest::newRow("facade") << static_cast<QObject *>(&m_manager);
        QTest::newRow("private") << static_cast<QObject *>(&m_implementation);
    }

    void noArgumentNeedsItsTypeRegistered()
    {
        QFETCH(QObject *const, object);
        const QMetaObject *metaObject = object->metaObject();
        for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
            for (int argument = 0; argument < metaObject->method(i).parameterCount(); ++argument) {
                int type = QMetaType::UnknownType;
                void *data[] = {&type, &argument};
                QMetaObject::metacall(object, QMetaObject::RegisterMethodArgumentMetaType, i, data);
                QCOMPARE(type, -1);
            }
        }
    }

    void numbersOfOtherMethodsArePassedToQObject()
    {
        const int offset = ConfigurationManager::staticMetaObject.methodOffset();
        void *data[] = {nullptr};
        // What nobody handles comes back, counted from the first number that is free.
        const int count = m_facade.size();
        QCOMPARE(m_manager.qt_metacall(QMetaObject::InvokeMetaMethod, offset + count, data), 0);
        QCOMPARE(m_manager.qt_metacall(QMetaObject::InvokeMetaMethod, offset + count + 7, data), 7);

        QSignalSpy spy(&m_manager, &QObject::objectNameChanged);
        QString name;
        void *arguments[] = {nullptr, &name};
        const int signal = QMetaMethod::fromSignal(&QObject::objectNameChanged).methodIndex();
        QVERIFY(m_manager.qt_metacall(QMetaObject::InvokeMetaMethod, signal, arguments) < 0);
        QCOMPARE(spy.count(), 1);
    }

    void theFacadeIsCastByItsWholeName()
    {
        QCOMPARE(m_manager.metaObject(), &ConfigurationManager::staticMetaObject);
        QCOMPARE(m_manager.qt_metacast("libconfigurationmanager::detail::ConfigurationManager"),
                 static_cast<void *>(&m_manager));
        QCOMPARE(m_manager.qt_metacast("QObject"), static_cast<void *>(&m_manager));
        QCOMPARE(m_manager.qt_metacast("ConfigurationManager"), nullptr);
        QCOMPARE(m_manager.qt_metacast(nullptr), nullptr);
    }

private:
    const PrivateBus m_bus;
    ConfigurationManager m_manager;
    ConfigurationManagerPrivate m_implementation{&m_manager, nullptr};
    const QVector<QMetaMethod> m_facade = ownMethods(ConfigurationManager::staticMetaObject);
    const QVector<QMetaMethod> m_private =
        ownMethods(ConfigurationManagerPrivate::staticMetaObject);
};

QTEST_GUILESS_MAIN(TestInvokableSurface)
#include "tst_invokablesurface.moc"
