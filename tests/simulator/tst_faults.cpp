// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusServiceWatcher>
#include <QtDBus/QDBusVariant>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

class TestFaults : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void happened(const QString &, const QString &);

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_simulator.connection().connect(
            Simulator::controlName(), Simulator::controlPath(),
            Simulator::controlName() + QStringLiteral(".Faults"), QStringLiteral("Happened"), this,
            SIGNAL(happened(QString, QString))));
    }

    void init()
    {
        m_simulator.start();
        // Signals of the test before are not taken for those of this one.
        QCOMPARE(m_simulator.error("getType"), QString());
        QCoreApplication::processEvents();
    }

    void theNextCallsFail()
    {
        inject("error", "getTabSize", 2, "out of paper");
        for (int i = 0; i < 2; ++i) {
            const QDBusMessage reply = m_simulator.call("getTabSize");
            QCOMPARE(reply.errorName(),
                     QStringLiteral("com.tavelornbraille.Simulator.Error.Injected"));
            QCOMPARE(reply.errorMessage(), QStringLiteral("out of paper"));
            QCOMPARE(m_simulator.error("getType"), QString());
        }
        QCOMPARE(m_simulator.error("getTabSize"), QString());
    }

    void aCallThatFailsIsNotCarriedOut()
    {
        inject("error", "setTabSize", 1);
        QVERIFY(!m_simulator.error("setTabSize", {7}).isEmpty());
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
    }

    void theNextCallsOfAnyMethodFail()
    {
        inject("error", "*", 2);
        QVERIFY(!m_simulator.error("getTabSize").isEmpty());
        QVERIFY(!m_simulator.error("getType").isEmpty());
        QCOMPARE(m_simulator.error("getType"), QString());
    }

    void callsFailUntilThatIsCleared()
    {
        inject("error", "getType", 0);
        for (int i = 0; i < 5; ++i)
            QVERIFY(!m_simulator.error("getType").isEmpty());
        control("Clear");
        QCOMPARE(m_simulator.error("getType"), QString());
    }

    void theAnswerIsOfAnotherType_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("right");
        const QString master = Simulator::masterCollection();
        QTest::newRow("int") << "getTabSize" << QVariantList() << "i";
        QTest::newRow("text") << "getModel" << QVariantList{master} << "s";
        QTest::newRow("double") << "getMaxWidth" << QVariantList() << "d";
        QTest::newRow("bool") << "isArvo" << QVariantList() << "b";
        QTest::newRow("map") << "embosserInfoCmd" << QVariantList() << "a{sv}";
        QTest::newRow("list") << "getValueList" << QVariantList{2} << "aa{sv}";
    }

    void theAnswerIsOfAnotherType()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, right);
        QCOMPARE(m_simulator.call(method, arguments).signature(), right);
        inject("wrong-type", qPrintable(method), 1);
        const QDBusMessage reply = m_simulator.call(method, arguments);
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QVERIFY(reply.signature() != right);
    }

    void theAnswerComesLate()
    {
        inject("delay", "getTabSize", 1, "200");
        QElapsedTimer sinceTheCall;
        sinceTheCall.start();
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
        QVERIFY(sinceTheCall.elapsed() >= 200);
    }

    void whatIsAnsweredLateOrWronglyIsCarriedOutAtOnce()
    {
        inject("delay", "setTabSize", 1, "3600000");
        const QDBusPendingCall late = m_simulator.asyncCall("setTabSize", {7});
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(7));
        QVERIFY(!late.isFinished());
        inject("wrong-type", "setTabSize", 1);
        QCOMPARE(m_simulator.call("setTabSize", {2}).signature(), QStringLiteral("s"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(2));
    }

    void othersAreAnsweredWhileOneWaits()
    {
        inject("delay", "getTabSize", 1, "3600000");
        const QDBusPendingCall late =
            m_simulator.connection().asyncCall(message(QStringLiteral("getTabSize")));
        QCOMPARE(m_simulator.error("getType"), QString());
        QVERIFY(!late.isFinished());
    }

    void theAnswerNeverComes()
    {
        inject("no-answer", "setTabSize", 1);
        QDBusMessage set = message(QStringLiteral("setTabSize"));
        set << 7;
        const QDBusMessage reply = m_simulator.connection().call(set, QDBus::Block, 200);
        QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.NoReply"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
    }

    void theServiceCrashes()
    {
        const QSignalSpy told(this, &TestFaults::happened);
        inject("crash", "getTabSize", 1);
        QCOMPARE(m_simulator.call("getTabSize").type(), QDBusMessage::ErrorMessage);
        QVERIFY(m_simulator.process().waitForFinished());
        QCOMPARE(m_simulator.process().exitStatus(), QProcess::CrashExit);
        QTRY_COMPARE(told.size(), 1);
        QCOMPARE(told.at(0), QVariantList({QStringLiteral("crash"), QStringLiteral("getTabSize")}));
    }

    void theServiceLeavesTheBusForAWhile()
    {
        inject("drop-name", "getTabSize", 1, "200");
        const QDBusServiceWatcher watcher(Simulator::serviceName(), m_simulator.connection());
        const QSignalSpy left(&watcher, &QDBusServiceWatcher::serviceUnregistered);
        const QSignalSpy come(&watcher, &QDBusServiceWatcher::serviceRegistered);
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
        QTRY_COMPARE(left.size(), 1);
        QTRY_COMPARE(come.size(), 1);
        QCOMPARE(m_simulator.error("getTabSize"), QString());
    }

    void theServiceLeavesTheBusUntilItIsToldToReturn()
    {
        inject("drop-name", "getTabSize", 1, "0");
        QCOMPARE(m_simulator.error("getTabSize"), QString());
        QCOMPARE(m_simulator.call("getTabSize").errorName(),
                 QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"));
        QCOMPARE(control("History").toList().size(), 1);
        control("Return");
        QCOMPARE(m_simulator.error("getTabSize"), QString());
    }

    void anAbsenceThatLastsEndsOneOfAWhile()
    {
        inject("drop-name", "getTabSize", 1, "200");
        QCOMPARE(m_simulator.error("getTabSize"), QString());
        // The service itself is still found by the other name.
        inject("drop-name", "getTabSize", 1, "0");
        QCOMPARE(callDuringAbsence("getTabSize").type(), QDBusMessage::ReplyMessage);
        letPass("400");
        QCOMPARE(m_simulator.call("getTabSize").errorName(),
                 QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"));
    }

    void theEndOfAWhileIsNothingToOneThatHasReturned()
    {
        inject("drop-name", "getTabSize", 1, "200");
        QCOMPARE(m_simulator.error("getTabSize"), QString());
        control("Return");
        const QDBusServiceWatcher watcher(Simulator::serviceName(), m_simulator.connection());
        const QSignalSpy changed(&watcher, &QDBusServiceWatcher::serviceOwnerChanged);
        letPass("400");
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
        QCoreApplication::processEvents();
        QCOMPARE(changed.size(), 0);
    }

    void aSecondSimulatorDoesNotTakeTheNameThatWasLeft()
    {
        inject("drop-name", "getTabSize", 1, "0");
        QCOMPARE(m_simulator.error("getTabSize"), QString());
        const QDBusServiceWatcher watcher(Simulator::serviceName(), m_simulator.connection());
        const QSignalSpy taken(&watcher, &QDBusServiceWatcher::serviceRegistered);
        QCOMPARE(runSimulator({}).exitCode, 1);
        control("Return");
        QTRY_VERIFY(!taken.isEmpty());
        QCOMPARE(taken.size(), 1);
        QCOMPARE(m_simulator.error("getTabSize"), QString());
    }

    void everythingCanBeReadBack()
    {
        QSignalSpy told(this, &TestFaults::happened);
        inject("error", "getType", 3, "no");
        inject("delay", "*", 0, "1");
        const QVariantMap delay{{QStringLiteral("kind"), QStringLiteral("delay")},
                                {QStringLiteral("method"), QStringLiteral("*")},
                                {QStringLiteral("calls"), 0U},
                                {QStringLiteral("detail"), QStringLiteral("1")}};
        const QVariantMap failure{{QStringLiteral("kind"), QStringLiteral("error")},
                                  {QStringLiteral("method"), QStringLiteral("getType")},
                                  {QStringLiteral("calls"), 3U},
                                  {QStringLiteral("detail"), QStringLiteral("no")}};
        QCOMPARE(control("Pending").toList(), QVariantList({failure, delay}));
        m_simulator.error("getType");
        m_simulator.error("getTabSize");
        QVariantMap less = failure;
        less.insert(QStringLiteral("calls"), 2U);
        QCOMPARE(control("Pending").toList(), QVariantList({less, delay}));
        const QVariantMap first{{QStringLiteral("kind"), QStringLiteral("error")},
                                {QStringLiteral("method"), QStringLiteral("getType")}};
        const QVariantMap second{{QStringLiteral("kind"), QStringLiteral("delay")},
                                 {QStringLiteral("method"), QStringLiteral("getTabSize")}};
        QCOMPARE(control("History").toList(), QVariantList({first, second}));
        QTRY_COMPARE(told.size(), 2);
        QCOMPARE(told.at(0), QVariantList({QStringLiteral("error"), QStringLiteral("getType")}));
        control("Clear");
        QCOMPARE(control("Pending").toList(), QVariantList());
        QCOMPARE(control("History").toList(), QVariantList());
    }

    void theLogOfTheServiceHasThemToo()
    {
        m_simulator.call("setLogger", {true});
        inject("error", "getTabSize", 1, "out of paper");
        m_simulator.call("getTabSize");
        inject("no-answer", "getTabSize", 1);
        m_simulator.connection().call(message(QStringLiteral("getTabSize")), QDBus::Block, 200);
        inject("wrong-type", "getTabSize", 1);
        m_simulator.call("getTabSize");
        const QStringList lines =
            m_simulator.control(QStringLiteral("Log"), QStringLiteral("Lines")).toStringList();
        QStringList outcomes;
        for (const QString &line : lines)
            outcomes += line.section(QLatin1Char(' '), 1);
        QCOMPARE(
            outcomes,
            QStringList({QStringLiteral("setLogger ok"),
                         QStringLiteral("getTabSize com.tavelornbraille.Simulator.Error.Injected"),
                         QStringLiteral("getTabSize no-answer"), QStringLiteral("getTabSize ok")}));
    }

    void theHistoryIsOfTheLastThousandCalls()
    {
        const int remembered = 1000;
        inject("error", "*", 0);
        m_simulator.error("getType");
        for (int i = 0; i < remembered - 1; ++i)
            m_simulator.error("getTabSize");
        const auto methodOf = [](const QVariant &entry) {
            return entry.toMap().value(QStringLiteral("method")).toString();
        };
        QVariantList history = control("History").toList();
        QCOMPARE(history.size(), remembered);
        QCOMPARE(methodOf(history.constFirst()), QStringLiteral("getType"));
        m_simulator.error("getModel");
        history = control("History").toList();
        QCOMPARE(history.size(), remembered);
        QCOMPARE(methodOf(history.constFirst()), QStringLiteral("getTabSize"));
        QCOMPARE(methodOf(history.constLast()), QStringLiteral("getModel"));
    }

    void theCommandLineInjectsTheSame()
    {
        m_simulator.start({QStringLiteral("--fault"), QStringLiteral("error:getType:2:a: b"),
                           QStringLiteral("--fault"), QStringLiteral("wrong-type:getTabSize")});
        QCOMPARE(m_simulator.error("getType"), QStringLiteral("a: b"));
        QCOMPARE(m_simulator.call("getTabSize").signature(), QStringLiteral("s"));
        QCOMPARE(m_simulator.error("getType"), QStringLiteral("a: b"));
        QCOMPARE(control("Pending").toList(), QVariantList());
        QCOMPARE(control("History").toList().size(), 3);
    }

    void theNextCallsAreAnsweredWithAnyValue()
    {
        const auto answerWith = [this](const QVariant &value) {
            control("Answer",
                    {QStringLiteral("getTabSize"), 1U, QVariant::fromValue(QDBusVariant(value))});
        };
        answerWith(QStringLiteral("eight"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant("eight"));
        answerWith(2.5);
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(2.5));
        answerWith(QVariantMap{{QStringLiteral("key"), 7}});
        QCOMPARE(m_simulator.value("getTabSize"),
                 QVariant(QVariantMap{{QStringLiteral("key"), 7}}));
        answerWith(QStringList{QStringLiteral("a"), QStringLiteral("b")});
        QCOMPARE(m_simulator.call("getTabSize").signature(), QStringLiteral("as"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
    }

    void whatIsAnsweredAtOnceIsNotCarriedOut()
    {
        control("Answer",
                {QStringLiteral("setTabSize"), 1U, QVariant::fromValue(QDBusVariant(true))});
        QCOMPARE(m_simulator.value("setTabSize", {7}), QVariant(true));
        control("Refuse", {QStringLiteral("setTabSize"), 1U, QStringLiteral("org.example.No"),
                           QStringLiteral("not now")});
        const QDBusMessage refused = m_simulator.call("setTabSize", {7});
        QCOMPARE(refused.errorName(), QStringLiteral("org.example.No"));
        QCOMPARE(refused.errorMessage(), QStringLiteral("not now"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
        inject("refuse", "getTabSize", 1, "org.example.No: neither");
        QCOMPARE(m_simulator.call("getTabSize").errorName(), QStringLiteral("org.example.No"));
    }

    void theNameOfAnErrorMayBeAsLongAsDBusAllows()
    {
        const QString name = nameOfError(255);
        inject("refuse", "getTabSize", 1, qPrintable(name));
        QCOMPARE(m_simulator.call("getTabSize").errorName(), name);
    }

    void theCallsAreRecorded()
    {
        const QString master = Simulator::masterCollection();
        const QString secret = QStringLiteral("open sesame");
        m_simulator.call("setTabSize", {7});
        m_simulator.call("setTabSize", {9});
        m_simulator.call("setPassphrase", {secret, master});
        m_simulator.call("processSequence", {QVariantMap{{QStringLiteral("Passphrase"), secret},
                                                         {QStringLiteral("TabSize"), 3}}});
        const auto invalid =
            QStringLiteral("com.tavelornbraille.ConfigurationManager.Error.InvalidValue");
        QCOMPARE(recorded(QStringLiteral("setTabSize")),
                 QStringList({QStringLiteral("setTabSize 7 ok"),
                              QStringLiteral("setTabSize 9 ") + invalid}));
        QCOMPARE(recorded(QStringLiteral("setPassphrase")),
                 QStringList(QStringLiteral("setPassphrase (withheld) ok")));
        const QStringList all = recorded(QString());
        // getType is called before each test.
        QCOMPARE(all.size(), 5);
        QVERIFY(!all.join(QLatin1Char(' ')).contains(secret));
        m_simulator.control(QStringLiteral("Calls"), QStringLiteral("Clear"));
        QCOMPARE(recorded(QString()), QStringList());
    }

    void aResetBringsTheModelsValuesBack()
    {
        const QString other = QStringLiteral("other");
        QCOMPARE(m_simulator.error("setTabSize", {7}), QString());
        QCOMPARE(m_simulator.error("setLetterFont", {3, other, true}), QString());
        m_simulator.control(QStringLiteral("Calls"), QStringLiteral("Reset"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
        QCOMPARE(m_simulator.value("getLetterFont", {other}), QVariant(0));
        QCOMPARE(m_simulator.value("loadUserSettings"), QVariant(false));
        QCOMPARE(m_simulator.value("removeCatalogsCollection", {other}), QVariant(false));
    }

    void aFaultThatCannotBeIsRefused_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("detail");
        QTest::addColumn<QString>("said");
        QTest::newRow("kind") << "slow"
                              << "getType"
                              << ""
                              << "there is no fault \"slow\"";
        QTest::newRow("method") << "error"
                                << "getTyp"
                                << ""
                                << "the service has no method getTyp";
        QTest::newRow("no detail") << "delay"
                                   << "getType"
                                   << ""
                                   << "delay takes a number of milliseconds";
        QTest::newRow("no error") << "refuse"
                                  << "getType"
                                  << "no error: it says"
                                  << "refuse takes the name of a D-Bus error";
        QTest::newRow("an error with too long a name")
            << "refuse"
            << "getType" << nameOfError(256) << "refuse takes the name of a D-Bus error";
        QTest::newRow("negative detail") << "delay"
                                         << "getType"
                                         << "-1"
                                         << "delay takes a number of milliseconds";
        QTest::newRow("detail") << "crash"
                                << "getType"
                                << "now"
                                << "crash takes no detail";
    }

    void aFaultThatCannotBeIsRefused()
    {
        QFETCH(QString, kind);
        QFETCH(QString, method);
        QFETCH(QString, detail);
        QFETCH(QString, said);
        QDBusMessage call = QDBusMessage::createMethodCall(
            Simulator::serviceName(), Simulator::controlPath(),
            Simulator::controlName() + QStringLiteral(".Faults"), QStringLiteral("Inject"));
        call << kind << method << 1U << detail;
        const QDBusMessage reply = m_simulator.connection().call(call);
        QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
        QVERIFY2(reply.errorMessage().contains(said), qPrintable(reply.errorMessage()));
        QCOMPARE(control("Pending").toList(), QVariantList());
    }

private:
    static QString nameOfError(int length)
    {
        return QStringLiteral("org.").leftJustified(length, QLatin1Char('a'));
    }

    /// Method, first argument and outcome of the calls.
    QStringList recorded(const QString &method) const
    {
        QStringList calls;
        const QVariant list =
            m_simulator.control(QStringLiteral("Calls"), QStringLiteral("Calls"), {method});
        for (const QVariant &call : list.toList()) {
            const QVariantMap map = call.toMap();
            const auto arguments = qdbus_cast<QVariantList>(map.value(QStringLiteral("arguments")));
            QString first = arguments.value(0).toString();
            if (arguments.value(0).userType() == qMetaTypeId<QDBusArgument>()) {
                const auto sequence = qdbus_cast<QVariantMap>(arguments.value(0));
                for (const QVariant &value : sequence)
                    first += value.toString();
            }
            calls += QStringLiteral("%1 %2 %3")
                         .arg(map.value(QStringLiteral("method")).toString(), first,
                              map.value(QStringLiteral("outcome")).toString());
        }
        return calls;
    }

    static QDBusMessage message(const QString &method)
    {
        return QDBusMessage::createMethodCall(Simulator::serviceName(), QStringLiteral("/"),
                                              Simulator::serviceName(), method);
    }

    /// Calls the service by the name that it does not leave.
    QDBusMessage callDuringAbsence(const QString &method) const
    {
        return m_simulator.connection().call(QDBusMessage::createMethodCall(
            Simulator::controlName(), QStringLiteral("/"), Simulator::serviceName(), method));
    }

    /// Returns when all that the simulator was to do within that time has been done.
    void letPass(const char *milliseconds) const
    {
        inject("delay", "getType", 1, milliseconds);
        QCOMPARE(callDuringAbsence("getType").type(), QDBusMessage::ReplyMessage);
    }

    QVariant control(const char *method, const QVariantList &arguments = {}) const
    {
        return m_simulator.control(QStringLiteral("Faults"), QString::fromLatin1(method),
                                   arguments);
    }

    void inject(const char *kind, const char *method, uint calls, const char *detail = "") const
    {
        control("Inject", {QString::fromLatin1(kind), QString::fromLatin1(method), calls,
                           QString::fromLatin1(detail)});
    }

    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
};

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
