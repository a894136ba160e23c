// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "Shell.h"
#include "SimulatedModels.h"

#include "library/Catalogue.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusMetaType>
#include <QtTest/QTest>

#include <limits>
#include <memory>

using tool::Operation;

namespace {

const QString serviceName = QStringLiteral("com.tavelornbraille.ConfigurationManager");
const QString simulatorName = QStringLiteral("com.tavelornbraille.Simulator");
const QByteArray everything = QByteArrayLiteral("--with-identity --with-secrets");

/// All that the service answers to whoever only asks, by the calls.
using Answers = QMap<QString, QJsonValue>;

/// Asks by way of the library.
class Sweep
{
public:
    Sweep() : m_session({}) { m_session.requireConnection(); }

    Answers answers()
    {
        QStringList names;
        for (const tool::Setting &setting : m_catalogue.settings()) {
            if (setting.getter)
                ask(*setting.getter, {});
            if (setting.setter)
                names += setting.name;
        }
        for (const char *key : {"Open", "Close", "Tray"})
            ask("getReleaseTime", {QString::fromLatin1(key)});
        for (const char *key : {"PaperIn", "PaperOut", "CoverOpen", "HeadHome", "TrayFull", "No"})
            ask("getSensorState", {QString::fromLatin1(key)});
        for (int counter = 1; counter <= 9; ++counter) {
            ask("getCounter", {counter});
            names += QStringLiteral("Counter/%1").arg(counter);
        }
        for (const QString &name : qAsConst(names)) {
            for (const char *query : {"getProposition", "getValueSentence", "getMinValue",
                                      "getMaxValue", "getPrecision", "getIntValue",
                                      "getIntDeltaValue", "getParamIntValue", "getParamFloatValue"})
                ask(query, {name});
            ask("getTableMetadata", {QStringLiteral("settings"), name});
            ask("returnDocSettingKey", {name, 0});
        }
        QMap<QString, QStringList> lists;
        const Operation &list =
            *m_catalogue.operationsNamed(QStringLiteral("getValueList")).first();
        for (const QString &row : list.parameters[0].type.enumeration.keys()) {
            const int number = *list.parameters[0].type.enumeration.value(row);
            for (const QJsonValue choice : ask(list, {number}).toArray())
                lists[row] += choice[QStringLiteral("key")].toString();
        }
        const QStringList papers = lists[QStringLiteral("Papers")];
        const QStringList cells =
            lists[QStringLiteral("TextDistance")] + lists[QStringLiteral("GrafDistance")];
        for (const Operation &operation : m_catalogue.operations()) {
            if (operation.isQuery && operation.parameters.isEmpty())
                ask(operation, {});
            if (operation.isQuery && operation.parameterOf(contract::Role::Paper)) {
                for (const QString &paper : papers)
                    ask(operation, {paper});
            }
        }
        ask("buildHammerBatchString", {});
        for (const QString &cell : cells) {
            for (const char *query : {"getCellToCell", "getHorizontalDotToDot",
                                      "getVerticalDotToDot", "getIsInterline"})
                ask(query, {cell});
            for (const QString &spacing : lists[QStringLiteral("LineSpacing")]) {
                ask("getInterlineBackRowOffset", {cell, spacing});
                for (const QString &dots : lists[QStringLiteral("BrailleCellDots")]) {
                    for (const QString &paper : {papers.first(), papers.last()})
                        ask("getLineToLine", {0.0, 0, 0.0, 0.0, paper, cell, dots, spacing});
                }
            }
            ask("getLineToLine", {2.5, 3, 6.0, 10.0, papers.first(), cell, QString(), QString()});
        }
        return m_answers;
    }

private:
    QJsonValue ask(const char *name, const QVariantList &arguments)
    {
        return ask(tool::operationFor(m_catalogue, QString::fromLatin1(name), arguments.size()),
                   arguments);
    }

    QJsonValue ask(const Operation &operation, const QVariantList &arguments)
    {
        const tool::Reply reply = m_session.call(operation, arguments);
        const QJsonValue answer = reply.error
                                      ? QJsonValue(QStringLiteral("refused: ") + *reply.error)
                                      : tool::toJson(reply.value, operation.result);
        const QString call = operation.signature() +
                             QString::fromUtf8(QJsonDocument(QJsonArray::fromVariantList(arguments))
                                                   .toJson(QJsonDocument::Compact));
        m_answers.insert(call, answer);
        return answer;
    }

    tool::Catalogue m_catalogue;
    tool::Session m_session;
    Answers m_answers;
};

/// The calls whose answers differ.
QStringList differences(const Answers &first, const Answers &second)
{
    QStringList calls = first.keys() + second.keys();
    calls.sort();
    calls.removeDuplicates();
    QStringList differing;
    for (const QString &call : qAsConst(calls)) {
        if (first.value(call) != second.value(call))
            differing += call;
    }
    return differing;
}

} // namespace

/// A capture of a service, and the simulator that is given it.
class TestToolCapture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_simulator.reset(); }

    void theSimulatorAnswersAsWhatWasCaptured_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("isUsed");
        for (const QString &model : simulatedModels())
            QTest::newRow(qPrintable(model)) << model << false;
        QTest::newRow("Marren, used") << QStringLiteral("Marren") << true;
        QTest::newRow("Tolvek, used") << QStringLiteral("Tolvek") << true;
    }

    void theSimulatorAnswersAsWhatWasCaptured()
    {
        QFETCH(QString, model);
        QFETCH(bool, isUsed);
        start({QStringLiteral("--model"), model});
        if (isUsed)
            use();
        const Answers original = Sweep().answers();
        QVERIFY2(original.size() > 2500, QByteArray::number(original.size()).constData());
        QCOMPARE(run("capture " + everything + " > device.json").errors, QByteArray());

        start({QStringLiteral("--profile"), m_shell.path(QStringLiteral("device.json"))});
        QCOMPARE(run("capture " + everything + " > again.json; diff device.json again.json").output,
                 QByteArray());
        QCOMPARE(differences(original, Sweep().answers()), QStringList());
    }

    void secretsAndIdentityAreLeftOutUnlessAskedFor()
    {
        start({});
        const QByteArrayList identity{"SN-MARK", "02:aa:bb:cc:dd:ee", "10.11.12.13", "4711"};
        const QByteArray secret = "secret-mark";
        for (const char *setting : {"set SerialNo SN-MARK", "set MacAddress 02:aa:bb:cc:dd:ee",
                                    "set EthernetAddress 10.11.12.13", "call setCounter 4711 2",
                                    "set Passphrase secret-mark", "set Ssid not-left-out"})
            QCOMPARE(run(setting).status, 0);

        const Outcome plain = run("capture");
        QVERIFY(!plain.output.contains(secret));
        for (const QByteArray &mark : identity)
            QVERIFY2(!plain.output.contains(mark), mark.constData());
        QVERIFY(plain.output.contains("not-left-out"));
        QCOMPARE(plain.status, 0);
        const QJsonArray leftOut = document(plain)[QLatin1String("capture")]
                                       .toObject()[QLatin1String("leftOut")]
                                       .toArray();
        for (const char *name :
             {"SerialNo", "MacAddress", "Counter/2", "Passphrase", "FirmwareDate"})
            QVERIFY2(leftOut.contains(QString::fromLatin1(name)), name);
        QVERIFY(!leftOut.contains(QStringLiteral("Type")));

        const Outcome withIdentity = run("capture --with-identity");
        QVERIFY(!withIdentity.output.contains(secret));
        for (const QByteArray &mark : identity)
            QVERIFY2(withIdentity.output.contains(mark), mark.constData());
        const Outcome withSecrets = run("capture --with-secrets");
        QVERIFY(withSecrets.output.contains(secret));
        QVERIFY(!withSecrets.output.contains("SN-MARK"));

        QCOMPARE(run("capture > left-out.json").output, QByteArray());
        start({QStringLiteral("--profile"), m_shell.path(QStringLiteral("left-out.json"))});
        QCOMPARE(run("capture > again.json; diff left-out.json again.json").output, QByteArray());
        QCOMPARE(run("get SerialNo").output, QByteArray("\n"));
        QCOMPARE(run("get Passphrase").output, QByteArray("\n"));
        QCOMPARE(run("call getCounter 2").output, QByteArray("0\n"));
    }

    void aCaptureIsStillAModel()
    {
        start({QStringLiteral("--model"), QStringLiteral("Marren")});
        QCOMPARE(run("set PaperSize A3").status, 0);
        QCOMPARE(run("set PrintWidth 100").status, 0);
        QCOMPARE(run("set FanTemperatureOff 40").status, 0);
        QCOMPARE(run("capture > device.json").status, 0);
        start({QStringLiteral("--profile"), m_shell.path(QStringLiteral("device.json"))});
        QCOMPARE(run("get PaperSize PaperWidth PrintWidth CharactersPerLine --json | tr -d ' \\n'")
                     .output,
                 QByteArray("{\"CharactersPerLine\":16,\"PaperSize\":\"A3\",\"PaperWidth\":297,"
                            "\"PrintWidth\":100}"));
        QCOMPARE(run("set PaperSize A4").status, 0);
        QCOMPARE(run("get PaperSize PaperWidth PrintWidth CharactersPerLine --json | tr -d ' \\n'")
                     .output,
                 QByteArray("{\"CharactersPerLine\":33,\"PaperSize\":\"A4\",\"PaperWidth\":210,"
                            "\"PrintWidth\":198}"));
        QCOMPARE(run("set TabSize 99").status, 1);
        QCOMPARE(run("set FanTemperatureOn 39").status, 1);
        QCOMPARE(run("set FanTemperatureOn 60").status, 0);
        QCOMPARE(run("set FanTemperatureOff 59").status, 0);
        QCOMPARE(run("set Duplexing Booklet").status, 0);
        QCOMPARE(run("call saveUserSettings").status, 0);

        control("Calls", "Reset");
        QCOMPARE(run("get PaperSize").output, QByteArray("A3\n"));
        QCOMPARE(run("get PrintWidth").output, QByteArray("100\n"));
        QCOMPARE(run("get FanTemperatureOff").output, QByteArray("40\n"));
    }

    void keepsWhatIsSetInItsState()
    {
        start({});
        QCOMPARE(run("set TabSize 7").status, 0);
        QCOMPARE(run("set PrintWidth 100").status, 0);
        QCOMPARE(run("capture > device.json").status, 0);
        const QStringList arguments{
            QStringLiteral("--profile"), m_shell.path(QStringLiteral("device.json")),
            QStringLiteral("--state"), m_shell.path(QStringLiteral("state.db"))};
        start(arguments);
        QCOMPARE(run("get TabSize").output, QByteArray("7\n"));
        QCOMPARE(run("set TabSize 2").status, 0);
        QCOMPARE(run("set PaperSize 85x110").status, 0);
        start(arguments);
        QCOMPARE(run("get TabSize").output, QByteArray("2\n"));
        QCOMPARE(run("get PrintWidth").output, QByteArray("203.9\n"));
    }

    void anotherCollectionIsCaptured()
    {
        start({});
        QCOMPARE(run("set TabSize 7").status, 0); // has one value
        QCOMPARE(run("--collection other set AlignLow 5").status, 0);
        QCOMPARE(run("--collection other capture > device.json").status, 0);
        start({QStringLiteral("--profile"), m_shell.path(QStringLiteral("device.json"))});
        QCOMPARE(run("--collection other get AlignLow").output, QByteArray("5\n"));
        QCOMPARE(run("get AlignLow").output, QByteArray("0\n"));
        QCOMPARE(run("get TabSize").output, QByteArray("7\n"));
    }

    void whatIsNotAnsweredIsListedAndNotGuessed()
    {
        QStringList arguments;
        for (const char *fault :
             {"error:getTabSize:0:the tabs are lost", "error:getWidthForPaper:0:no paper",
              "error:getDemoDocuments:0:no documents", "error:hasFeeder:0:no idea",
              "error:getMinValue:0:no bounds"})
            arguments << QStringLiteral("--fault") << QString::fromLatin1(fault);
        start(arguments);
        const Outcome first =
            run("capture " + everything + " | tee device.json; exit ${PIPESTATUS[0]}", "bash");
        QCOMPARE(first.status, 1);
        for (const char *line :
             {"embosserctl: not answered: getTabSize: the tabs are lost\n",
              "embosserctl: not answered: getWidth(110x120) and 6 more: no paper\n",
              "embosserctl: not answered: getDemoDocuments: no documents\n",
              "embosserctl: not answered: hasFeeder: no idea\n"})
            QVERIFY2(first.errors.contains(line), first.errors.constData());
        QVERIFY(first.errors.contains("embosserctl: not answered: getMinValue("));
        QCOMPARE(first.errors.count('\n'), 5);
        QVERIFY(!document(first)[QLatin1String("settings")]
                     .toObject()[QLatin1String("TabSize")]
                     .toObject()
                     .contains(QStringLiteral("value")));

        start({QStringLiteral("--profile"), m_shell.path(QStringLiteral("device.json"))});
        QCOMPARE(run("get TabSize").errors,
                 QByteArray("embosserctl: TabSize: the tabs are lost\n"));
        QCOMPARE(run("call hasFeeder").errors, QByteArray("embosserctl: hasFeeder: no idea\n"));
        const Outcome second = run("capture " + everything);
        QCOMPARE(second.errors, first.errors);
        QCOMPARE(second.output, first.output);
    }

    void whatOnlyThisServiceSaysIsRecorded()
    {
        start({});
        // Maps of a form of its own, with types that JSON does not tell apart.
        qDBusRegisterMetaType<QList<QVariantMap>>();
        const QVariantMap own{{QStringLiteral("whole"), 5},
                              {QStringLiteral("real"), 5.0},
                              {QStringLiteral("unsigned"), 5U},
                              {QStringLiteral("long"), qlonglong(5)},
                              {QStringLiteral("byte"), QVariant::fromValue(uchar(5))},
                              {QStringLiteral("texts"), QStringList{QStringLiteral("a")}},
                              {QStringLiteral("Passphrase"), QStringLiteral("secret-mark")}};
        answer("getTableMetadata", own);
        answer("getValueList", QVariant::fromValue(QList<QVariantMap>{own, own}));
        answer("getLayoutParameters", own);
        answer("getVolumeFineAdjustmentLimits", own);
        answer("getLineToLine", 12.5);
        answer("getParity", QStringLiteral("none of the list"));
        answer("getTopOfForm", std::numeric_limits<double>::infinity());
        answer("getDemoDocuments",
               QVariantMap{{QStringLiteral("path"),
                            QVariant::fromValue(QDBusObjectPath(QStringLiteral("/")))}});
        const QByteArray notAnswered =
            "embosserctl: not answered: getDemoDocuments: the answer is of a kind that a profile "
            "cannot have\n"
            "embosserctl: not answered: getTopOfForm: the answer is not a finite number\n";
        QCOMPARE(run("capture > device.json").errors, notAnswered);
        const Outcome captured = m_shell.run(QStringLiteral("cat device.json"));
        QVERIFY(captured.output.contains("\"unsigned\""));
        QVERIFY(!captured.output.contains("secret-mark"));

        start({QStringLiteral("--profile"), m_shell.path(QStringLiteral("device.json"))});
        QCOMPARE(run("capture > again.json; diff device.json again.json").output, QByteArray());
        QVariantMap expected = own;
        expected.remove(QStringLiteral("Passphrase"));
        const QVariantMap metadata =
            map("getTableMetadata", {QStringLiteral("settings"), QStringLiteral("AlignLow")});
        QCOMPARE(metadata, expected);
        for (auto entry = expected.begin(); entry != expected.end(); ++entry)
            QCOMPARE(metadata.value(entry.key()).userType(), entry->userType());
        QCOMPARE(map("getVolumeFineAdjustmentLimits", {}), expected);
        QCOMPARE(run("get Parity").output, QByteArray("none of the list\n"));
        QCOMPARE(run("call getLineToLine 0 0 0 0 110x120 Text_2p5 SixDot Single").output,
                 QByteArray("12.5\n"));
    }

    void keysThatTheServiceDoesNotTellCanBeGiven()
    {
        start({});
        answer("currentConfigurationCmd", QVariant()); // not a report
        QCOMPARE(
            run("capture --key ReleaseTime/Open --key SensorState/HeadHome > device.json").status,
            1);
        start({QStringLiteral("--profile"), m_shell.path(QStringLiteral("device.json"))});
        QCOMPARE(run("call getReleaseTime Open").output, QByteArray("12\n"));
        QCOMPARE(run("call getSensorState HeadHome").output, QByteArray("true\n"));
        QCOMPARE(run("call getReleaseTime Close").status, 1);
        for (const char *key : {"ReleaseTime", "ReleaseTime/", "TabSize/1", "/Open"}) {
            const Outcome outcome = run(QByteArray("capture --key '") + key + "'");
            QCOMPARE(outcome.status, 2);
            QVERIFY(outcome.output.isEmpty());
        }
    }

private:
    Outcome run(const QByteArray &command, const char *interpreter = "sh")
    {
        return m_shell.run(QStringLiteral("embosserctl ") + QString::fromUtf8(command),
                           QString::fromLatin1(interpreter));
    }

    static QJsonObject document(const Outcome &outcome)
    {
        return QJsonDocument::fromJson(outcome.output).object();
    }

    void start(const QStringList &arguments)
    {
        m_simulator.reset();
        m_simulator = std::make_unique<ChildProcess>(QStringLiteral(SIMULATOR), arguments);
        m_simulator->startAndReadLine();
    }

    /// Sets what an embosser has that has been in use.
    void use()
    {
        for (const char *setting :
             {"PaperSize 85x110", "PaperPrintHeadOffset 1.5", "PrintWidth 150.25", "TabSize 7",
              "FanTemperatureOn 60", "FanTemperatureOff 42", "FileCRC -5", "SerialNo X-17",
              "Passphrase 'a passphrase'", "PhStepDist 0.1875", "BrailleCellSize Text_2p2",
              "KeepFormat true", "FreeText 'one \"two\" \xc3\xa9'"}) {
            const Outcome outcome = run(QByteArray("set ") + setting);
            QVERIFY2(outcome.status == 0, outcome.errors.constData());
        }
        for (const char *call : {"setCounter 77 3", "setReleaseTime Open 33",
                                 "setSensorState TrayFull true", "setHammerBatchParameters 9"})
            QCOMPARE(run(QByteArray("call ") + call).status, 0);
    }

    QDBusMessage control(const char *interface, const char *method,
                         const QVariantList &arguments = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            simulatorName, QStringLiteral("/com/tavelornbraille/Simulator"),
            simulatorName + QLatin1Char('.') + QString::fromLatin1(interface),
            QString::fromLatin1(method));
        message.setArguments(arguments);
        const QDBusMessage reply = m_control.call(message);
        if (reply.type() != QDBusMessage::ReplyMessage)
            qFatal("%s: %s", method, qPrintable(reply.errorMessage()));
        return reply;
    }

    /// Has every call of a method answered so; by a text if there is no value.
    void answer(const char *method, const QVariant &value)
    {
        control(
            "Faults", "Answer",
            {QString::fromLatin1(method), 0U,
             QVariant::fromValue(QDBusVariant(value.isValid() ? value : QStringLiteral("no")))});
    }

    QVariantMap map(const char *method, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            serviceName, QStringLiteral("/"), serviceName, QString::fromLatin1(method));
        message.setArguments(arguments);
        return qdbus_cast<QVariantMap>(m_control.call(message).arguments().value(0));
    }

    PrivateBus m_bus;
    QDBusConnection m_control = m_bus.connect(QStringLiteral("control"));
    Shell m_shell;
    std::unique_ptr<ChildProcess> m_simulator;
};

QTEST_GUILESS_MAIN(TestToolCapture)
#include "tst_tool_capture.moc"
