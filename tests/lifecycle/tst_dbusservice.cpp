// SPDX-License-Identifier: MIT

#include "BusMonitor.h"
#include "RecordingService.h"
#include "ServiceName.h"

#include <libtavelorn/DBusService.h>

#include <QtCore/QPointer>
#include <QtCore/QThread>
#include <QtDBus/QDBusAbstractInterface>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusReply>
#include <QtDBus/QDBusServiceWatcher>
#include <QtTest/QTest>

#include <atomic>
#include <future>
#include <memory>
#include <utility>

using libtavelorn::DBusService;

namespace {

/// The signals of a service, in their order.
class Signals
{
public:
    explicit Signals(const DBusService &service)
    {
        QObject::connect(&service, &DBusService::connected, &m_receiver, [this, &service] {
            m_texts.append(QStringLiteral("connected"));
            m_consistent = m_consistent && service.isConnected();
        });
        QObject::connect(&service, &DBusService::disconnected, &m_receiver, [this, &service] {
            m_texts.append(QStringLiteral("disconnected"));
            m_consistent = m_consistent && !service.isConnected();
        });
    }

    QString texts() const { return m_texts.join(QLatin1Char(' ')); }
    /// Whether isConnected() gave the same answer as the signal each time.
    bool areConsistent() const { return m_consistent; }

private:
    QObject m_receiver;
    QStringList m_texts;
    bool m_consistent = true;
};

} // namespace

class TestDBusService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_first.unregisterService(serviceName);
        m_second.unregisterService(serviceName);
    }

    // First: Qt holds the signals of the system bus back until the event loop runs for the first
    // time, and may then deliver newer ones before them.
    void knowsTheLastOfTheChangesBeforeTheEventLoopStarted()
    {
        const DBusService service(QDBusConnection::systemBus(), serviceName, nullptr);
        const QString laterName = serviceName + QStringLiteral(".Later");
        const DBusService later(QDBusConnection::systemBus(), laterName, nullptr);
        QVERIFY(m_first.registerService(serviceName));
        // Not waited for, so that the leaving arrives when the event loop starts.
        m_first.interface()->asyncCall(QStringLiteral("ReleaseName"), serviceName);
        m_first.interface()->asyncCall(QStringLiteral("RequestName"), laterName, 0U);
        QTRY_VERIFY(later.isConnected());
        QVERIFY(m_first.unregisterService(laterName));
        QTRY_VERIFY(!later.isConnected());
        QVERIFY(!service.isConnected());
    }

    void tellsWhenTheServiceComesAndWhenItLeaves()
    {
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        QVERIFY(!service.isConnected());

        QVERIFY(m_first.registerService(serviceName));
        QTRY_COMPARE(seen.texts(), QStringLiteral("connected"));
        QVERIFY(m_first.unregisterService(serviceName));
        QTRY_COMPARE(seen.texts(), QStringLiteral("connected disconnected"));
        QVERIFY(m_second.registerService(serviceName));
        QTRY_COMPARE(seen.texts(), QStringLiteral("connected disconnected connected"));
        QVERIFY(seen.areConsistent());
    }

    void knowsAtOnceOfAServiceThatIsThere()
    {
        QVERIFY(m_first.registerService(serviceName));
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        QVERIFY(service.isConnected());

        QVERIFY(m_first.unregisterService(serviceName));
        QTRY_COMPARE(seen.texts(), QStringLiteral("disconnected"));
    }

    void takesAReplacedOwnerForALeavingAndAComing()
    {
        own(m_first);
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        own(m_second);
        QTRY_COMPARE(seen.texts(), QStringLiteral("disconnected connected"));
        QVERIFY(service.isConnected());
        QVERIFY(seen.areConsistent());
    }

    void tellsThatTheServiceCameWhenItLeavesAtOnce()
    {
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        for (int i = 0; i < 2; ++i) {
            QVERIFY(m_first.registerService(serviceName));
            QVERIFY(m_first.unregisterService(serviceName));
        }
        QTRY_COMPARE(seen.texts(), QStringLiteral("connected disconnected connected disconnected"));
        QVERIFY(seen.areConsistent());
    }

    void tellsOfNoOwnerTwice()
    {
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        const QString laterName = serviceName + QStringLiteral(".Later");
        const DBusService later(m_watching, laterName, nullptr);
        QVERIFY(m_first.registerService(serviceName));
        QVERIFY(m_first.unregisterService(serviceName));
        QVERIFY(m_second.registerService(serviceName));
        QVERIFY(m_first.registerService(laterName));
        QTRY_VERIFY(later.isConnected());
        QVERIFY(m_first.unregisterService(laterName));
        QCOMPARE(seen.texts(), QStringLiteral("connected disconnected connected"));
    }

    void tellsThatTheServiceLeftWhenItIsBackAtOnce()
    {
        QVERIFY(m_first.registerService(serviceName));
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        QVERIFY(m_first.unregisterService(serviceName));
        QVERIFY(m_first.registerService(serviceName));
        QTRY_COMPARE(seen.texts(), QStringLiteral("disconnected connected"));
        QVERIFY(seen.areConsistent());
    }

    void tellsEachChangeOnceWhenASlotRunsTheEventLoop_data()
    {
        QTest::addColumn<bool>("replaced");
        QTest::addColumn<QString>("texts");
        QTest::newRow("the new owner leaves") << false << QStringLiteral("disconnected");
        QTest::newRow("the new owner is replaced")
            << true << QStringLiteral("disconnected connected");
    }

    void tellsEachChangeOnceWhenASlotRunsTheEventLoop()
    {
        QFETCH(const bool, replaced);
        QFETCH(const QString, texts);
        own(m_first);
        const DBusService service(m_watching, serviceName, nullptr);
        const QString laterName = serviceName + QStringLiteral(".Later");
        const DBusService later(m_watching, laterName, nullptr);
        const Signals seen(service);
        bool entered = false;
        connect(&service, &DBusService::disconnected, this, [&] {
            if (std::exchange(entered, true))
                return;
            if (replaced)
                own(m_first);
            else
                QVERIFY(m_second.unregisterService(serviceName));
            // What comes after that change has been told, so it has been told itself.
            QVERIFY(m_first.registerService(laterName));
            QTRY_VERIFY(later.isConnected());
            QVERIFY(m_first.unregisterService(laterName));
        });
        own(m_second);
        QTRY_VERIFY(!later.isConnected() && entered);
        QCOMPARE(seen.texts(), texts);
        QCOMPARE(service.isConnected(), replaced);
        QVERIFY(seen.areConsistent());
    }

    void movesToAnotherThreadAsAWhole()
    {
        QThread thread;
        auto *service = new DBusService(m_watching, serviceName, nullptr);
        std::atomic<QThread *> told = nullptr;
        connect(
            service, &DBusService::connected, service, [&] { told = QThread::currentThread(); },
            Qt::DirectConnection);
        connect(&thread, &QThread::finished, service, &QObject::deleteLater);
        service->moveToThread(&thread);
        thread.start();
        QVERIFY(m_first.registerService(serviceName));
        QTRY_COMPARE(told.load(), &thread);
        thread.quit();
        QVERIFY(thread.wait());
    }

    void heedsNoOtherService()
    {
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        QVERIFY(m_first.registerService(serviceName + QStringLiteral(".Other")));
        QVERIFY(m_first.registerService(QStringLiteral("com.tavelornbraille")));
        QVERIFY(m_first.registerService(serviceName));
        QTRY_COMPARE(seen.texts(), QStringLiteral("connected"));
    }

    void isNotConnectedWithoutABus()
    {
        DBusService service(QDBusConnection(QStringLiteral("none")), serviceName, nullptr);
        QVERIFY(!service.isConnected());
        QDBusAbstractInterface *proxy = service.interface(QStringLiteral("/"), serviceName);
        QVERIFY(proxy);
        QCOMPARE(proxy->call(QStringLiteral("getTabSize")).type(), QDBusMessage::ErrorMessage);
    }

    void isReadableFromAnotherThread()
    {
        QVERIFY(m_first.registerService(serviceName));
        const DBusService service(m_watching, serviceName, nullptr);
        QVERIFY(std::async(std::launch::async, [&] { return service.isConnected(); }).get());
    }

    // The thread sanitizer sees whether that is safe.
    void isReadableFromAnotherThreadWhileItChanges()
    {
        const DBusService service(m_watching, serviceName, nullptr);
        std::atomic<bool> isReading = false;
        std::atomic<bool> isOver = false;
        auto reader = std::async(std::launch::async, [&] {
            while (!isOver) {
                service.isConnected();
                isReading = true;
            }
        });
        QTRY_VERIFY(isReading);
        for (int i = 0; i < 10; ++i) {
            QVERIFY(m_first.registerService(serviceName));
            QTRY_VERIFY(service.isConnected());
            QVERIFY(m_first.unregisterService(serviceName));
            QTRY_VERIFY(!service.isConnected());
        }
        isOver = true;
        reader.get();
    }

    void asksTheBusAfterItHasSubscribedAndThenNoMore()
    {
        BusMonitor monitor(m_bus);
        const DBusService service(m_watching, serviceName, nullptr);
        // The question comes last, so that no change falls between it and the subscription.
        QCOMPARE(monitor.takeCalls(m_watching).last(),
                 QStringLiteral("org.freedesktop.DBus GetNameOwner"));
        for (int i = 0; i < 1000; ++i)
            QVERIFY(!service.isConnected());
        QCOMPARE(monitor.takeCalls(m_watching), QStringList());
    }

    void asksTheBusOnlyAfterTheFirstSignal()
    {
        const DBusService service(m_watching, serviceName, nullptr);
        QVERIFY(m_first.registerService(serviceName));
        QTRY_VERIFY(service.isConnected());
        BusMonitor monitor(m_bus);
        QVERIFY(m_first.unregisterService(serviceName));
        QTRY_VERIFY(!service.isConnected());
        QVERIFY(m_first.registerService(serviceName));
        QTRY_VERIFY(service.isConnected());
        QCOMPARE(monitor.takeCalls(m_watching), QStringList());
    }

    void doesNotBelieveOutdatedSignals_data()
    {
        QTest::addColumn<bool>("present");
        QTest::newRow("the service is there") << true;
        QTest::newRow("the service is not there") << false;
    }

    // As when Qt delivers signals in another order than the bus has sent them.
    void doesNotBelieveOutdatedSignals()
    {
        QFETCH(const bool, present);
        if (present)
            QVERIFY(m_first.registerService(serviceName));
        const DBusService service(m_watching, serviceName, nullptr);
        auto *const watcher = service.findChild<QDBusServiceWatcher *>();
        QVERIFY(watcher);
        const QString before = present ? m_first.baseService() : QString();
        const QString other = m_second.baseService();
        Q_EMIT watcher->serviceOwnerChanged(serviceName, other, before);
        QCOMPARE(service.isConnected(), present);
        // This one goes on where the truth is.
        Q_EMIT watcher->serviceOwnerChanged(serviceName, before, other);
        Q_EMIT watcher->serviceOwnerChanged(serviceName, other, QString());
        QCOMPARE(service.isConnected(), present);
    }

    void takesAFirstSignalForAChangeOfTheOwnerThatItFound_data()
    {
        QTest::addColumn<bool>("outdated");
        QTest::addColumn<QString>("texts");
        QTest::newRow("a new one") << false << QStringLiteral("disconnected connected");
        QTest::newRow("of the coming that it has found") << true << QString();
    }

    void takesAFirstSignalForAChangeOfTheOwnerThatItFound()
    {
        QFETCH(const bool, outdated);
        QFETCH(const QString, texts);
        own(m_first);
        const DBusService service(m_watching, serviceName, nullptr);
        const Signals seen(service);
        if (outdated) {
            Q_EMIT service.findChild<QDBusServiceWatcher *>()->serviceOwnerChanged(
                serviceName, QString(), m_first.baseService());
        } else {
            own(m_second);
            QTRY_VERIFY(!seen.texts().isEmpty());
        }
        QCOMPARE(seen.texts(), texts);
        QVERIFY(service.isConnected());
    }

    void knowsAServiceWhoseNameIsNoneOfAnInterface()
    {
        const QString hyphenated = QStringLiteral("com.example.some-service");
        QVERIFY(m_first.registerService(hyphenated));
        const DBusService present(m_watching, hyphenated, nullptr);
        QVERIFY(present.isConnected());
        QVERIFY(m_first.unregisterService(hyphenated));
        QTRY_VERIFY(!present.isConnected());
        const DBusService absent(m_watching, QStringLiteral(":1.9999"), nullptr);
        QVERIFY(!absent.isConnected());
    }

    void makesTheUsualProxyWithoutAskingTheBusAgain()
    {
        DBusService service(m_watching, serviceName, nullptr);
        BusMonitor monitor(m_bus);
        QDBusAbstractInterface *proxy = service.interface(QStringLiteral("/"), serviceName);
        QCOMPARE(proxy->path(), QStringLiteral("/"));
        QCOMPARE(proxy->interface(), serviceName);
        QCOMPARE(monitor.takeCalls(m_watching), QStringList());
    }

    void makesProxiesThatItOwns()
    {
        auto service = std::make_unique<DBusService>(m_watching, serviceName, nullptr);
        const QString path = QStringLiteral("/some/path");
        const QString interface = QStringLiteral("some.Interface");
        const QPointer<QDBusAbstractInterface> proxy = service->interface(path, interface);
        QCOMPARE(proxy->service(), serviceName);
        QCOMPARE(proxy->path(), path);
        QCOMPARE(proxy->interface(), interface);
        QCOMPARE(proxy->connection().baseService(), m_watching.baseService());
        service.reset();
        QVERIFY(!proxy);
    }

    void makesProxiesThatDoNotIntrospect()
    {
        RecordingService recording(m_bus);
        recording.start();
        recording.setAnswer(Answer::value(8));
        DBusService service(m_watching, serviceName, nullptr);
        QDBusAbstractInterface *proxy = service.interface(QStringLiteral("/"), serviceName);
        QVERIFY(recording.takeCalls().isEmpty());

        const QDBusReply<int> reply = proxy->call(QStringLiteral("getTabSize"));
        QCOMPARE(reply.value(), 8);
        QCOMPARE(recording.takeCalls().size(), 1);
    }

    void belongsToItsParent()
    {
        auto parent = std::make_unique<QObject>();
        const QPointer<DBusService> service =
            new DBusService(m_watching, serviceName, parent.get());
        QCOMPARE(service->parent(), parent.get());
        parent.reset();
        QVERIFY(!service);
    }

private:
    /// Gives the connection the name, whoever has it.
    static void own(const QDBusConnection &connection)
    {
        QCOMPARE(connection.interface()
                     ->registerService(serviceName,
                                       QDBusConnectionInterface::ReplaceExistingService,
                                       QDBusConnectionInterface::AllowReplacement)
                     .value(),
                 QDBusConnectionInterface::ServiceRegistered);
    }

    const PrivateBus m_bus;
    QDBusConnection m_watching = m_bus.connect(QStringLiteral("watching"));
    QDBusConnection m_first = m_bus.connect(QStringLiteral("first"));
    QDBusConnection m_second = m_bus.connect(QStringLiteral("second"));
};

QTEST_GUILESS_MAIN(TestDBusService)
#include "tst_dbusservice.moc"
