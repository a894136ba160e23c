// SPDX-License-Identifier: MIT

#include "ChildProcess.h"
#include "PrivateBus.h"

#include <libconfigurationmanager-testing/SimulatedEmbosser.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QModelIndex>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusReply>
#include <QtTest/QtTest>

#include <csignal>

using namespace std::chrono_literals;
using libconfigurationmanager::PrintJob;
using libconfigurationmanager::ReceivedCall;
using libconfigurationmanager::SimulatedEmbosser;

namespace {

const QString service = QStringLiteral("com.tavelornbraille.ConfigurationManager");

QDBusPendingCall send(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(service, QStringLiteral("/"), service, method);
    message.setArguments(arguments);
    const int milliseconds = 20000;
    return QDBusConnection::systemBus().asyncCall(message, milliseconds);
}

QDBusMessage call(const QString &method, const QVariantList &arguments = {})
{
    QDBusPendingCall call = send(method, arguments);
    call.waitForFinished();
    return call.reply();
}

bool isThere()
{
    return QDBusConnection::systemBus().interface()->isServiceRegistered(service);
}

/// Test cases of somebody, each run in a process of its own.
class Cases : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void afterTheSystemBusWasUsed()
    {
        const PrivateBus others;
        QVERIFY(QDBusConnection::systemBus().isConnected());
        SimulatedEmbosser().start();
    }
    void afterASystemBusWasNotThere()
    {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
        QVERIFY(!QDBusConnection::systemBus().isConnected());
        SimulatedEmbosser().start();
    }
    void whileThereIsAnother()
    {
        SimulatedEmbosser first;
        first.start();
        SimulatedEmbosser().start();
    }
    void afterThereWasAnother()
    {
        SimulatedEmbosser().start();
        SimulatedEmbosser().start();
    }
    void ofAnUnknownModel() { SimulatedEmbosser().start(QStringLiteral("Nobody")); }
    void ofAProfileThatIsNotThere()
    {
        SimulatedEmbosser().startProfile(QStringLiteral("/nonexistent.json"));
    }
    void withoutADaemon()
    {
        qputenv("PATH", "/nonexistent");
        SimulatedEmbosser().start();
    }
    void withoutASimulator()
    {
        SimulatedEmbosser embosser;
        embosser.start();
        qputenv("PATH", "/nonexistent");
        embosser.start();
    }
    void beforeItIsStarted() { SimulatedEmbosser().clearCalls(); }
    void afterItHasCrashed()
    {
        SimulatedEmbosser embosser;
        embosser.start();
        embosser.crash(QStringLiteral("getModel"));
        QVERIFY(call(QStringLiteral("getModel")).type() == QDBusMessage::ErrorMessage);
        QTRY_VERIFY(!embosser.isRunning());
        embosser.clearCalls();
    }
    void ofAMethodThatIsNotThere()
    {
        SimulatedEmbosser embosser;
        embosser.start();
        embosser.delay(QStringLiteral("getNothing"), 1ms);
    }
    void ofAValueThatCannotBeSent()
    {
        SimulatedEmbosser embosser;
        embosser.start();
        embosser.answer(QStringLiteral("getModel"), QVariant::fromValue(QModelIndex()));
    }
    /// Leaves in the middle, and says which bus it was.
    void thatFails()
    {
        SimulatedEmbosser embosser;
        embosser.start();
        qInfo("bus %s", qPrintable(embosser.busAddress()));
        QFAIL("on purpose");
    }
    void thatIsKilled()
    {
        SimulatedEmbosser embosser;
        embosser.start();
        qInfo("bus %s", qPrintable(embosser.busAddress()));
        std::raise(SIGKILL);
    }
};

struct Outcome
{
    int status;
    QString output;
};

Outcome run(const QString &testCase)
{
    ChildProcess process(QCoreApplication::applicationFilePath(),
                         {QStringLiteral("--case"), testCase});
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start();
    const int milliseconds = 60000;
    if (!process.waitForFinished(milliseconds))
        qFatal("%s does not end", qPrintable(testCase));
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

} // namespace

class SimulatedEmbosserTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { m_embosser.start(QStringLiteral("Dovrik")); }
    void init() { m_embosser.reset(); }

    void isTheSystemBusOfTheProcess();
    void canBeOfAProfile();
    void comesAndGoes();
    void tellsWhatWasSent();
    void answersAnyValue_data();
    void answersAnyValue();
    void refuses();
    void isLate();
    void leavesCallsUnanswered();
    void answersWithAWrongType();
    void leavesTheBusForAWhile();
    void ofAllCallsUntilCleared();
    void isResetBetweenTests();
    void printsJobs();
    void printsAtAPace();
    void hasWhatHappensToJobs_data();
    void hasWhatHappensToJobs();
    void saysWhatCannotBeDone_data();
    void saysWhatCannotBeDone();
    void endsWithTheTest_data();
    void endsWithTheTest();

private:
    SimulatedEmbosser m_embosser;
};

void SimulatedEmbosserTest::isTheSystemBusOfTheProcess()
{
    QVERIFY(m_embosser.isRunning());
    QCOMPARE(qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"), m_embosser.busAddress());
    QCOMPARE(call(QStringLiteral("getModel"), {QStringLiteral("masterCollectionKey")}).arguments(),
             QVariantList{QStringLiteral("Dovrik")});
}

void SimulatedEmbosserTest::canBeOfAProfile()
{
    QTemporaryDir directory;
    QFile profile(directory.filePath(QStringLiteral("mine.json")));
    QVERIFY(profile.open(QIODevice::WriteOnly));
    profile.write(R"({"base": "Kestan", "settings": {"TabSize": {"default": 7}}})");
    profile.close();
    m_embosser.startProfile(profile.fileName());
    QCOMPARE(call(QStringLiteral("getTabSize")).arguments(), QVariantList{7});
    m_embosser.start(QStringLiteral("Dovrik"));
}

void SimulatedEmbosserTest::comesAndGoes()
{
    QVERIFY(isThere());
    m_embosser.stop();
    QVERIFY(!m_embosser.isRunning());
    QTRY_VERIFY(!isThere());
    m_embosser.start();
    QVERIFY(isThere());
    QVERIFY(m_embosser.isRunning());
}

void SimulatedEmbosserTest::tellsWhatWasSent()
{
    call(QStringLiteral("setTabSize"), {4});
    call(QStringLiteral("setTabSize"), {400});
    call(QStringLiteral("processSequence"), {QVariantMap{{QStringLiteral("TabSize"), 3}}});
    const QVector<ReceivedCall> all = m_embosser.calls();
    QCOMPARE(all.size(), 3);
    QCOMPARE(all[2].method, QStringLiteral("processSequence"));
    QCOMPARE(all[2].arguments.value(0).toMap(), (QVariantMap{{QStringLiteral("TabSize"), 3}}));

    const QVector<ReceivedCall> some = m_embosser.calls(QStringLiteral("setTabSize"));
    QCOMPARE(some.size(), 2);
    QCOMPARE(some[0].arguments, QVariantList{4});
    QVERIFY(some[0].succeeded());
    QVERIFY(!some[1].succeeded());
    QCOMPARE(some[1].outcome,
             QStringLiteral("com.tavelornbraille.ConfigurationManager.Error.InvalidValue"));

    m_embosser.clearCalls();
    QVERIFY(m_embosser.calls().isEmpty());
}

void SimulatedEmbosserTest::answersAnyValue_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("signature");
    QTest::newRow("number") << QVariant(8) << QStringLiteral("i");
    QTest::newRow("text") << QVariant(QStringLiteral("eight")) << QStringLiteral("s");
    QTest::newRow("list") << QVariant(QStringList{QStringLiteral("a")}) << QStringLiteral("as");
    QTest::newRow("map") << QVariant(QVariantMap{{QStringLiteral("a"), 1}})
                         << QStringLiteral("a{sv}");
}

void SimulatedEmbosserTest::answersAnyValue()
{
    QFETCH(const QVariant, value);
    m_embosser.answer(QStringLiteral("getTabSize"), value);
    QTEST(call(QStringLiteral("getTabSize")).signature(), "signature");
    QCOMPARE(call(QStringLiteral("getTabSize")).signature(), QStringLiteral("i"));
}

void SimulatedEmbosserTest::refuses()
{
    m_embosser.refuse(QStringLiteral("setTabSize"), QStringLiteral("org.example.No"),
                      QStringLiteral("not now"));
    QCOMPARE(m_embosser.pendingFaults(), 1);
    const QDBusMessage answer = call(QStringLiteral("setTabSize"), {4});
    QCOMPARE(answer.errorName(), QStringLiteral("org.example.No"));
    QCOMPARE(answer.errorMessage(), QStringLiteral("not now"));
    QCOMPARE(m_embosser.pendingFaults(), 0);
}

void SimulatedEmbosserTest::isLate()
{
    m_embosser.delay(QStringLiteral("getTabSize"), 300ms);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(call(QStringLiteral("getTabSize")).type(), QDBusMessage::ReplyMessage);
    QVERIFY(timer.elapsed() >= 300);
}

void SimulatedEmbosserTest::leavesCallsUnanswered()
{
    m_embosser.leaveUnanswered(QStringLiteral("getTabSize"));
    const QDBusPendingCall unanswered = send(QStringLiteral("getTabSize"));
    // A later call has its answer.
    QCOMPARE(call(QStringLiteral("getTabSize")).type(), QDBusMessage::ReplyMessage);
    QVERIFY(!unanswered.isFinished());
}

void SimulatedEmbosserTest::answersWithAWrongType()
{
    m_embosser.answerWithWrongType(QStringLiteral("getTabSize"));
    QCOMPARE(call(QStringLiteral("getTabSize")).signature(), QStringLiteral("s"));
}

void SimulatedEmbosserTest::leavesTheBusForAWhile()
{
    m_embosser.leaveBus(QStringLiteral("getTabSize"));
    QCOMPARE(call(QStringLiteral("getTabSize")).type(), QDBusMessage::ReplyMessage);
    QVERIFY(!isThere());
    m_embosser.returnToBus();
    QVERIFY(isThere());

    m_embosser.leaveBus(QStringLiteral("getTabSize"), 100ms);
    call(QStringLiteral("getTabSize"));
    QTRY_VERIFY(isThere());
}

void SimulatedEmbosserTest::ofAllCallsUntilCleared()
{
    m_embosser.answer(QStringLiteral("*"), 1, SimulatedEmbosser::allCalls);
    for (const char *method : {"getModel", "getTabSize", "getModel"})
        QCOMPARE(call(QString::fromLatin1(method)).arguments(), QVariantList{1});
    m_embosser.clearFaults();
    QCOMPARE(call(QStringLiteral("getModel")).signature(), QStringLiteral("s"));
}

void SimulatedEmbosserTest::isResetBetweenTests()
{
    const QVariantList initial = call(QStringLiteral("getTabSize")).arguments();
    const int other = initial.value(0).toInt() % 8 + 1;
    call(QStringLiteral("setTabSize"), {other});
    QCOMPARE(call(QStringLiteral("getTabSize")).arguments(), QVariantList{other});
    m_embosser.answer(QStringLiteral("getModel"), 1);
    m_embosser.leaveBus(QStringLiteral("getTabSize"));
    call(QStringLiteral("getTabSize"));
    m_embosser.reset();
    QVERIFY(isThere());
    QVERIFY(m_embosser.calls().isEmpty());
    QCOMPARE(m_embosser.pendingFaults(), 0);
    QCOMPARE(call(QStringLiteral("getTabSize")).arguments(), initial);
}

void SimulatedEmbosserTest::printsJobs()
{
    QCOMPARE(m_embosser.job().status, QStringLiteral("none"));
    m_embosser.print(3, 2);
    QCOMPARE(m_embosser.printPages(), 1U);
    QCOMPARE(m_embosser.printPages(3), 3U);
    const PrintJob job = m_embosser.job();
    QCOMPARE(job.status, QStringLiteral("printing"));
    QCOMPARE(job.condition, QString());
    QCOMPARE(job.pages, 3);
    QCOMPARE(job.copies, 2);
    QCOMPARE(job.printedPages, 4);
    QCOMPARE(job.printedCopies, 1);
    QVERIFY(job.sheetsInBin > 0);
    m_embosser.cancelJob();
    QCOMPARE(m_embosser.job().status, QStringLiteral("cancelled"));
    m_embosser.print(3);
    m_embosser.reset();
    QCOMPARE(m_embosser.job().status, QStringLiteral("none"));
}

void SimulatedEmbosserTest::printsAtAPace()
{
    m_embosser.print(2, 1, 1ms);
    QTRY_COMPARE(m_embosser.job().status, QStringLiteral("finished"));
}

void SimulatedEmbosserTest::hasWhatHappensToJobs_data()
{
    QTest::addColumn<int>("condition");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("status");
    const auto row = [](SimulatedEmbosser::Condition condition, const char *name,
                        const char *status) {
        QTest::newRow(name) << int(condition) << name << status;
    };
    row(SimulatedEmbosser::Condition::OutOfPaper, "out-of-paper", "held");
    row(SimulatedEmbosser::Condition::BinFull, "bin-full", "held");
    row(SimulatedEmbosser::Condition::CoverOpen, "cover-open", "held");
    row(SimulatedEmbosser::Condition::Jam, "jam", "failed");
}

void SimulatedEmbosserTest::hasWhatHappensToJobs()
{
    QFETCH(const int, condition);
    m_embosser.print(3);
    m_embosser.interrupt(SimulatedEmbosser::Condition(condition), 2);
    QCOMPARE(m_embosser.printPages(3), 2U);
    QTEST(m_embosser.job().condition, "name");
    QTEST(m_embosser.job().status, "status");
    m_embosser.resolve();
    QCOMPARE(m_embosser.job().condition, QString());
}

void SimulatedEmbosserTest::saysWhatCannotBeDone_data()
{
    QTest::addColumn<QString>("said");
    QTest::newRow("afterTheSystemBusWasUsed") << "this process has used the system bus already";
    QTest::newRow("afterASystemBusWasNotThere") << "this process has used the system bus already";
    QTest::newRow("whileThereIsAnother") << "only one in a process";
    QTest::newRow("afterThereWasAnother") << "only one in a process";
    QTest::newRow("ofAnUnknownModel") << "there is no model \"Nobody\"; there are: Arvo";
    QTest::newRow("ofAProfileThatIsNotThere") << "/nonexistent.json";
    QTest::newRow("withoutADaemon") << "the program dbus-daemon is not found in PATH";
    QTest::newRow("withoutASimulator") << "the program embosser-simulator is not found in PATH";
    QTest::newRow("beforeItIsStarted") << "Clear: it has not been started";
    QTest::newRow("afterItHasCrashed") << "Clear: The name com.tavelornbraille.Simulator";
    QTest::newRow("ofAMethodThatIsNotThere") << "Inject: the service has no method getNothing";
    QTest::newRow("ofAValueThatCannotBeSent") << "Answer: ";
}

void SimulatedEmbosserTest::saysWhatCannotBeDone()
{
    QFETCH(const QString, said);
    const Outcome outcome = run(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY2(outcome.output.contains(QStringLiteral("The simulated embosser: ")) &&
                 outcome.output.contains(said),
             qPrintable(outcome.output));
    QVERIFY2(outcome.output.contains(QStringLiteral("1 failed")), qPrintable(outcome.output));
    QCOMPARE(outcome.status, 1);
}

void SimulatedEmbosserTest::endsWithTheTest_data()
{
    QTest::addColumn<QString>("testCase");
    QTest::newRow("that fails") << "thatFails";
    QTest::newRow("that is killed") << "thatIsKilled";
}

void SimulatedEmbosserTest::endsWithTheTest()
{
    QFETCH(const QString, testCase);
    const Outcome outcome = run(testCase);
    const QString address =
        QRegularExpression(QStringLiteral("bus (unix:\\S+)")).match(outcome.output).captured(1);
    QVERIFY2(!address.isEmpty(), qPrintable(outcome.output));
    // The bus, and what is on it, which ends with it.
    QTRY_VERIFY(!QDBusConnection::connectToBus(address, testCase).isConnected());
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--case") == 0) {
        Cases cases;
        char *arguments[] = {argv[0], argv[2]};
        return QTest::qExec(&cases, 2, arguments);
    }
    SimulatedEmbosserTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_simulatedembosser.moc"
