// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtTest/QTest>

/// The examples do what they say with an embosser, and without one say so.
class TestExamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_simulator.process().killAndWait(); }

    void run_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QByteArray>("complaint");
        QTest::newRow("hello") << QStringLiteral(HELLO) << QStringList()
                               << QByteArray("Kestan prints at speed Draft\n")
                               << QByteArray("There is no embosser");
        QTest::newRow("batch") << QStringLiteral(BATCH) << QStringList()
                               << QByteArray("KE-000001 is ready\n")
                               << QByteArray("There is no embosser");
        QTest::newRow("python") << QStringLiteral(PYTHON)
                                << QStringList{QStringLiteral("-B"), QStringLiteral(PYTHON_EXAMPLE),
                                               QStringLiteral("K-1903")}
                                << QByteArray("Kestan K-1903 Medium\n")
                                << QByteArray("org.freedesktop.DBus.Error.ServiceUnknown");
    }

    void run()
    {
        QFETCH(const QString, program);
        QFETCH(const QStringList, arguments);
        QFETCH(const QByteArray, output);
        QFETCH(const QByteArray, complaint);
        m_simulator.start();
        ChildProcess with(program, arguments);
        with.setProcessChannelMode(QProcess::SeparateChannels);
        with.start();
        QVERIFY(with.waitForFinished());
        QCOMPARE(with.readAllStandardOutput(), output);
        QCOMPARE(with.exitCode(), 0);

        m_simulator.process().killAndWait();
        ChildProcess without(program, arguments);
        without.setProcessChannelMode(QProcess::SeparateChannels);
        without.start();
        QVERIFY(without.waitForFinished());
        QVERIFY(without.readAllStandardError().contains(complaint));
        QCOMPARE(without.exitStatus(), QProcess::NormalExit);
        QCOMPARE(without.exitCode(), 1);
    }

private:
    const PrivateBus m_bus;
    Simulator m_simulator{m_bus};
};

QTEST_GUILESS_MAIN(TestExamples)
#include "tst_examples.moc"
