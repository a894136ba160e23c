// SPDX-License-Identifier: MIT

#include "BusMonitor.h"
#include "LogCapture.h"
#include "RecordingService.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtCore/QThread>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <atomic>

using libconfigurationmanager::detail::ConfigurationManager;

class TestConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_service.kill(); }

    void eachChangeIsToldOnce()
    {
        const ConfigurationManager manager(nullptr);
        const QSignalSpy connected(&manager, &ConfigurationManager::connected);
        const QSignalSpy disconnected(&manager, &ConfigurationManager::disconnected);
        QVERIFY(!manager.isConnected());
        for (int change = 1; change <= 3; ++change) {
            m_service.start();
            QTRY_COMPARE(connected.count(), change);
            QVERIFY(manager.isConnected());
            m_service.kill();
            QTRY_COMPARE(disconnected.count(), change);
            QVERIFY(!manager.isConnected());
        }
        QCOMPARE(connected.count(), 3);
    }

    void aServiceThatIsThereIsKnownAtOnce()
    {
        m_service.start();
        ConfigurationManager manager(nullptr);
        const QSignalSpy connected(&manager, &ConfigurationManager::connected);
        const QSignalSpy disconnected(&manager, &ConfigurationManager::disconnected);
        QVERIFY(manager.isConnected());
        m_service.setAnswer(Answer::value(8));
        QCOMPARE(manager.getTabSize(), 8);

        m_service.kill();
        QTRY_COMPARE(disconnected.count(), 1);
        QCOMPARE(connected.count(), 0);
    }

    void aSlotMayCallTheServiceThatHasCome()
    {
        ConfigurationManager manager(nullptr);
        int tabSize = 0;
        connect(&manager, &ConfigurationManager::connected, this, [&] {
            m_service.setAnswer(Answer::value(8));
            tabSize = manager.getTabSize();
        });
        m_service.start();
        QTRY_COMPARE(tabSize, 8);
    }

    void aSlotThatCallsTheServiceThatHasLeftGetsTheDefault()
    {
        m_service.start();
        ConfigurationManager manager(nullptr);
        LogCapture log;
        int tabSize = -1;
        connect(&manager, &ConfigurationManager::disconnected, this,
                [&] { tabSize = manager.getTabSize(); });
        m_service.kill();
        QTRY_COMPARE(tabSize, 0);
        const QVector<LogLine> lines = log.takeLines();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).text, QStringLiteral("Not connected."));
    }

    void theCollectionIdSurvivesAReconnection()
    {
        ConfigurationManager manager(nullptr);
        manager.setCatalogsCollectionId(QStringLiteral("other"));
        for (int connection = 0; connection < 2; ++connection) {
            m_service.start();
            m_service.setAnswer(Answer::value(QString()));
            QTRY_VERIFY(manager.isConnected());
            manager.getModel();
            const QVector<RecordedCall> calls = m_service.takeCalls();
            QCOMPARE(calls.size(), 1);
            QCOMPARE(calls.at(0).arguments, QVariantList{QStringLiteral("other")});
            m_service.kill();
            QTRY_VERIFY(!manager.isConnected());
        }
    }

    void theSwitchedOffCheckSurvivesAReconnection()
    {
        ConfigurationManager manager(nullptr);
        const QSignalSpy connected(&manager, &ConfigurationManager::connected);
        const QSignalSpy disconnected(&manager, &ConfigurationManager::disconnected);
        manager.setCheckConnection(false);
        QVERIFY(manager.isConnected());

        m_service.start();
        QTRY_COMPARE(connected.count(), 1);
        m_service.kill();
        QTRY_COMPARE(disconnected.count(), 1);
        QVERIFY(manager.isConnected());
        manager.setCheckConnection(true);
        QVERIFY(!manager.isConnected());
    }

    void withTheCheckOffACallIsTried()
    {
        ConfigurationManager manager(nullptr);
        manager.setCheckConnection(false);
        LogCapture log;
        QCOMPARE(manager.getTabSize(), 0);
        const QVector<LogLine> lines = log.takeLines();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).category, QStringLiteral("default"));

        // Nobody has told the facade yet that the service has come.
        m_service.start();
        m_service.setAnswer(Answer::value(8));
        QCOMPARE(manager.getTabSize(), 8);
    }

    void constructionAsksTheBusOnly_data()
    {
        QTest::addColumn<bool>("present");
        QTest::newRow("without the service") << false;
        QTest::newRow("with the service") << true;
    }

    // So it neither introspects the service nor has the bus start it.
    void constructionAsksTheBusOnly()
    {
        QFETCH(const bool, present);
        if (present)
            m_service.start();
        const QDBusConnection bus = QDBusConnection::systemBus();
        BusMonitor monitor(m_bus);
        const ConfigurationManager manager(nullptr);
        QCOMPARE(manager.isConnected(), present);
        const QStringList calls = monitor.takeCalls(bus);
        QVERIFY(!calls.isEmpty());
        for (const QString &call : calls) {
            QVERIFY2(call == QStringLiteral("org.freedesktop.DBus AddMatch") ||
                         call == QStringLiteral("org.freedesktop.DBus GetNameOwner"),
                     qPrintable(call));
        }
        if (present)
            QVERIFY(m_service.takeCalls().isEmpty());
    }

    void askingForTheConnectionCausesNoTraffic()
    {
        m_service.start();
        BusMonitor monitor(m_bus);
        const ConfigurationManager manager(nullptr);
        monitor.takeCalls(QDBusConnection::systemBus());
        for (int i = 0; i < 1000; ++i)
            QVERIFY(manager.isConnected());
        QCOMPARE(monitor.takeCalls(QDBusConnection::systemBus()), QStringList());
    }

    void aFacadeOfAnotherThreadGetsItsSignalsThere()
    {
        QThread thread;
        thread.start();
        auto *const manager = new ConfigurationManager(nullptr);
        manager->moveToThread(&thread);
        connect(&thread, &QThread::finished, manager, &QObject::deleteLater);
        std::atomic<QThread *> signalThread{nullptr};
        connect(
            manager, &ConfigurationManager::connected, manager,
            [&] { signalThread = QThread::currentThread(); }, Qt::DirectConnection);
        m_service.start();
        QTRY_VERIFY(signalThread);
        QCOMPARE(signalThread.load(), &thread);
        thread.quit();
        QVERIFY(thread.wait());
    }

private:
    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
};

QTEST_GUILESS_MAIN(TestConnection)
#include "tst_connection.moc"
