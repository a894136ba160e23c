// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/lcm.h>

#include <QtTest/QTest>

class TestPropList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyAtFirst()
    {
        const lcm::PropList list;
        QVERIFY(list.isEmpty());
        QCOMPARE(list.size(), 0);
        QCOMPARE(list.begin(), list.end());
    }

    void givesItsMapsInTheirOrder()
    {
        const QVariantMap first{{QStringLiteral("value"), 1}};
        const QVariantMap second{{QStringLiteral("value"), 2}};
        lcm::PropList list;
        list.maps = {first, QVariantMap(), second};

        QVERIFY(!list.isEmpty());
        QCOMPARE(list.size(), 3);
        QCOMPARE(list.at(0), first);
        QCOMPARE(list.at(2), second);
        QVector<QVariantMap> seen;
        for (const QVariantMap &map : list)
            seen.append(map);
        QCOMPARE(seen, list.maps);
    }

    void isAValue()
    {
        lcm::PropList list;
        list.maps = {QVariantMap()};
        const QVariant held = QVariant::fromValue(list);
        list.maps.clear();
        QCOMPARE(held.value<lcm::PropList>().size(), 1);
    }
};

QTEST_APPLESS_MAIN(TestPropList)
#include "tst_proplist.moc"
