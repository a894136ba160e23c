// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

/// Tools that nobody here has written, as clients of the simulator.
class TestTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_simulator.start();
        QFile file(QStringLiteral(INTROSPECTION_XML));
        QVERIFY(file.open(QFile::ReadOnly));
        m_xml = QString::fromUtf8(file.readAll());
    }

    void busctlCalls_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("error");
        const QString none;
        QTest::newRow("int") << "getType"
                             << "i 3\n"
                             << none;
        QTest::newRow("bool") << "isKestan"
                              << "b true\n"
                              << none;
        QTest::newRow("double") << "getWidthForPaper s A4"
                                << "d 210\n"
                                << none;
        QTest::newRow("void") << "setTabSize i 6"
                              << "" << none;
        QTest::newRow("what was set") << "getTabSize"
                                      << "i 6\n"
                                      << none;
        QTest::newRow("text") << "getModel s masterCollectionKey"
                              << "s \"Kestan\"\n"
                              << none;
        QTest::newRow("map") << "getVolumeFineAdjustmentLimits"
                             << "a{sv} 3 \"default\" i 0 \"max\" i 10 \"min\" i -10\n"
                             << none;
        QTest::newRow("list of maps")
            << "getValueList i 2"
            << "aa{sv} 2 2 \"key\" s \"Off\" \"value\" i 0 2 \"key\" s \"On\" \"value\" i 1\n"
            << none;
        QTest::newRow("map as argument") << "processSequence a{sv} 1 TabSize i 5"
                                         << "b true\n"
                                         << none;
        QTest::newRow("wrong signature") << "getTabSize i 1"
                                         << ""
                                         << "getTabSize takes (), of signature \"\"";
        QTest::newRow("out of bounds") << "setTabSize i 9"
                                       << ""
                                       << "TabSize: 9 is none of: 1, 2,";
        QTest::newRow("unknown method") << "getZebra"
                                        << ""
                                        << "has no method getZebra";
    }

    void busctlCalls()
    {
        QFETCH(QString, call);
        QFETCH(QString, output);
        QFETCH(QString, error);
        const QString name = Simulator::serviceName();
        const Ended ended =
            run("busctl", QStringList{QStringLiteral("call"), name, QStringLiteral("/"), name} +
                              call.split(QLatin1Char(' ')));
        QCOMPARE(ended.output, output);
        QVERIFY2(error.isEmpty() ? ended.errors.isEmpty() : ended.errors.contains(error),
                 qPrintable(ended.errors));
        QCOMPARE(ended.exitCode, error.isEmpty() ? 0 : 1);
    }

    void gdbusCalls_data()
    {
        QTest::addColumn<QStringList>("call");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("error");
        const QString none;
        QTest::newRow("int") << QStringList{QStringLiteral("getType")} << "(3,)\n" << none;
        QTest::newRow("text") << QStringList{QStringLiteral("getModel"), QStringLiteral("any")}
                              << "('Kestan',)\n"
                              << none;
        QTest::newRow("void") << QStringList{QStringLiteral("setTopOfForm"), QStringLiteral("2.5"),
                                             QStringLiteral("any"), QStringLiteral("false")}
                              << "()\n"
                              << none;
        QTest::newRow("what was set")
            << QStringList{QStringLiteral("getTopOfForm"), QStringLiteral("any")} << "(2.5,)\n"
            << none;
        QTest::newRow("list of maps")
            << QStringList{QStringLiteral("getValueList"), QStringLiteral("2")}
            << "([{'key': <'Off'>, 'value': <0>}, {'key': <'On'>, 'value': <1>}],)\n"
            << none;
        QTest::newRow("map as argument")
            << QStringList{QStringLiteral("processSequence"), QStringLiteral("{'TabSize': <5>}")}
            << "(true,)\n"
            << none;
        QTest::newRow("unknown paper")
            << QStringList{QStringLiteral("getWidthForPaper"), QStringLiteral("A9")} << ""
            << "Error.UnknownName: there is no paper \"A9\"";
    }

    void gdbusCalls()
    {
        QFETCH(QStringList, call);
        QFETCH(QString, output);
        QFETCH(QString, error);
        const QString method = Simulator::serviceName() + QLatin1Char('.') + call.takeFirst();
        const Ended ended =
            run("gdbus", QStringList{QStringLiteral("call")} + gdbusObject() +
                             QStringList{QStringLiteral("--method"), method} + call);
        QCOMPARE(ended.output, output);
        QVERIFY2(error.isEmpty() ? ended.errors.isEmpty() : ended.errors.contains(error),
                 qPrintable(ended.errors));
    }

    void busctlSeesEveryMethod()
    {
        const QString output =
            run("busctl", {QStringLiteral("introspect"), QStringLiteral("--list"),
                           Simulator::serviceName(), QStringLiteral("/"), Simulator::serviceName()})
                .output;
        QMap<QString, QString> seen;
        for (const QString &line : output.split(QLatin1Char('\n'))) {
            const QStringList columns = line.simplified().split(QLatin1Char(' '));
            if (columns.value(1) == QLatin1String("method"))
                seen.insert(columns.at(0).mid(1), columns.at(2) + QLatin1Char(' ') + columns.at(3));
        }
        QCOMPARE(seen, methodsOfXml());
    }

    void gdbusSeesEveryMethod()
    {
        const Ended ended =
            run("gdbus",
                QStringList{QStringLiteral("introspect"), QStringLiteral("--xml")} + gdbusObject());
        QCOMPARE(ended.exitCode, 0);
        for (const QString &method : methodsOfXml().keys())
            QVERIFY2(ended.output.contains(QStringLiteral("<method name=\"%1\"").arg(method)),
                     qPrintable(method));
    }

    void busctlFindsTheControl()
    {
        const QString output = run("busctl", {QStringLiteral("tree"), QStringLiteral("--list"),
                                              Simulator::serviceName()})
                                   .output;
        QVERIFY2(output.contains(QLatin1String("/com/tavelornbraille/Simulator\n")),
                 qPrintable(output));
    }

    void whatTheReadmeSaysCanBeCopied_data()
    {
        QTest::addColumn<QString>("line");
        QFile readme(QStringLiteral(SIMULATOR_README));
        QVERIFY(readme.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(readme.readAll());
        const QRegularExpression line(QStringLiteral("^    (busctl .*\\$C.*)$"),
                                      QRegularExpression::MultilineOption);
        for (auto l = line.globalMatch(text); l.hasNext();) {
            const QString command = l.next().captured(1);
            QTest::newRow(qPrintable(command)) << command;
        }
    }

    /// In their order: some need what those before them have done.
    void whatTheReadmeSaysCanBeCopied()
    {
        QFETCH(QString, line);
        const QString name = Simulator::controlName();
        const QString shell =
            QStringLiteral("C='%1 %2 %1'; %3").arg(name, Simulator::controlPath(), line);
        ChildProcess process(QStringLiteral("sh"), {QStringLiteral("-c"), shell});
        process.setProcessChannelMode(QProcess::SeparateChannels);
        process.start();
        const Ended ended = waitForEnd(process);
        QCOMPARE(ended.errors, QString());
        QCOMPARE(ended.exitCode, 0);
    }

private:
    Ended run(const char *tool, const QStringList &arguments) const
    {
        ChildProcess process(QString::fromLatin1(tool), {});
        process.setProcessChannelMode(QProcess::SeparateChannels);
        // gdbus takes its command first.
        const QString address = QStringLiteral("--address=") + m_bus.address();
        process.setArguments(QStringList{arguments.constFirst(), address} + arguments.mid(1));
        process.start();
        return waitForEnd(process);
    }

    static QStringList gdbusObject()
    {
        return {QStringLiteral("--dest"), Simulator::serviceName(), QStringLiteral("--object-path"),
                QStringLiteral("/")};
    }

    /// Each with its signatures in and out, as busctl shows them.
    QMap<QString, QString> methodsOfXml() const
    {
        const QRegularExpression method(QStringLiteral("<method name=\"(\\w+)\">(.*?)</method>"),
                                        QRegularExpression::DotMatchesEverythingOption);
        const QRegularExpression argument(
            QStringLiteral("<arg name=\"\\w+\" type=\"([^\"]+)\" direction=\"(\\w+)\"/>"));
        QMap<QString, QString> methods;
        for (auto m = method.globalMatch(m_xml); m.hasNext();) {
            const QRegularExpressionMatch found = m.next();
            QString in;
            QString out;
            for (auto a = argument.globalMatch(found.captured(2)); a.hasNext();) {
                const QRegularExpressionMatch one = a.next();
                (one.captured(2) == QLatin1String("in") ? in : out) += one.captured(1);
            }
            const auto shown = [](const QString &types) {
                return types.isEmpty() ? QStringLiteral("-") : types;
            };
            methods.insert(found.captured(1), shown(in) + QLatin1Char(' ') + shown(out));
        }
        return methods;
    }

    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
    QString m_xml;
};

QTEST_GUILESS_MAIN(TestTools)
#include "tst_tools.moc"
