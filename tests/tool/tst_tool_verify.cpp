// SPDX-License-Identifier: MIT

#include "PrivateBus.h"
#include "Shell.h"
#include "SimulatedModels.h"

#include <contract/Interface.h>

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QRegularExpression>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtTest/QTest>

#include <memory>

namespace {

const QString simulatorName = QStringLiteral("com.tavelornbraille.Simulator");

QJsonObject document(const Outcome &outcome)
{
    return QJsonDocument::fromJson(outcome.output).object();
}

/// "SUBJECT: what deviates", by the name of the subject.
QStringList findingsIn(const QJsonObject &document)
{
    QStringList findings;
    for (const QJsonValue family : document[QLatin1String("families")].toArray()) {
        for (const QJsonValue finding : family[QLatin1String("findings")].toArray()) {
            findings += finding[QLatin1String("subject")].toString() + QStringLiteral(": ") +
                        finding[QLatin1String("finding")].toString();
        }
    }
    findings.sort();
    return findings;
}

/// The sum of a number in all families.
int sumOf(const char *member, const QJsonObject &document)
{
    int sum = 0;
    for (const QJsonValue family : document[QLatin1String("families")].toArray())
        sum += family[QLatin1String(member)].toInt();
    return sum;
}

QStringList faults(const QStringList &texts)
{
    QStringList arguments;
    for (const QString &text : texts)
        arguments << QStringLiteral("--fault") << text;
    return arguments;
}

} // namespace

/// What is found in a service: that of the simulator, or one between it and the tool.
class TestToolVerify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_deviating.reset();
        m_simulator.reset();
    }

    void nothingIsFoundInAModel_data()
    {
        QTest::addColumn<QString>("model");
        for (const QString &model : simulatedModels())
            QTest::newRow(qPrintable(model)) << model;
    }

    void nothingIsFoundInAModel()
    {
        QFETCH(QString, model);
        start({QStringLiteral("--model"), model});
        const Outcome outcome = run("verify --json");
        QCOMPARE(outcome.errors, QByteArray());
        QCOMPARE(findingsIn(document(outcome)), QStringList());
        QCOMPARE(outcome.status, 0);
        QCOMPARE(document(outcome)[QLatin1String("findings")].toInt(-1), 0);
        QVERIFY(document(outcome)[QLatin1String("introspection")].toBool());
        QCOMPARE(sumOf("methods", document(outcome)),
                 contract::Interface::configurationManager().methods().size());
        QVERIFY(sumOf("calls", document(outcome)) > 1500);
        for (const QJsonValue family : document(outcome)[QLatin1String("families")].toArray())
            QCOMPARE(family[QLatin1String("notJudged")].toArray(), QJsonArray());
    }

    void nothingIsCalledThatDoesMoreThanRead()
    {
        // By their names, which the program does not look into.
        const QRegularExpression reading(QStringLiteral(
            "^(get|is|has)[A-Z].*|numberOfSlaves|returnDocSettingKey|embosserInfoCmd|"
            "currentConfigurationCmd|buildHammerBatchString$"));
        QStringList traps;
        for (const contract::Method &method :
             contract::Interface::configurationManager().methods()) {
            if (!reading.match(method.name).hasMatch())
                traps += QStringLiteral("error:%1:0").arg(method.name);
        }
        QVERIFY(traps.size() > 200);
        QVERIFY(traps.contains(QStringLiteral("error:setIntDeltaValue:0")));
        start(faults(traps));
        QCOMPARE(run("verify").status, 0);
        QDBusMessage history = QDBusMessage::createMethodCall(
            simulatorName, QStringLiteral("/com/tavelornbraille/Simulator"),
            simulatorName + QStringLiteral(".Faults"), QStringLiteral("History"));
        const QDBusMessage reply = m_control.call(history);
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QVERIFY(qdbus_cast<QList<QVariantMap>>(reply.arguments().value(0)).isEmpty());
    }

    void everyDeviationIsFound()
    {
        startBehind(
            {QStringLiteral("--profile"),
             captured(R"("answers": {"getType": 99}, "settings": {"HTTPS": {"value": 7},
                         "LetterFont": {"value": 12}, "Parity": {"value": "Mark"}})")},
            {QStringLiteral("refuse:getAlignLow:0:org.freedesktop.DBus.Error.UnknownMethod:gone"),
             QStringLiteral("wrong-type:getBaudrate:0"),
             QStringLiteral("wrong-type:getReleaseTime:0"),
             QStringLiteral("wrong-type:getLayoutParameters:0"),
             QStringLiteral("error:getTabSize:0:no tabs")});
        startDeviating({QStringLiteral("missing:saveUserSettings"),
                        QStringLiteral("takes:setAlignHigh:s"),
                        QStringLiteral("returns:getMaxWidth:i")});
        QCOMPARE(run("dump > before.json").status, 1);
        const Outcome outcome = run("verify --json");
        QCOMPARE(outcome.status, 1);
        QCOMPARE(run("dump > after.json; diff before.json after.json").output, QByteArray());
        const QStringList expected{
            QStringLiteral("HTTPS: is 7, which is none of the value list OnOff"),
            QStringLiteral("LetterFont: is 12, which is not within its bounds, 0 to 9"),
            QStringLiteral("Parity: is Mark, which is none of the value list Parity"),
            QStringLiteral("getAlignLow: is missing"),
            QStringLiteral("getBaudrate: is of another type: "),
            QStringLiteral("getLayoutParameters: is of another type: "),
            QStringLiteral("getMaxWidth: is declared to answer \"i\" instead of \"d\""),
            QStringLiteral("getReleaseTime: is of another type: "),
            QStringLiteral("getTabSize: is refused: no tabs"),
            QStringLiteral("getType: answers 99, which is not a value of EmbosserType"),
            QStringLiteral("saveUserSettings: is missing"),
            QStringLiteral("setAlignHigh: takes \"iss\" instead of \"isb\"")};
        const QStringList found = findingsIn(document(outcome));
        QVERIFY2(found.size() == expected.size(), qPrintable(found.join(QLatin1Char('\n'))));
        for (int i = 0; i < found.size(); ++i)
            QVERIFY2(found[i].startsWith(expected[i]), qPrintable(found[i]));
        QCOMPARE(document(outcome)[QLatin1String("findings")].toInt(), expected.size());

        const Outcome table = run("verify");
        QCOMPARE(table.status, 1);
        QVERIFY(table.output.startsWith("Family\tmethods\tcalls\tnot judged\tfindings\n"));
        for (const QString &finding : found) {
            const QByteArray row = finding.section(QStringLiteral(": "), 0, 0).toUtf8() + '\t' +
                                   finding.section(QStringLiteral(": "), 1).toUtf8() + '\n';
            QVERIFY2(table.output.contains('\n' + row), table.output.constData());
        }
    }

    void bothBoundsAndEveryBitAreJudged()
    {
        startBehind({QStringLiteral("--profile"),
                     captured(R"("settings": {"HammerBatch": {"value": 0}}, "recorded": [
                       {"method": "getMinValue", "arguments": ["LetterFont"], "answer": 9},
                       {"method": "getMaxValue", "arguments": ["LetterFont"], "answer": 0},
                       {"method": "getModelMaskForPaper", "arguments": ["A4"], "answer": 257}])")},
                    {});
        startDeviating({});
        const Outcome outcome = run("verify --json");
        QCOMPARE(findingsIn(document(outcome)),
                 (QStringList{
                     QStringLiteral("HammerBatch: is 0, which is not within its bounds, 1 to 16"),
                     QStringLiteral("LetterFont: has bounds in the wrong order, 9 to 0"),
                     QStringLiteral("getModelMaskForPaper: answers 257, which is not a value of "
                                    "ModelMask")}));
        QCOMPARE(outcome.status, 1);
    }

    void withoutIntrospectionWhatCanBeReadIsJudged()
    {
        startBehind({}, {QStringLiteral("refuse:getAlignLow:0:org.freedesktop.DBus.Error."
                                        "UnknownMethod:gone")});
        startDeviating({QStringLiteral("opaque")});
        const Outcome outcome = run("verify --json");
        QCOMPARE(outcome.status, 1);
        QVERIFY(!document(outcome)[QLatin1String("introspection")].toBool());
        QCOMPARE(findingsIn(document(outcome)),
                 QStringList(QStringLiteral("getAlignLow: is missing")));
        QStringList notJudged;
        for (const QJsonValue family : document(outcome)[QLatin1String("families")].toArray()) {
            for (const QJsonValue method : family[QLatin1String("notJudged")].toArray())
                notJudged += method.toString();
        }
        QVERIFY(notJudged.contains(QStringLiteral("setAlignLow")));
        QVERIFY(!notJudged.contains(QStringLiteral("getAlignHigh")));
        QCOMPARE(sumOf("methods", document(outcome)) + notJudged.size(),
                 contract::Interface::configurationManager().methods().size());
        QVERIFY(run("verify").errors.contains("the service offers no introspection"));
    }

    void aQueryAboutANameMayBeRefused()
    {
        start(
            faults({QStringLiteral("error:getProposition:0"), QStringLiteral("error:getMinValue:0"),
                    QStringLiteral("error:getTableMetadata:0"),
                    QStringLiteral("error:getSensorState:0")}));
        const Outcome outcome = run("verify --json");
        QCOMPARE(findingsIn(document(outcome)), QStringList());
        QCOMPARE(outcome.status, 0);
        QVERIFY(outcome.output.contains("\"getProposition\""));
    }

private:
    Outcome run(const QByteArray &command)
    {
        return m_shell.run(QStringLiteral("embosserctl ") + QString::fromUtf8(command));
    }

    void start(const QStringList &arguments)
    {
        m_simulator = std::make_unique<ChildProcess>(QStringLiteral(SIMULATOR), arguments);
        m_simulator->startAndReadLine();
    }

    /// A simulator on the bus that the tool does not know.
    void startBehind(const QStringList &arguments, const QStringList &injected)
    {
        m_simulator =
            std::make_unique<ChildProcess>(QStringLiteral(SIMULATOR), arguments + faults(injected));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_behind.address());
        m_simulator->setProcessEnvironment(environment);
        m_simulator->startAndReadLine();
    }

    void startDeviating(const QStringList &deviations)
    {
        m_deviating = std::make_unique<ChildProcess>(QStringLiteral(DEVIATING_SERVICE),
                                                     QStringList(m_behind.address()) + deviations);
        m_deviating->startAndReadLine();
    }

    /// The profile of a service that differs in these members.
    QString captured(const QByteArray &members)
    {
        start({});
        if (run("capture > device.json").status != 0)
            qFatal("no capture");
        m_simulator.reset();
        QFile file(m_shell.path(QStringLiteral("odd.json")));
        if (!file.open(QFile::WriteOnly))
            qFatal("%s", qPrintable(file.errorString()));
        file.write(R"({"base": "device.json", )" + members + '}');
        return file.fileName();
    }

    PrivateBus m_behind;
    PrivateBus m_bus;
    QDBusConnection m_control = m_bus.connect(QStringLiteral("control"));
    Shell m_shell;
    std::unique_ptr<ChildProcess> m_simulator;
    std::unique_ptr<ChildProcess> m_deviating;
};

QTEST_GUILESS_MAIN(TestToolVerify)
#include "tst_tool_verify.moc"
