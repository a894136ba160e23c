// SPDX-License-Identifier: MIT

#include "AsyncTypedCalls.h"
#include "DescribedCalls.h"
#include "LogCapture.h"
#include "NamedCall.h"
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

// A message may have 32 MiB, of which 1 KiB is left for what stands before the arguments.
constexpr int mostCharacters = 32 * 1024 * 1024 - 1024;

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

    void noAnswerInTimeIsAnError_data()
    {
        QTest::addColumn<bool>("byName");
        QTest::newRow("operations") << false;
        QTest::newRow("methods by their names") << true;
    }

    void noAnswerInTimeIsAnError()
    {
        QFETCH(const bool, byName);
        const QVector<AsyncTypedCall> calls = asyncTypedCalls();
        for (int first = 0; first < calls.size(); first += m_manager.maximumInFlight()) {
            // The bus goes on counting them until the service has left.
            m_service.kill();
            QTRY_VERIFY(!m_manager.isConnected());
            startService(Answer::silence());
            m_manager.setTimeout(std::chrono::milliseconds(50));
            QVector<MadeCall> made;
            for (const AsyncTypedCall &call : calls.mid(first, m_manager.maximumInFlight())) {
                made.append(
                    {call.signature, byName ? makeByName(call) : call.call(m_manager, In(0))});
            }
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

    void argumentsThatCannotBeSentAreAnErrorAtOnce_data()
    {
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("problem");
        QTest::newRow("none") << QVariantList{1, QVariant()}
                              << QStringLiteral("there is no value to send");
        QTest::newRow("of a type that D-Bus does not have")
            << QVariantList{QChar(u'x')}
            << QStringLiteral("a value of the type QChar cannot be sent");
        QTest::newRow("in a list") << QVariantList{QVariantList{QChar(u'x')}}
                                   << QStringLiteral("a value of the type QChar cannot be sent");
        QTest::newRow("in a map") << QVariantList{QVariantMap{{QStringLiteral("key"), QVariant()}}}
                                  << QStringLiteral("key: there is no value to send");
    }

    void argumentsThatCannotBeSentAreAnErrorAtOnce()
    {
        QFETCH(const QVariantList, arguments);
        QFETCH(const QString, problem);
        startService(Answer::value(true));
        const PendingReply<QVariant> reply =
            m_manager.callMethod(QStringLiteral("processSequence"), arguments, QMetaType::Bool);
        QVERIFY(reply.isFinished());
        QCOMPARE(reply.error().name(), errorName(QDBusError::InvalidArgs));
        QCOMPARE(reply.error().message(), problem);
        QVERIFY(!reply.value().isValid());
        QVERIFY(m_service.takeCalls().isEmpty());
    }

    void aNameThatNoMethodCanHaveIsAnError_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"", "get.Model", "get Model", "1st", "get\xc3\xa4"})
            QTest::newRow(name) << QString::fromUtf8(name);
        QTest::newRow("256 letters") << QString(256, u'x');
    }

    void aNameThatNoMethodCanHaveIsAnError()
    {
        QFETCH(const QString, name);
        startService(Answer::value(7));
        const PendingReply<QVariant> reply = m_manager.callMethod(name, {}, QMetaType::Int);
        QVERIFY(reply.isFinished());
        QCOMPARE(reply.error().name(), errorName(QDBusError::InvalidArgs));
        QCOMPARE(reply.error().message(), QStringLiteral("no method can have this name"));
        QVERIFY(m_service.takeCalls().isEmpty());
        // The connection is not lost by it.
        QCOMPARE(m_manager.getTabSize().value(), 7);
    }

    void aResultOfATypeThatIsNotKnownIsAnError()
    {
        startService(Answer::value(7));
        for (const int type : {QMetaType::UnknownType, QMetaType::QChar}) {
            PendingReply<QVariant> reply =
                m_manager.callMethod(QStringLiteral("getTabSize"), {}, type);
            reply.waitForFinished();
            QCOMPARE(reply.error().name(), errorName(QDBusError::InvalidSignature));
        }
    }

    void aMethodWithoutResultHasAnInvalidValue()
    {
        startService(Answer::value(7));
        const PendingReply<QVariant> reply =
            m_manager.callMethod(QStringLiteral("getTabSize"), {}, QMetaType::Void);
        QVERIFY(!reply.value().isValid());
        QVERIFY(!reply.isError());
    }

    // What the core refuses by the same rule, tst_argumentlimits holds value by value.
    void whatNoBusTakesIsAnErrorAtOnce_data()
    {
        QTest::addColumn<QString>("collectionId");
        QTest::addColumn<QString>("model");
        QTest::addColumn<QVariantMap>("sequence");
        QTest::addColumn<QString>("problem");
        const QString most(mostCharacters, u'x');
        const QString half(mostCharacters / 2 + 64, u'x');
        const QString tooLarge = QStringLiteral("a message of more than 32 MiB cannot be sent");
        const QVariantMap none;
        QTest::newRow("a text") << QString() << most + most.left(64) << none << tooLarge;
        QTest::newRow("a collection id") << most << QString() << none << tooLarge;
        QTest::newRow("both together") << half << half << none << tooLarge;
        QTest::newRow("a text in a map")
            << QString() << QString() << QVariantMap{{QStringLiteral("key"), most}} << tooLarge;
        QVariant nested = 1;
        for (int i = 0; i < 21; ++i)
            nested = QVariantMap{{QStringLiteral("key"), nested}};
        QTest::newRow("maps in maps") << QString() << QString() << nested.toMap()
                                      << QStringLiteral("too many maps and lists in each other");
    }

    void whatNoBusTakesIsAnErrorAtOnce()
    {
        QFETCH(const QString, collectionId);
        QFETCH(const QString, model);
        QFETCH(const QVariantMap, sequence);
        QFETCH(const QString, problem);
        startService(Answer::value(true));
        m_manager.setCatalogsCollectionId(collectionId);
        const AnyReply replies[] = {
            sequence.isEmpty() ? AnyReply(m_manager.setModel(model))
                               : AnyReply(m_manager.processSequence(sequence)),
            AnyReply(sequence.isEmpty()
                         ? m_manager.callMethod(QStringLiteral("setModel"),
                                                {model, collectionId, false}, QMetaType::Void)
                         : m_manager.callMethod(QStringLiteral("processSequence"), {sequence},
                                                QMetaType::Bool)),
        };
        m_manager.setCatalogsCollectionId(QStringLiteral("masterCollectionKey"));
        for (const AnyReply &reply : replies) {
            QVERIFY(reply.isFinished());
            QCOMPARE(reply.error().name(), errorName(QDBusError::InvalidArgs));
            QVERIFY2(reply.error().message().endsWith(problem),
                     qPrintable(reply.error().message().right(100)));
        }
        QCOMPARE(m_service.forgetCalls(), 0);
        // The service is still reached, over the connection that there was.
        QVERIFY(m_manager.clearLog().value());
    }

    void whatABusJustTakesIsSent()
    {
        startService(Answer::value(true));
        const QString model(mostCharacters - 64, u'x');
        PendingReply<void> text = m_manager.setModel(model);
        text.waitForFinished();
        QVERIFY(!text.isError());
        QVERIFY(m_manager.processSequence({{QStringLiteral("key"), model}}).value());
        m_manager.setCatalogsCollectionId(model);
        PendingReply<QString> id = m_manager.getModel();
        id.waitForFinished();
        m_manager.setCatalogsCollectionId(QStringLiteral("masterCollectionKey"));
        // It has got there: the answer is of another type.
        QCOMPARE(id.error().type(), QDBusError::InvalidSignature);
        QCOMPARE(m_service.forgetCalls(), 3);
    }

private:
    void startService(const Answer &answer)
    {
        m_service.start();
        QTRY_VERIFY(m_manager.isConnected());
        m_service.setAnswer(answer);
    }

    /// Calls every operation, and then every method by its name, without waiting.
    QVector<MadeCall> makeAll()
    {
        QVector<MadeCall> calls;
        for (const AsyncTypedCall &call : asyncTypedCalls())
            calls.append({call.signature, call.call(m_manager, In(0))});
        for (const AsyncTypedCall &call : asyncTypedCalls())
            calls.append({call.signature, makeByName(call)});
        return calls;
    }

    AnyReply makeByName(const AsyncTypedCall &call)
    {
        const QMetaMethod slot = slotOf(call.signature);
        return AnyReply(callByDescription(m_manager, slot, sampleArguments(slot)));
    }

    static QMetaMethod slotOf(const char *signature)
    {
        const QMetaObject &operations = Facade::staticMetaObject;
        return operations.method(operations.indexOfSlot(signature));
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
        const QByteArray type = slotOf(call.signature).typeName();
        return QDBusMetaType::typeToSignature(sampleValue(type, 0).userType());
    }

    PrivateBus m_bus;
    RecordingService m_service{m_bus};
    Async m_manager;
    std::unique_ptr<LogCapture> m_log;
};

QTEST_GUILESS_MAIN(TestAsyncFailures)
#include "tst_async_failures.moc"
