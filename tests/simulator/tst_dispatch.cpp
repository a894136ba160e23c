// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QFile>
#include <QtCore/QXmlStreamReader>
#include <QtDBus/QDBusServiceWatcher>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

class TestDispatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QFile file(QStringLiteral(INTROSPECTION_XML));
        QVERIFY(file.open(QFile::ReadOnly));
        m_xml = QString::fromUtf8(file.readAll());
        m_simulator.start();
    }

    void itDescribesItselfAsTheXmlDoes()
    {
        const QString begin =
            QStringLiteral("<interface name=\"%1\">").arg(Simulator::serviceName());
        const QString end = QStringLiteral("</interface>");
        const QString expected = m_xml.mid(m_xml.indexOf(begin)).section(end, 0, 0);
        const QString introspection = introspect(QStringLiteral("/"));
        QCOMPARE(introspection.mid(introspection.indexOf(begin)).section(end, 0, 0), expected);
        QVERIFY(expected.contains(QStringLiteral("<method ")));
    }

    void callsAreCarriedOutInTheirOrderFromTheStart()
    {
        const int starts = 50;
        const int batch = 20;
        for (int i = 0; i < starts; ++i) {
            m_simulator.process().killAndWait();
            ChildProcess process(simulatorProgram(), {});
            process.start();
            // From before the service is there, so that some reach it as soon as it is.
            int last = 0; // of those that have been answered
            for (int number = 1; last == 0;) {
                QVector<QDBusPendingCall> calls;
                const int first = number;
                for (; number < first + batch; ++number)
                    calls << m_simulator.asyncCall("setCounter",
                                                   {number, 1, Simulator::masterCollection()});
                for (int call = 0; call < batch; ++call) {
                    calls[call].waitForFinished();
                    if (!calls[call].isError())
                        last = first + call;
                }
            }
            QCOMPARE(m_simulator.value("getCounter", {1, Simulator::masterCollection()}),
                     QVariant(last));
        }
        m_simulator.start();
    }

    void itsControlIsFoundByIntrospection()
    {
        QString path = QStringLiteral("/");
        for (const QString &node :
             QString(QStringLiteral("com/tavelornbraille/Simulator")).split('/')) {
            QVERIFY(introspect(path).contains(QStringLiteral("<node name=\"%1\"/>").arg(node)));
            path += (path == QLatin1String("/") ? QString() : QStringLiteral("/")) + node;
        }
        const QString control = introspect(path);
        QVERIFY(control.contains(QLatin1String("com.tavelornbraille.Simulator.Faults")));
        QVERIFY(control.contains(QLatin1String("com.tavelornbraille.Simulator.Log")));
    }

    void everyMethodRefusesAWrongSignature()
    {
        QXmlStreamReader reader(m_xml);
        QString method;
        int methods = 0;
        while (!reader.atEnd()) {
            reader.readNext();
            if (reader.name() != QLatin1String("method") || !reader.isStartElement())
                continue;
            method = reader.attributes().value(QLatin1String("name")).toString();
            ++methods;
            // No method takes a byte.
            const QDBusMessage reply = m_simulator.call(method, {QVariant::fromValue(uchar(1))});
            QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
            QVERIFY2(reply.errorMessage().startsWith(method + QLatin1String(" takes (")),
                     qPrintable(reply.errorMessage()));
        }
        QCOMPARE(methods, m_xml.count(QStringLiteral("<method ")));
    }

    void aWrongSignatureIsAnsweredWithTheRightOne()
    {
        QCOMPARE(m_simulator.error("setBaudrate", {QStringLiteral("9600")}),
                 QStringLiteral("setBaudrate takes (i value, s collectionId, b flag), of signature "
                                "\"isb\"; it was called with \"s\""));
    }

    void anUnknownMethodIsAnError()
    {
        const QDBusMessage reply = m_simulator.call("getModle");
        QCOMPARE(reply.errorName(), QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
        QVERIFY(reply.errorMessage().contains(QLatin1String("getModle")));
    }

    void anotherInterfaceIsAnError()
    {
        const QDBusMessage reply = m_simulator.connection().call(QDBusMessage::createMethodCall(
            Simulator::serviceName(), QStringLiteral("/"), QStringLiteral("org.example.Other"),
            QStringLiteral("getType")));
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    }

    void theInterfaceNeedNotBeSaid()
    {
        const QDBusMessage reply = m_simulator.connection().call(QDBusMessage::createMethodCall(
            Simulator::serviceName(), QStringLiteral("/"), QString(), QStringLiteral("getType")));
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QCOMPARE(reply.arguments().value(0).toInt(), 3);
    }

    void aCallThatWantsNoAnswerIsCarriedOut()
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(Simulator::serviceName(), QStringLiteral("/"),
                                           Simulator::serviceName(), QStringLiteral("setTabSize"));
        message << 7;
        QVERIFY(m_simulator.connection().send(message));
        QTRY_COMPARE(m_simulator.value("getTabSize").toInt(), 7);
    }

    void aRestartLeavesTheBusAndComesBack()
    {
        QCOMPARE(m_simulator.error("setTabSize", {5}), QString());
        const QDBusServiceWatcher watcher(Simulator::serviceName(), m_simulator.connection());
        const QSignalSpy left(&watcher, &QDBusServiceWatcher::serviceUnregistered);
        const QSignalSpy come(&watcher, &QDBusServiceWatcher::serviceRegistered);
        QCOMPARE(m_simulator.error("restartServicesAfterReset"), QString());
        QTRY_COMPARE(left.size(), 1);
        QTRY_COMPARE(come.size(), 1);
        QCOMPARE(m_simulator.value("getTabSize").toInt(), 5);
    }

    void theLogIsOffUntilItIsSwitchedOn()
    {
        const auto lines = [this] {
            return m_simulator.control(QStringLiteral("Log"), QStringLiteral("Lines"))
                .toStringList();
        };
        const auto isEnabled = [this] {
            return m_simulator.control(QStringLiteral("Log"), QStringLiteral("IsEnabled")).toBool();
        };
        const QString secret = QStringLiteral("not for a log");
        QVERIFY(!isEnabled());
        QCOMPARE(lines(), QStringList());
        m_simulator.call("setLogger", {true});
        QVERIFY(isEnabled());
        m_simulator.call("setPassphrase", {secret, secret});
        m_simulator.call("getBaudrate");
        QCOMPARE(lines().size(), 3);
        QVERIFY(lines().at(0).endsWith(QLatin1String(" setLogger ok")));
        QVERIFY(lines().at(1).endsWith(QLatin1String(" setPassphrase ok")));
        QVERIFY(lines().at(2).endsWith(
            QLatin1String(" getBaudrate org.freedesktop.DBus.Error.InvalidArgs")));
        QVERIFY(!lines().join(QString()).contains(secret));
        m_simulator.call("setLogger", {false});
        m_simulator.call("getType");
        QCOMPARE(lines().size(), 3);
        QCOMPARE(m_simulator.value("clearLog"), QVariant(true));
        QCOMPARE(lines(), QStringList());
    }

    void theLogHasTheLastThousandCalls()
    {
        const auto methods = [this] {
            QStringList names;
            for (const QString &line :
                 m_simulator.control(QStringLiteral("Log"), QStringLiteral("Lines")).toStringList())
                names += line.section(QLatin1Char(' '), 1, 1);
            return names;
        };
        const int remembered = 1000;
        m_simulator.call("setLogger", {true});
        for (int i = 0; i < remembered - 1; ++i)
            m_simulator.call("getType");
        QCOMPARE(methods().size(), remembered);
        QCOMPARE(methods().constFirst(), QStringLiteral("setLogger"));
        m_simulator.call("getTabSize");
        QCOMPARE(methods().size(), remembered);
        QCOMPARE(methods().constFirst(), QStringLiteral("getType"));
        QCOMPARE(methods().constLast(), QStringLiteral("getTabSize"));
    }

    void ofAnInterfaceWithoutPropertiesTheMapIsEmpty()
    {
        for (const QString &interface :
             {Simulator::serviceName(), QStringLiteral("org.freedesktop.DBus.Properties"),
              QStringLiteral("org.freedesktop.DBus.Introspectable"),
              QStringLiteral("org.freedesktop.DBus.Peer")}) {
            const QDBusMessage reply = getAll({interface});
            QCOMPARE(reply.signature(), QStringLiteral("a{sv}"));
            QCOMPARE(qdbus_cast<QVariantMap>(reply.arguments().value(0)), QVariantMap());
        }
        QCOMPARE(getAll({QStringLiteral("org.example.None")}).type(), QDBusMessage::ErrorMessage);
    }

    void propertiesAreThoseOfOneInterface()
    {
        const QString service = Simulator::serviceName();
        for (const QVariantList &arguments :
             {QVariantList(), QVariantList{7}, QVariantList{service, service}})
            QCOMPARE(getAll(arguments).type(), QDBusMessage::ErrorMessage);
        // It is still there.
        QCOMPARE(m_simulator.error("getType"), QString());
    }

private:
    QDBusMessage getAll(const QVariantList &arguments) const
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            Simulator::serviceName(), QStringLiteral("/"),
            QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
        call.setArguments(arguments);
        return m_simulator.connection().call(call);
    }

    QString introspect(const QString &path) const
    {
        const QDBusMessage reply = m_simulator.connection().call(QDBusMessage::createMethodCall(
            Simulator::serviceName(), path, QStringLiteral("org.freedesktop.DBus.Introspectable"),
            QStringLiteral("Introspect")));
        return reply.arguments().value(0).toString();
    }

    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
    QString m_xml;
};

QTEST_GUILESS_MAIN(TestDispatch)
#include "tst_dispatch.moc"
