// SPDX-License-Identifier: MIT

#include "program/Options.h"

#include <QtTest/QTest>

using simulator::Options;
using simulator::optionsFrom;
using simulator::UsageError;

class TestOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutOptionsItIsTheDefaultModelInMemory()
    {
        const Options options = read({});
        QCOMPARE(options.profileFile, QStringLiteral(":/profiles/Kestan.json"));
        QCOMPARE(options.stateFile, QString());
        QCOMPARE(options.usbDirectory, QString());
        QCOMPARE(options.faults, QStringList());
    }

    void everyOptionIsRead()
    {
        const Options options = read({"--profile", "p.json", "--state=s.db", "--usb", "stick",
                                      "--fault", "error:getType", "--fault", "crash:*"});
        QCOMPARE(options.profileFile, QStringLiteral("p.json"));
        QCOMPARE(options.stateFile, QStringLiteral("s.db"));
        QCOMPARE(options.usbDirectory, QStringLiteral("stick"));
        QCOMPARE(options.faults, QStringList({"error:getType", "crash:*"}));
        QCOMPARE(read({"--model", "Marren"}).profileFile, QStringLiteral(":/profiles/Marren.json"));
    }

    void whatCannotBeIsAUsageError_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("unknown option") << QStringList{"--modle"};
        QTest::newRow("value that is missing") << QStringList{"--state"};
        QTest::newRow("unknown model") << QStringList{"--model=Avro"};
        QTest::newRow("argument") << QStringList{"Arvo"};
        QTest::newRow("empty name") << QStringList{"--usb="};
        QTest::newRow("two models") << QStringList{"--model=Arvo", "--profile=p"};
    }

    void whatCannotBeIsAUsageError()
    {
        QFETCH(QStringList, arguments);
        QVERIFY_EXCEPTION_THROWN(read(arguments), UsageError);
    }

private:
    static Options read(const QStringList &arguments)
    {
        return optionsFrom(QStringList{"embosser-simulator"} + arguments);
    }
};

QTEST_GUILESS_MAIN(TestOptions)
#include "tst_options.moc"
