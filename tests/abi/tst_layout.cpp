// SPDX-License-Identifier: MIT

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libconfigurationmanager/lcm.h>
#include <libtavelorn/DBusService.h>

#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;
using libtavelorn::DBusService;

/// What users have compiled into their programs beside the names of the symbols.
class TestLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFacadeIsAnObjectAndOnePointer()
    {
        QCOMPARE(sizeof(ConfigurationManager), sizeof(QObject) + sizeof(void *));
        QCOMPARE(sizeof(DBusService), sizeof(QObject) + sizeof(void *));
    }

    void aPropertyListIsAVector() { QCOMPARE(sizeof(lcm::PropList), sizeof(QVector<QVariantMap>)); }
};

QTEST_APPLESS_MAIN(TestLayout)
#include "tst_layout.moc"
