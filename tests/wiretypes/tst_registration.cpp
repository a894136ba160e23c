// SPDX-License-Identifier: MIT

#include "PrivateBus.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QMetaType>
#include <QtCore/QSequentialIterable>
#include <QtDBus/QDBusMetaType>
#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;

static_assert(std::is_same_v<ConfigurationList, lcm::ConfigurationList>);
static_assert(std::is_same_v<ConfigurationList, QList<QPair<QString, QVariantMap>>>);
static_assert(!QTypeInfo<lcm::PropList>::isStatic, "movable");

namespace {

const char propListName[] = "lcm::PropList";
const char pairName[] = "QPair<QString,QVariantMap>";
const char listName[] = "QList<QPair<QString,QVariantMap> >";

QVector<int> ids()
{
    return {QMetaType::type(propListName), QMetaType::type(pairName), QMetaType::type(listName)};
}

QList<QByteArray> signatures()
{
    QList<QByteArray> texts;
    for (const int id : ids())
        texts.append(QDBusMetaType::typeToSignature(id));
    return texts;
}

} // namespace

// The types are looked up by name: qMetaTypeId() would register them itself.
class TestRegistration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void happensWithTheFirstFacade()
    {
        QCOMPARE(ids(), QVector<int>(3, QMetaType::UnknownType));
        const ConfigurationManager manager(nullptr);
        QVERIFY(!ids().contains(QMetaType::UnknownType));
        QCOMPARE(signatures(), (QList<QByteArray>{"aa{sv}", "(sa{sv})", "a(sa{sv})"}));
    }

    void isNotChangedByASecondFacade()
    {
        const QVector<int> idsBefore = ids();
        const QList<QByteArray> signaturesBefore = signatures();
        const ConfigurationManager second(nullptr);
        QCOMPARE(ids(), idsBefore);
        QCOMPARE(signatures(), signaturesBefore);
    }

    void givesTheTypesTheirNames()
    {
        QCOMPARE(QMetaType::typeName(qMetaTypeId<lcm::PropList>()), propListName);
        QCOMPARE(QMetaType::typeName(qMetaTypeId<QPair<QString, QVariantMap>>()), pairName);
        QCOMPARE(QMetaType::typeName(qMetaTypeId<ConfigurationList>()), listName);
    }

    void leavesTheAliasUnknown()
    {
        QCOMPARE(QMetaType::type("ConfigurationList"), int(QMetaType::UnknownType));
        QCOMPARE(QMetaType::type("lcm::ConfigurationList"), int(QMetaType::UnknownType));
    }

    void tellsHowPropListIsMoved()
    {
        const QMetaType::TypeFlags flags = QMetaType::typeFlags(QMetaType::type(propListName));
        QVERIFY(flags & QMetaType::NeedsConstruction);
        QVERIFY(flags & QMetaType::NeedsDestruction);
        QVERIFY(flags & QMetaType::MovableType);
    }

    void letsPairsAndListsBeIteratedGenerically()
    {
        QVERIFY(QMetaType::hasRegisteredConverterFunction(
            QMetaType::type(pairName),
            qMetaTypeId<QtMetaTypePrivate::QPairVariantInterfaceImpl>()));
        QVERIFY(QMetaType::hasRegisteredConverterFunction(
            QMetaType::type(listName), qMetaTypeId<QtMetaTypePrivate::QSequentialIterableImpl>()));

        const QVariantMap properties{{QStringLiteral("key"), 1}};
        const QVariant list =
            QVariant::fromValue(ConfigurationList{{QStringLiteral("name"), properties}});
        const auto elements = list.value<QSequentialIterable>();
        QCOMPARE(elements.size(), 1);
        const auto pair = elements.at(0).value<QPair<QVariant, QVariant>>();
        QCOMPARE(pair.first, QVariant(QStringLiteral("name")));
        QCOMPARE(pair.second, QVariant(properties));
    }

private:
    const PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestRegistration)
#include "tst_registration.moc"
