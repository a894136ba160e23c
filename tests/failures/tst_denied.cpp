// SPDX-License-Identifier: MIT

#include "FailedCalls.h"
#include "RecordingService.h"

#include <QtTest/QTest>

/// The policy of the bus does not let this process call the service.
class TestDenied : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_service.start(); }

    void theServiceIsSeen() { QTRY_VERIFY(m_facade.isConnected()); }

    void everyOperationReturnsItsDefaultAndLogsWhatTheBusSays()
    {
        const ExpectedLine denied{
            QStringLiteral("default"),
            QRegularExpression(isDBusBroker()
                                   ? QStringLiteral("^\"Sender is not authorized to send message\"")
                                   : QStringLiteral("^\"Rejected send message, "))};
        QCOMPARE(allSlots().size(), 647);
        QCOMPARE(deviations(m_facade, allSlots(), denied), QString());
        QCOMPARE(m_service.takeCalls().size(), 0);
    }

private:
    const PrivateBus m_bus{QStringLiteral(DENYING_BUS_CONFIGURATION)};
    RecordingService m_service{m_bus};
    Facade m_facade;
};

QTEST_GUILESS_MAIN(TestDenied)
#include "tst_denied.moc"
