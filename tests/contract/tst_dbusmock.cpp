// SPDX-License-Identifier: MIT

#include "ChildProcess.h"
#include "LogCapture.h"
#include "NamedCall.h"
#include "PrivateBus.h"
#include "SampleValues.h"
#include "ServiceName.h"

#include <libconfigurationmanager/ConfigurationManager.h>

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtTest/QTest>

using libconfigurationmanager::detail::ConfigurationManager;

/// The library agrees with a service that nobody here has written, but for its introspection data.
class TestDBusMock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperationIsUnderstoodBothWays()
    {
        ConfigurationManager manager;
        m_mock.start();
        QTRY_VERIFY2_WITH_TIMEOUT(manager.isConnected(), "python-dbusmock has not started", 60000);

        const QVector<QMetaMethod> operations = slotsOf(ConfigurationManager::staticMetaObject);
        for (const QMetaMethod &slot : operations) {
            LogCapture log;
            const QVariant result = callByName(manager, slot, sampleArguments(slot));
            for (const LogLine &line : log.takeLines())
                QFAIL(qPrintable(slot.methodSignature() + ": " + line.text));
            QVERIFY2(plain(result) == plain(sampleValue(slot.typeName(), 1)),
                     slot.methodSignature().constData());
        }
        QCOMPARE(callsOfTheMock(), operations.size());
    }

private:
    int callsOfTheMock() const
    {
        const QDBusMessage reply =
            m_bus.connect(QStringLiteral("calls"))
                .call(QDBusMessage::createMethodCall(serviceName, QStringLiteral("/"),
                                                     QStringLiteral("org.freedesktop.DBus.Mock"),
                                                     QStringLiteral("GetCalls")));
        const auto calls = reply.arguments().value(0).value<QDBusArgument>();
        int count = 0;
        calls.beginArray();
        for (; !calls.atEnd(); ++count)
            calls.asVariant();
        calls.endArray();
        return count;
    }

    PrivateBus m_bus;
    ChildProcess m_mock{
        QStringLiteral(PYTHON),
        {QStringLiteral("-B"), QStringLiteral("-m"), QStringLiteral("dbusmock"),
         QStringLiteral("--template"), QStringLiteral(DBUSMOCK_TEMPLATE),
         QStringLiteral("--logfile"), QStringLiteral("/dev/null"), QStringLiteral("--parameters"),
         QStringLiteral(R"({"xml": "%1"})").arg(QStringLiteral(INTROSPECTION_XML))}};
};

QTEST_GUILESS_MAIN(TestDBusMock)
#include "tst_dbusmock.moc"
