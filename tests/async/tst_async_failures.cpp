// SPDX-License-Identifier: MIT

#include "AsyncTypedCalls.h"
#include "LogCapture.h"
#include "RecordingService.h"

#include <QtDBus/QDBusMetaType>
#include <QtTest/QTest>

#include <memory>

namespace {

struct MadeCall
{
    const char *signature;
    AnyReply reply;
};

QString errorName(QDBusError::ErrorType type)
{
    return QDBusError::errorString(type);
}

} // namespace

/// What failed is told by the name of the error, for every operation; nothing is logged.
class TestAsyncFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<LogCapture>(); }

    void cleanup()
    {
        m_service.kill();
        QTRY_VERIFY(!m_manager.isConnected());
        QCOMPARE(m_log->takeLines().size(), 0);
        m_log.reset();
    }

    void anAbsentServiceIsAnErrorAtOnce()
    {
        startService(Answer());
        m_service.leaveTheBus();
        QTRY_VERIFY(!m_manager.isConnected());
        for (const MadeCall &call : makeAll()) {
            QVERIFY2(call.reply.isFinished(), call.signature);
            compare(call, errorName(QDBusError::ServiceUnknown));
            QVERIFY2(call.reply.error().message().compare(QLatin1String("not connected."),
                                                          Qt::CaseInsensitive) == 0,
                     call.signature);
        }
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void aRefusalIsTheErrorOfTheService()
    {
        startService(Answer::error(QStringLiteral("tests.Error"), QStringLiteral("No \"such\"\n")));
        for (MadeCall &call : makeAll()) {
            call.reply.waitForFinished();
            compare(call, QStringLiteral("tests.Error"));
            QVERIFY2(call.reply.error().message() == QStringLiteral("No \"such\"\n"),
                     call.signature);
        }
    }

    void aReplyOfAnotherTypeIsAnError_data()
    {
        QTest::addColumn<QVariant>("given");
        const QByteArray types[] = {"int",         "bool",          "double",           "QString",
                                    "QVariantMap", "lcm::PropList", "ConfigurationList"};
        for (const QByteArray &type : types)
            QTest::newRow(type.constData()) << sampleValue(type, 0);
        QTest::newRow("unsigned int") << QVariant(7U);
        QTest::newRow("no value") << QVariant();
    }

    void aReplyOfAnotherTypeIsAnError()
    {
        QFETCH(const QVariant, given);
        startService(given.isValid() ? Answer::value(given) : Answer());
        const QByteArray got = QDBusMetaType::typeToSignature(given.userType());
        for (MadeCall &call : makeAll()) {
            call.reply.waitForFinished();
            const QByteArray expected = signatureOfResult(call);
            if (expected.isEmpty() || expected == got)
                QVERIFY2(!call.reply.isError(), call.signature);
            else
                compare(call, errorName(QDBusError::InvalidSignature));
        }
    }

    void noAnswerInTimeIsAnError()
    {
        const QVector<AsyncTypedCall> calls = asyncTypedCalls();
        for (int first = 0; first < calls.size(); first += m_manager.maximumInFlight()) {
            // The bus goes on counting them until the service has left.
            m_service.kill();
            QTRY_VERIFY(!m_manager.isConnected());
            startService(Answer::silence());
            m_manager.setTimeout(std::chrono::milliseconds(50));
            QVector<MadeCall> made;
            for (const AsyncTypedCall &call : calls.mid(first, m_manager.maximumInFlight()))
                made.append({call.signature, call.call(m_manager, In(0))});
            m_manager.setTimeout(std::chrono::milliseconds::max());
            for (MadeCall &call : made) {
                call.reply.waitForFinished();
                compare(call, errorName(QDBusError::NoReply));
            }
        }
    }

    void aServiceThatEndsIsAnErrorOfAllCalls()
    {
        startService(Answer::silence());
        QVector<MadeCall> calls = makeAll();
        int arrived = 0;
        QTRY_COMPARE(arrived += m_service.takeCalls().size(), m_manager.maximumInFlight());
        m_service.kill();
        for (int i = 0; i < calls.size(); ++i) {
            calls[i].reply.waitForFinished();
            // The bus says so, of those that it has handed on and of those that came too late.
            compare(calls.at(i),
                    errorName(i < m_manager.maximumInFlight() ? QDBusError::NoReply
                                                              : QDBusError::ServiceUnknown));
        }
    }

    void aServiceThatLeavesIsAnErrorOfAllInTheQueue()
    {
        startService(Answer::silence());
        QVector<MadeCall> calls = makeAll();
        // Those that came too late would end as well.
        int arrived = 0;
        QTRY_COMPARE(arrived += m_service.takeCalls().size(), m_manager.maximumInFlight());
        m_service.leaveTheBus();
        QTRY_VERIFY(!m_manager.isConnected());
        int ended = 0;
        for (const MadeCall &call : calls)
            ended += call.reply.isFinished();
        QCOMPARE(ended, calls.size() - m_manager.maximumInFlight());
        compare(calls.constLast(), errorName(QDBusError::ServiceUnknown));
    }

    void aMapThatCannotBeSentIsAnErrorAtOnce()
    {
        startService(Answer::value(true));
        const PendingReply<bool> reply =
            m_manager.processSequence({{QStringLiteral("key"), QVariant()}});
        QVERIFY(reply.isFinished());
        QVERIFY(reply.isError());
        QCOMPARE(reply.error().name(), errorName(QDBusError::InvalidArgs));
        QCOMPARE(reply.error().message(), QStringLiteral("key: there is no value to send"));
        QVERIFY(!reply.value());
        QVERIFY(m_service.takeCalls().isEmpty());
    }

private:
    void startService(const Answer &answer)
    {
        m_service.start();
        QTRY_VERIFY(m_manager.isConnected());
        m_service.setAnswer(answer);
    }

    /// Calls every operation, without waiting.
    QVector<MadeCall> makeAll()
    {
        QVector<MadeCall> calls;
        for (const AsyncTypedCall &call : asyncTypedCalls())
            calls.append({call.signature, call.call(m_manager, In(0))});
        return calls;
    }

    static void compare(const MadeCall &call, const QString &name)
    {
        QVERIFY2(call.reply.isError(), call.signature);
        QVERIFY2(call.reply.error().name() == name, call.signature);
        // An enumeration's default is a number here, as it is there.
        const QVariant value = call.reply.value();
        QVERIFY2(!value.isValid() || value == QVariant(value.userType(), nullptr), call.signature);
    }

    static QByteArray signatureOfResult(const MadeCall &call)
    {
        const QMetaObject &operations = Facade::staticMetaObject;
        const QMetaMethod slot = operations.method(operations.indexOfSlot(call.signature));
        return QDBusMetaType::typeToSignature(sampleValue(slot.typeName(), 0).userType());
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Async m_manager;
    std::unique_ptr<LogCapture> m_log;
};

QTEST_GUILESS_MAIN(TestAsyncFailures)
#include "tst_async_failures.moc"
