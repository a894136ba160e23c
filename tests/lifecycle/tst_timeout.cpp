// SPDX-License-Identifier: MIT

#include "ConfigurationManager_p.h"
#include "RecordingService.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtDBus/QDBusAbstractInterface>
#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;
using libconfigurationmanager::detail::ConfigurationManagerPrivate;

// An operation waits as long as the bus lets it: the library has no time-out of its own.
class TestTimeout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isThatOfTheBus()
    {
        const ConfigurationManagerPrivate implementation(&m_manager, nullptr);
        const auto proxies = implementation.findChildren<QDBusAbstractInterface *>();
        QVERIFY(!proxies.isEmpty());
        for (const QDBusAbstractInterface *proxy : proxies)
            QCOMPARE(proxy->timeout(), -1);
    }

    void leavesTheServiceItsTime()
    {
        m_service.start();
        QTRY_VERIFY(m_manager.isConnected());
        Answer late = Answer::value(8);
        late.delayInMilliseconds = 2000;
        m_service.setAnswer(late);
        QCOMPARE(m_manager.getTabSize(), 8);
    }

private:
    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
    ConfigurationManager m_manager;
};

QTEST_GUILESS_MAIN(TestTimeout)
#include "tst_timeout.moc"
