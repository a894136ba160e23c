// SPDX-License-Identifier: MIT

#include "LogCapture.h"
#include "PrivateBus.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;

class TestConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void disconnectsWhenTheServiceLeavesAndWhenTheBusIsLost()
    {
        ConfigurationManager manager(nullptr);
        QSignalSpy connected(&manager, &ConfigurationManager::connected);
        QSignalSpy disconnected(&manager, &ConfigurationManager::disconnected);
        QVERIFY(!manager.isConnected());

        QDBusConnection service = m_bus.connect(QStringLiteral("service"));
        const QString name = QStringLiteral("com.tavelornbraille.ConfigurationManager");
        QVERIFY(service.registerService(name));
        QTRY_COMPARE(connected.count(), 1);
        QVERIFY(manager.isConnected());

        m_bus.kill();
        QTRY_COMPARE(disconnected.count(), 1);
        QVERIFY(!manager.isConnected());
    }

private:
    PrivateBus m_bus;
};

QTEST_GUILESS_MAIN(TestConnection)
#include "tst_connection.moc"
