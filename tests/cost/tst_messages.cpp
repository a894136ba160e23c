// SPDX-License-Identifier: MIT

#include "BusMonitor.h"
#include "RecordingService.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;

/// How many messages the library sends and gets.
class TestMessages : public QObject
{
    Q_OBJECT

private:
    PrivateBus m_bus;
    const QDBusConnection m_connection = QDBusConnection::systemBus();
    BusMonitor m_monitor{m_bus};

    void compareMessages(const char *what, int expected)
    {
        const int messages = m_monitor.countMessages(m_connection);
        qInfo("messages of %s: %d, at most %d", what, messages, expected);
        QCOMPARE(messages, expected);
    }

private Q_SLOTS:
    // First, because all managers of a process share what they watch on the bus: two matches, and
    // an answer on the owner for each manager.
    void ofManagers()
    {
        const ConfigurationManager first(nullptr);
        compareMessages("the first manager", 4);
        const ConfigurationManager second(nullptr);
        compareMessages("a second manager", 2);
    }

    void ofAnOperation()
    {
        RecordingService service(m_bus);
        service.start();
        ConfigurationManager manager(nullptr);
        m_monitor.countMessages(m_connection);
        service.setAnswer(Answer::value(9600));
        QCOMPARE(manager.getBaudrate(), 9600);
        compareMessages("an operation", 2);
    }
};

QTEST_GUILESS_MAIN(TestMessages)
#include "tst_messages.moc"
