// SPDX-License-Identifier: MIT

#include "TabStops.h"

#include <libconfigurationmanager-testing/SimulatedEmbosser.h>

#include <QtTest/QtTest>

using namespace std::chrono_literals;
using libconfigurationmanager::SimulatedEmbosser;

/// The tests of an application's part, each with an embosser as it is delivered.
class TabStopsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { m_embosser.start(QStringLiteral("Dovrik")); }
    void init() { m_embosser.reset(); }

    void areSent();
    void thatAreRefusedAreNotSaidToBeSet();
    void ofALateAnswerAreWaitedFor();
    void ofALostEmbosserAreNotWaitedForForEver();

private:
    SimulatedEmbosser m_embosser;
};

void TabStopsTest::areSent()
{
    TabStops tabStops;
    tabStops.setDistance(4);
    QTRY_COMPARE(tabStops.notice(), QStringLiteral("The tab stops are set."));

    const auto calls = m_embosser.calls(QStringLiteral("setTabSize"));
    QCOMPARE(calls.size(), 1);
    QCOMPARE(calls[0].arguments, QVariantList{4});
    QVERIFY(calls[0].succeeded());
}

void TabStopsTest::thatAreRefusedAreNotSaidToBeSet()
{
    m_embosser.refuse(QStringLiteral("setTabSize"), QStringLiteral("org.example.Error.Busy"),
                      QStringLiteral("a job is being printed"));
    TabStops tabStops;
    tabStops.setDistance(4);
    QTRY_COMPARE(tabStops.notice(),
                 QStringLiteral("The tab stops stay as they are: a job is being printed"));
}

void TabStopsTest::ofALateAnswerAreWaitedFor()
{
    m_embosser.delay(QStringLiteral("setTabSize"), 500ms);
    TabStops tabStops;
    tabStops.setDistance(4);
    QVERIFY(tabStops.isBusy());
    QTRY_VERIFY(!tabStops.isBusy());
    QCOMPARE(tabStops.notice(), QStringLiteral("The tab stops are set."));
}

void TabStopsTest::ofALostEmbosserAreNotWaitedForForEver()
{
    m_embosser.crash(QStringLiteral("setTabSize"));
    TabStops tabStops;
    tabStops.setDistance(4);
    QTRY_VERIFY(tabStops.notice().startsWith(QStringLiteral("The tab stops stay as they are")));

    m_embosser.start();
    TabStops others;
    others.setDistance(4);
    QTRY_COMPARE(others.notice(), QStringLiteral("The tab stops are set."));
}

QTEST_GUILESS_MAIN(TabStopsTest)
#include "tst_tabstops.moc"
