// SPDX-License-Identifier: MIT

#include "RecordingService.h"
#include "ServiceName.h"

#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusServiceWatcher>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

class TestRecordingService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_service.start(); }
    void cleanup() { m_service.kill(); }

    void recordsWhatArrives()
    {
        const QVariantMap map{{QStringLiteral("list"), QVariantList{1, QStringLiteral("two")}},
                              {QStringLiteral("number"), 0.5}};
        const QDBusMessage reply = call(QStringLiteral("someMethod"), {7, true, map});
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QCOMPARE(reply.arguments(), QVariantList());

        const QVector<RecordedCall> calls = m_service.takeCalls();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls.at(0).path, QStringLiteral("/some/path"));
        QCOMPARE(calls.at(0).interface, QStringLiteral("some.Interface"));
        QCOMPARE(calls.at(0).member, QStringLiteral("someMethod"));
        QCOMPARE(calls.at(0).signature, QStringLiteral("iba{sv}"));
        QCOMPARE(calls.at(0).arguments.mid(0, 2), (QVariantList{7, true}));
        const auto arrived = qdbus_cast<QVariantMap>(calls.at(0).arguments.at(2));
        QCOMPARE(arrived.value(QStringLiteral("number")), QVariant(0.5));
        QCOMPARE(qdbus_cast<QVariantList>(arrived.value(QStringLiteral("list"))),
                 (QVariantList{1, QStringLiteral("two")}));
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void repliesWithTheValueThatItWasTold()
    {
        const QVariantMap inner{{QStringLiteral("key"), 1}};
        m_service.setAnswer(Answer::value(QVariantMap{{QStringLiteral("inner"), inner}}));
        m_service.setAnswer(QStringLiteral("getNumber"), Answer::value(42));

        QCOMPARE(call(QStringLiteral("getNumber")).arguments(), QVariantList{42});
        const QDBusMessage reply = call(QStringLiteral("getMap"));
        QCOMPARE(reply.signature(), QStringLiteral("a{sv}"));
        const auto outer = qdbus_cast<QVariantMap>(reply.arguments().at(0));
        QCOMPARE(qdbus_cast<QVariantMap>(outer.value(QStringLiteral("inner"))), inner);
    }

    void repliesWithTheErrorThatItWasTold()
    {
        m_service.setAnswer(
            Answer::error(QStringLiteral("tests.Error"), QStringLiteral("No such thing")));
        const QDBusMessage reply = call(QStringLiteral("getNumber"));
        QCOMPARE(reply.errorName(), QStringLiteral("tests.Error"));
        QCOMPARE(reply.errorMessage(), QStringLiteral("No such thing"));
    }

    void endsInTheMiddleOfACall()
    {
        m_service.setAnswer(Answer::exit());
        const QDBusMessage reply = call(QStringLiteral("getNumber"));
        QCOMPARE(QDBusError(reply).type(), QDBusError::NoReply);
        QVERIFY(m_service.waitForExit());
    }

    void comesBackAtOnce()
    {
        m_service.setAnswer(QStringLiteral("getNumber"), Answer::reconnect());
        QDBusServiceWatcher watcher(serviceName, m_connection);
        const QSignalSpy owners(&watcher, &QDBusServiceWatcher::serviceOwnerChanged);
        const QDBusMessage reply = call(QStringLiteral("getNumber"));
        QCOMPARE(QDBusError(reply).type(), QDBusError::NoReply);
        QTRY_COMPARE(owners.size(), 2);
        QCOMPARE(owners.at(0).at(2).toString(), QString());
        QVERIFY(!owners.at(1).at(2).toString().isEmpty());
        QCOMPARE(call(QStringLiteral("another")).type(), QDBusMessage::ReplyMessage);
    }

    void leavesACallUnanswered()
    {
        m_service.setAnswer(QStringLiteral("silent"), Answer::silence());
        const QDBusPendingCall pending = m_connection.asyncCall(message(QStringLiteral("silent")));
        call(QStringLiteral("answered"));
        QCOMPARE(m_service.takeCalls().size(), 2);
        QVERIFY(!pending.isFinished());
    }

    void countsTheCallsInFlight()
    {
        Answer late = Answer::value(1);
        late.delayInMilliseconds = 500;
        m_service.setAnswer(late);
        QDBusPendingCall first = m_connection.asyncCall(message(QStringLiteral("getNumber")));
        QDBusPendingCall second = m_connection.asyncCall(message(QStringLiteral("getNumber")));
        first.waitForFinished();
        second.waitForFinished();
        QCOMPARE(second.reply().arguments(), QVariantList{1});
        QCOMPARE(m_service.mostCallsInFlight(), 2);
    }

private:
    static QDBusMessage message(const QString &member)
    {
        return QDBusMessage::createMethodCall(serviceName, QStringLiteral("/some/path"),
                                              QStringLiteral("some.Interface"), member);
    }

    QDBusMessage call(const QString &member, const QVariantList &arguments = {})
    {
        QDBusMessage request = message(member);
        request.setArguments(arguments);
        return m_connection.call(request);
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    QDBusConnection m_connection = m_bus.connect(QStringLiteral("caller"));
};

QTEST_GUILESS_MAIN(TestRecordingService)
#include "tst_recordingservice.moc"
