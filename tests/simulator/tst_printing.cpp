// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

namespace {

const QString master = Simulator::masterCollection();
const int patience = 60000;

} // namespace

class TestPrinting : public QObject
{
    Q_OBJECT
public Q_SLOTS:
    void noteStatus(const QString &status) { m_statuses << status; }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_simulator.connection().connect(
            Simulator::controlName(), Simulator::controlPath(),
            Simulator::controlName() + QStringLiteral(".Printer"), QStringLiteral("Changed"), this,
            SLOT(noteStatus(QString))));
    }

    void init()
    {
        m_simulator.start();
        m_simulator.error("setDuplexing", {"Single", master});
        QCoreApplication::processEvents();
        m_statuses.clear();
    }

    void aJobMovesWhatTellsOfIt()
    {
        QCOMPARE(counter(1), 0);
        print(3, 2);
        QCOMPARE(setting("DocumentStatus"), 1);
        QCOMPARE(setting("NumberOfCopies"), 2);
        QCOMPARE(sensor("HeadHome"), false);

        QCOMPARE(step(2), 2U);
        QCOMPARE(setting("NumberOfPrintedPages"), 2);
        QCOMPARE(setting("NumberOfPrintedCopies"), 0);
        QCOMPARE(counter(1), 2);

        QCOMPARE(step(1), 1U);
        QCOMPARE(setting("NumberOfPrintedCopies"), 1);

        QCOMPARE(step(100), 3U);
        QCOMPARE(setting("NumberOfPrintedPages"), 6);
        QCOMPARE(setting("NumberOfPrintedCopies"), 2);
        QCOMPARE(setting("DocumentStatus"), 4);
        QCOMPARE(sensor("HeadHome"), true);
        QCOMPARE(counter(1), 6);
        QCOMPARE(counter(2), 6);
        QCOMPARE(counter(3), 1);
        QCOMPARE(job("sheetsInBin"), 6);
        QTRY_COMPARE_WITH_TIMEOUT(m_statuses, (QStringList{"printing", "finished"}), patience);
    }

    void theNextJobBeginsAnew()
    {
        print(1, 1);
        step(1);
        print(2, 0);
        QCOMPARE(setting("NumberOfPrintedPages"), 0);
        QCOMPARE(setting("NumberOfPrintedCopies"), 0);
        QCOMPARE(setting("DocumentStatus"), 1);
        QCOMPARE(step(100), 2U);
        QCOMPARE(counter(1), 3);
        QCOMPARE(job("sheetsInBin"), 3);
    }

    void copiesAreThoseSetUnlessItSaysHowMany()
    {
        QCOMPARE(m_simulator.error("setNumberOfCopies", {3, master}), QString());
        print(1, 0);
        QCOMPARE(step(100), 3U);
        QCOMPARE(setting("NumberOfPrintedCopies"), 3);
    }

    void pagesBeforeTheFirstOneAreLeftOut()
    {
        QCOMPARE(m_simulator.error("setFirstPageForJob", {4, master}), QString());
        print(5, 2);
        QCOMPARE(step(100), 4U);
        QVERIFY(refusal("Print", {3U, 1U, 0U}).contains("ends before page 4"));
    }

    void sheetsTakeAsManyPagesAsTheirKindOfPrinting_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("duplexing");
        QTest::addColumn<int>("sheets");
        QTest::newRow("single") << "Kestan"
                                << "Single" << 10;
        QTest::newRow("double") << "Kestan"
                                << "Double" << 6;
        QTest::newRow("z-folded") << "Kestan"
                                  << "ZfSingle" << 10;
        QTest::newRow("booklet") << "Dovrik"
                                 << "Booklet" << 4;
        QTest::newRow("booklet of one side") << "Dovrik"
                                             << "BookletSingle" << 6;
    }

    void sheetsTakeAsManyPagesAsTheirKindOfPrinting()
    {
        QFETCH(QString, model);
        QFETCH(QString, duplexing);
        m_simulator.start({"--model", model});
        QCOMPARE(m_simulator.error("setDuplexing", {duplexing, master}), QString());
        // No copy begins on a sheet of the one before.
        print(5, 2);
        QCOMPARE(step(100), 10U);
        QTEST(counter(2), "sheets");
        QTEST(job("sheetsInBin"), "sheets");
        QCOMPARE(counter(1), 10);
    }

    void aPauseHoldsIt()
    {
        print(3, 1);
        step(1);
        QCOMPARE(m_simulator.error("setPrintingPaused", {true}), QString());
        QCOMPARE(setting("DocumentStatus"), 2);
        QCOMPARE(sensor("HeadHome"), true);
        QCOMPARE(step(1), 0U);
        QCOMPARE(setting("NumberOfPrintedPages"), 1);
        QCOMPARE(m_simulator.error("setPrintingPaused", {false}), QString());
        QCOMPARE(setting("DocumentStatus"), 1);
        QCOMPARE(step(100), 2U);
        QTRY_COMPARE_WITH_TIMEOUT(
            m_statuses, (QStringList{"printing", "paused", "printing", "finished"}), patience);
    }

    void itPausesBetweenCopiesIfThatIsSet()
    {
        QCOMPARE(m_simulator.error("setBetweenCopies", {"Pause", master}), QString());
        print(2, 2);
        QCOMPARE(step(100), 2U);
        QCOMPARE(m_simulator.value("getPrintingPaused"), QVariant(true));
        QCOMPARE(setting("DocumentStatus"), 2);
        QCOMPARE(m_simulator.error("setPrintingPaused", {false}), QString());
        QCOMPARE(step(100), 2U);
        QCOMPARE(m_simulator.value("getPrintingPaused"), QVariant(false));
        QCOMPARE(setting("DocumentStatus"), 4);
    }

    void aConditionHoldsIt_data()
    {
        QTest::addColumn<QString>("condition");
        QTest::addColumn<QString>("sensorName");
        QTest::addColumn<bool>("sensorState");
        QTest::newRow("paper in") << "out-of-paper"
                                  << "PaperIn" << false;
        QTest::newRow("paper out") << "out-of-paper"
                                   << "PaperOut" << true;
        QTest::newRow("bin") << "bin-full"
                             << "TrayFull" << true;
        QTest::newRow("cover") << "cover-open"
                               << "CoverOpen" << true;
    }

    void aConditionHoldsIt()
    {
        QFETCH(QString, condition);
        QFETCH(QString, sensorName);
        QFETCH(bool, sensorState);
        print(5, 1);
        control("Interrupt", {condition, 2U});
        QCOMPARE(sensor(sensorName), !sensorState);
        QCOMPARE(step(100), 2U);
        QCOMPARE(setting("DocumentStatus"), 3);
        QCOMPARE(sensor(sensorName), sensorState);
        QCOMPARE(control("Job").toMap().value("condition").toString(), condition);
        QCOMPARE(step(1), 0U);
        control("Resolve");
        QCOMPARE(sensor(sensorName), !sensorState);
        QCOMPARE(setting("DocumentStatus"), 1);
        QCOMPARE(step(100), 3U);
        QCOMPARE(setting("NumberOfPrintedPages"), 5);
    }

    void aConditionIsThereAtOnceOrBeforeTheJob()
    {
        control("Interrupt", {"out-of-paper", 0U});
        QCOMPARE(sensor("PaperIn"), false);
        print(1, 1);
        QCOMPARE(setting("DocumentStatus"), 3);
        QCOMPARE(step(1), 0U);
        control("Resolve");
        QCOMPARE(step(1), 1U);
    }

    void aJamEndsIt()
    {
        print(5, 1);
        control("Interrupt", {"jam", 1U});
        QCOMPARE(step(100), 1U);
        QCOMPARE(setting("DocumentStatus"), 6);
        control("Resolve");
        QCOMPARE(setting("DocumentStatus"), 6);
        QCOMPARE(step(1), 0U);
        QCOMPARE(counter(3), 0);
        print(1, 1);
        QCOMPARE(step(1), 1U);
    }

    void whatNobodyLooksAtHoldsNothing_data()
    {
        QTest::addColumn<QString>("setter");
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("condition");
        QTest::newRow("no detection")
            << "setPaperJamDetect" << QVariantList{0, master, false} << "jam";
        QTest::newRow("sensor off")
            << "setSensorPaperJam" << QVariantList{0, master, false} << "jam";
        QTest::newRow("without sensors")
            << "setPrintWithoutSensors" << QVariantList{1, master} << "out-of-paper";
    }

    void whatNobodyLooksAtHoldsNothing()
    {
        QFETCH(QString, setter);
        QFETCH(QVariantList, arguments);
        QFETCH(QString, condition);
        QCOMPARE(m_simulator.error(setter, arguments), QString());
        print(3, 1);
        control("Interrupt", {condition, 1U});
        QCOMPARE(step(100), 3U);
        QCOMPARE(setting("DocumentStatus"), 4);
    }

    void theBinHasRoomForSoManySheets()
    {
        QCOMPARE(m_simulator.error("setMaxPaperInBin", {3, master}), QString());
        print(5, 1);
        QCOMPARE(step(100), 3U);
        QCOMPARE(sensor("TrayFull"), true);
        QCOMPARE(setting("DocumentStatus"), 3);
        control("Resolve");
        QCOMPARE(job("sheetsInBin"), 0);
        QCOMPARE(step(100), 2U);
        QCOMPARE(job("sheetsInBin"), 2);
        QCOMPARE(sensor("TrayFull"), false);
    }

    void itPrintsByItselfAtAPace()
    {
        QCOMPARE(m_simulator.error("setWaitBeforePrinting", {0, master, false}), QString());
        const int pages = 20;
        QElapsedTimer timer;
        timer.start();
        control("Print", {uint(pages), 1U, 10U});
        QTRY_COMPARE_WITH_TIMEOUT(setting("DocumentStatus"), 4, patience);
        QVERIFY(timer.elapsed() >= qint64(pages) * 10);
        QCOMPARE(setting("NumberOfPrintedPages"), pages);
    }

    void itWaitsBeforeTheFirstPageOnly()
    {
        // For longer than this test has patience.
        QCOMPARE(m_simulator.error("setWaitBeforePrinting", {300, master, false}), QString());
        control("Print", {3U, 1U, 1U});
        // Other calls come and go meanwhile.
        for (int i = 0; i < 20; ++i)
            QCOMPARE(setting("NumberOfPrintedPages"), 0);
        QCOMPARE(step(1), 1U);
        // The wait that has begun ends with the pause; after a page, there is no other.
        QCOMPARE(m_simulator.error("setPrintingPaused", {true}), QString());
        QCOMPARE(m_simulator.error("setPrintingPaused", {false}), QString());
        QTRY_COMPARE_WITH_TIMEOUT(setting("DocumentStatus"), 4, patience);
    }

    void aPauseHoldsItsPace()
    {
        QCOMPARE(m_simulator.error("setWaitBeforePrinting", {0, master, false}), QString());
        QCOMPARE(m_simulator.error("setPrintingPaused", {true}), QString());
        control("Print", {1U, 1U, 1U});
        // Other calls come and go meanwhile.
        for (int i = 0; i < 20; ++i)
            QCOMPARE(setting("NumberOfPrintedPages"), 0);
        QCOMPARE(m_simulator.error("setPrintingPaused", {false}), QString());
        QTRY_COMPARE_WITH_TIMEOUT(setting("NumberOfPrintedPages"), 1, patience);
    }

    void itCanBeCancelled()
    {
        print(5, 1);
        step(1);
        control("Cancel");
        QCOMPARE(setting("DocumentStatus"), 5);
        QCOMPARE(step(1), 0U);
        QCOMPARE(setting("NumberOfPrintedPages"), 1);
        QVERIFY(refusal("Cancel").contains("no job is being printed"));
    }

    void aResetForgetsIt()
    {
        print(5, 1);
        step(1);
        control("Interrupt", {"cover-open", 0U});
        m_simulator.control("Calls", "Reset");
        QCOMPARE(step(1), 0U);
        QCOMPARE(setting("DocumentStatus"), 0);
        QCOMPARE(sensor("CoverOpen"), false);
        QCOMPARE(counter(1), 0);
        QCOMPARE(control("Job").toMap().value("status").toString(), QStringLiteral("none"));
        QTRY_COMPARE_WITH_TIMEOUT(m_statuses, (QStringList{"printing", "held", "none"}), patience);
    }

    void itGoesOnAfterACrash()
    {
        const QTemporaryDir directory;
        const QStringList arguments{"--state", directory.filePath("state.db")};
        m_simulator.start(arguments);
        print(5, 1);
        step(2);
        control("Interrupt", {"out-of-paper", 1U});
        m_simulator.process().killAndWait();
        m_simulator.start(arguments);
        QCOMPARE(setting("NumberOfPrintedPages"), 2);
        QCOMPARE(setting("DocumentStatus"), 1);
        QCOMPARE(step(100), 1U);
        QCOMPARE(setting("DocumentStatus"), 3);
        m_simulator.process().terminateAndWait();
        m_simulator.start(arguments);
        QCOMPARE(sensor("PaperIn"), false);
        control("Resolve");
        QCOMPARE(step(100), 2U);
        QCOMPARE(counter(1), 5);
    }

    void itsPaceGoesOnAfterACrash()
    {
        const QTemporaryDir directory;
        const QStringList arguments{"--state", directory.filePath("state.db")};
        m_simulator.start(arguments);
        QCOMPARE(m_simulator.error("setWaitBeforePrinting", {0, master, false}), QString());
        QCOMPARE(m_simulator.error("setPrintingPaused", {true}), QString());
        control("Print", {2U, 1U, 1U});
        m_simulator.process().killAndWait();
        m_simulator.start(arguments);
        QCOMPARE(setting("DocumentStatus"), 2);
        QCOMPARE(m_simulator.error("setPrintingPaused", {false}), QString());
        QTRY_COMPARE_WITH_TIMEOUT(setting("DocumentStatus"), 4, patience);
    }

    void whatCannotBePrintedIsRefused()
    {
        QVERIFY(refusal("Print", {0U, 1U, 0U}).contains("ends before page 1"));
        QVERIFY(refusal("Print", {1U, 1000U, 0U}).contains("NumberOfCopies"));
        QVERIFY(refusal("Print", {4000000000U, 2U, 0U}).contains("NumberOfPrintedPages"));
        QVERIFY(refusal("Print", {1U, 1U, 4000000000U}).contains("milliseconds"));
        QVERIFY(refusal("Step", {1001U}).contains("no more than 1000 pages"));
        QVERIFY(refusal("Interrupt", {"flood", 1U}).contains("there are: out-of-paper"));
        QCOMPARE(setting("NumberOfCopies"), 1);
        print(1, 1);
        QVERIFY(refusal("Print", {1U, 1U, 0U}).contains("a job is being printed"));
    }

    void aCounterThatIsFullStaysSo()
    {
        const int most = 2147483647;
        QCOMPARE(m_simulator.error("setCounter", {most, 1, master}), QString());
        print(2, 1);
        QCOMPARE(step(100), 2U);
        QCOMPARE(counter(1), most);
    }

    void aCapturedEmbosserPrintsToo()
    {
        const QTemporaryDir directory;
        QFile profile(directory.filePath("device.json"));
        QVERIFY(profile.open(QIODevice::WriteOnly));
        // One that has told of one sensor, and of no counter.
        profile.write(QString(nothingCaptured)
                          .replace("\"settings\": {}", R"("settings": {
                              "NumberOfPrintedPages": {"default": 0},
                              "SensorState/PaperOut": {"default": false}})")
                          .toUtf8());
        profile.close();
        m_simulator.start({"--profile", profile.fileName()});
        print(3, 1);
        control("Interrupt", {"out-of-paper", 2U});
        QCOMPARE(step(100), 2U);
        QCOMPARE(setting("NumberOfPrintedPages"), 2);
        QCOMPARE(sensor("PaperOut"), true);
    }

private:
    QVariant control(const QString &method, const QVariantList &arguments = {}) const
    {
        return m_simulator.control("Printer", method, arguments);
    }

    QString refusal(const QString &method, const QVariantList &arguments = {}) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            Simulator::controlName(), Simulator::controlPath(),
            Simulator::controlName() + QStringLiteral(".Printer"), method);
        message.setArguments(arguments);
        return m_simulator.connection().call(message).errorMessage();
    }

    void print(uint pages, uint copies) const { control("Print", {pages, copies, 0U}); }
    uint step(uint pages) const { return control("Step", {pages}).toUInt(); }
    int job(const QString &name) const { return control("Job").toMap().value(name).toInt(); }

    int setting(const QString &name) const
    {
        return m_simulator.value(QStringLiteral("get") + name, {master}).toInt();
    }

    int counter(int number) const
    {
        return m_simulator.value("getCounter", {number, master}).toInt();
    }

    bool sensor(const QString &key) const
    {
        return m_simulator.value("getSensorState", {key, master}).toBool();
    }

    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
    QStringList m_statuses;
};

QTEST_GUILESS_MAIN(TestPrinting)
#include "tst_printing.moc"
