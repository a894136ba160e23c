// SPDX-License-Identifier: MIT

#include "FailedCalls.h"

#include <QtTest/QTest>

/// There is no bus at all: nothing listens at its address.
class TestWithoutBus : public QObject
{
    Q_OBJECT

public:
    TestWithoutBus() { qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus"); }

private Q_SLOTS:
    void anObjectIsMadeSilently()
    {
        LogCapture log;
        const Facade facade(nullptr);
        QVERIFY(!facade.isConnected());
        QCOMPARE(log.takeLines().size(), 0);
    }

    void everyOperationReturnsItsDefaultAndLogsThatItIsNotConnected()
    {
        Facade facade(nullptr);
        QCOMPARE(deviations(facade, allSlots(), notConnectedLine()), QString());
    }

    void withTheCheckOffEveryOperationLogsTheErrorOfTheBus()
    {
        Facade facade(nullptr);
        facade.setCheckConnection(false);
        QVERIFY(facade.isConnected());
        QCOMPARE(deviations(facade, allSlots(),
                            errorLine(QStringLiteral("Not connected to D-Bus server"))),
                 QString());
    }
};

QTEST_GUILESS_MAIN(TestWithoutBus)
#include "tst_withoutbus.moc"
