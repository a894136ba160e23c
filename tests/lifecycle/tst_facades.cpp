// SPDX-License-Identifier: MIT

#include "BusMonitor.h"
#include "LogCapture.h"
#include "RecordingService.h"

#include <libconfigurationmanager/ConfigurationManager.h>
#include <libtavelorn/DBusService.h>

#include <QtCore/QPointer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <future>
#include <memory>

using libconfigurationmanager::detail::ConfigurationManager;
using libtavelorn::DBusService;

class TestFacades : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_service.kill(); }

    // First: the watches of earlier facades would stay, and hide that one ends.
    void aDestroyedOneLeavesItsPrivateObjectWatching()
    {
        const QString removal = QStringLiteral("org.freedesktop.DBus RemoveMatch");
        BusMonitor monitor(m_bus);
        const QDBusConnection bus = QDBusConnection::systemBus();

        std::make_unique<DBusService>(bus, QStringLiteral("com.example.Other"), nullptr).reset();
        QVERIFY(monitor.takeCalls(bus).contains(removal));

        std::make_unique<ConfigurationManager>(nullptr).reset();
        QVERIFY(!monitor.takeCalls(bus).contains(removal));
    }

    void oneBelongsToItsParent()
    {
        auto parent = std::make_unique<QObject>();
        const QPointer<ConfigurationManager> manager = new ConfigurationManager(parent.get());
        QCOMPARE(manager->parent(), parent.get());
        parent.reset();
        QVERIFY(!manager);
    }

    void twoHaveTheirOwnState()
    {
        m_service.start();
        m_service.setAnswer(Answer::value(QString()));
        ConfigurationManager first(nullptr);
        ConfigurationManager second(nullptr);

        first.setCatalogsCollectionId(QStringLiteral("first"));
        first.getModel();
        second.getModel();
        second.setCatalogsCollectionId(QStringLiteral("second"));
        first.getModel();
        second.getModel();
        QStringList ids;
        for (const RecordedCall &call : m_service.takeCalls())
            ids.append(call.arguments.at(0).toString());
        QCOMPARE(ids, (QStringList{QStringLiteral("first"), QStringLiteral("masterCollectionKey"),
                                   QStringLiteral("first"), QStringLiteral("second")}));

        first.setCheckConnection(false);
        m_service.kill();
        QTRY_VERIFY(!second.isConnected());
        QVERIFY(first.isConnected());
    }

    void twoHaveTheirOwnSignals()
    {
        auto first = std::make_unique<ConfigurationManager>(nullptr);
        ConfigurationManager second(nullptr);
        const QSignalSpy firstConnected(first.get(), &ConfigurationManager::connected);
        const QSignalSpy secondConnected(&second, &ConfigurationManager::connected);
        m_service.start();
        QTRY_COMPARE(firstConnected.count(), 1);
        QTRY_COMPARE(secondConnected.count(), 1);

        const QSignalSpy secondDisconnected(&second, &ConfigurationManager::disconnected);
        first.reset();
        m_service.kill();
        QTRY_COMPARE(secondDisconnected.count(), 1);
        QCOMPARE(secondConnected.count(), 1);
    }

    void oneMayBeDestroyedWhileTheServiceComesAndGoes()
    {
        const ConfigurationManager witness(nullptr);
        for (int round = 0; round < 3; ++round) {
            auto beforeComing = std::make_unique<ConfigurationManager>(nullptr);
            m_service.start();
            // What tells of the coming is still on its way.
            beforeComing.reset();
            QTRY_VERIFY(witness.isConnected());

            auto beforeLeaving = std::make_unique<ConfigurationManager>(nullptr);
            QVERIFY(beforeLeaving->isConnected());
            m_service.kill();
            beforeLeaving.reset();
            QTRY_VERIFY(!witness.isConnected());
        }
    }

    void oneMayBeDestroyedByASlotOfItsOwnSignal()
    {
        auto *manager = new ConfigurationManager(nullptr);
        const QPointer<ConfigurationManager> alive = manager;
        connect(manager, &ConfigurationManager::connected, this, [manager] { delete manager; });
        m_service.start();
        QTRY_VERIFY(!alive);
    }

    void oneWhoseThreadHasEndedStillLearnsOfTheService()
    {
        const auto manager = std::async(std::launch::async, [] {
                                 return std::make_unique<ConfigurationManager>(nullptr);
                             }).get();
        QVERIFY(!manager->isConnected());
        m_service.start();
        QTRY_VERIFY(manager->isConnected());
        m_service.kill();
        QTRY_VERIFY(!manager->isConnected());
    }

    void aCallOfAnotherThreadOutlivesIt_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<int>("result");
        Answer late = Answer::value(8);
        late.delayInMilliseconds = 100;
        QTest::newRow("the service answers") << late << 8;
        QTest::newRow("the service leaves") << Answer::silence() << 0;
    }

    void aCallOfAnotherThreadOutlivesIt()
    {
        QFETCH(const Answer, answer);
        QFETCH(const int, result);
        m_service.start();
        m_service.setAnswer(answer);
        auto manager = std::make_unique<ConfigurationManager>(nullptr);
        LogCapture log;
        std::future<int> call = std::async(
            std::launch::async, [facade = manager.get()] { return facade->getTabSize(); });
        QVERIFY(QTest::qWaitFor([this] { return !m_service.takeCalls().isEmpty(); }));
        manager.reset();
        if (answer.kind == Answer::Silence)
            m_service.kill();
        QCOMPARE(call.get(), result);
        QCOMPARE(log.takeLines().size(), answer.kind == Answer::Silence ? 1 : 0);
    }

private:
    const PrivateBus m_bus;
    RecordingService m_service{m_bus};
};

QTEST_GUILESS_MAIN(TestFacades)
#include "tst_facades.moc"
