// SPDX-License-Identifier: MIT

#include "LogCapture.h"
#include "PrivateBus.h"
#include "ServiceName.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libtavelorn/DBusService.h>

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;
using libtavelorn::DBusService;

// A process connects to the system bus only once: there is no bus for a second test here.
class TestBusLoss : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isALeavingOfEveryServiceThatWasThere()
    {
        QDBusConnection owner = m_bus.connect(QStringLiteral("owner"));
        QVERIFY(owner.registerService(serviceName));
        ConfigurationManager manager(nullptr);
        QSignalSpy disconnected(&manager, &ConfigurationManager::disconnected);
        QVERIFY(manager.isConnected());
        const DBusService absent(QDBusConnection::systemBus(), QStringLiteral("com.example.Absent"),
                                 nullptr);
        const QSignalSpy absentDisconnected(&absent, &DBusService::disconnected);

        m_bus.kill();
        QTRY_COMPARE(disconnected.count(), 1);
        QTRY_VERIFY(!QDBusConnection::systemBus().isConnected());
        QVERIFY(!manager.isConnected());
        QCOMPARE(disconnected.count(), 1);
        QCOMPARE(absentDisconnected.count(), 0);

        LogCapture log;
        QCOMPARE(manager.getTabSize(), 0);
        manager.setTabSize(8);
        const QVector<LogLine> lines = log.takeLines();
        QCOMPARE(lines.size(), 2);
        for (const LogLine &line : lines)
            QCOMPARE(line.text, QStringLiteral("Not connected."));

        manager.setCheckConnection(false);
        QCOMPARE(manager.getTabSize(), 0);
        QCOMPARE(log.takeLines().size(), 1);
    }

private:
    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestBusLoss)
#include "tst_busloss.moc"
