// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QMetaEnum>
#include <QtTest/QTest>

using lcm::EmbosserType;
using lcm::FeedType;
using lcm::HeadType;
using lcm::ModelMask;

class TestModels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyModelIsItself_data()
    {
        QTest::addColumn<EmbosserType>("type");
        QTest::addColumn<ModelMask>("mask");
        QTest::addColumn<int>("maskValue");
        QTest::addColumn<FeedType>("feed");
        QTest::addColumn<HeadType>("head");
        QTest::addColumn<int>("slaves");
        QTest::addColumn<QString>("tests");
        const auto row = [](const char *name, EmbosserType type, ModelMask mask, int maskValue,
                            FeedType feed, HeadType head, int slaves, const char *tests) {
            QTest::newRow(name) << type << mask << maskValue << feed << head << slaves
                                << QString::fromLatin1(tests);
        };
        row("Arvo", EmbosserType::Arvo, ModelMask::Arvo, 1, FeedType::Tractor, HeadType::Normal, 0,
            "isArvo hasTractorFeed isDoubleSided isUserPaperCompatible");
        row("Arvo_V5", EmbosserType::Arvo_V5, ModelMask::Arvo, 1, FeedType::Tractor,
            HeadType::Normal, 0,
            "isArvo isArvoOrv isOrv hasTractorFeed isDoubleSided isUserPaperCompatible");
        row("Kestan", EmbosserType::Kestan, ModelMask::Kestan, 2, FeedType::Tractor,
            HeadType::Normal, 0, "isKestan hasTractorFeed isDoubleSided isUserPaperCompatible");
        row("Kestan_V5", EmbosserType::Kestan_V5, ModelMask::Kestan, 2, FeedType::Tractor,
            HeadType::Normal, 0,
            "isKestan isOrv hasTractorFeed isDoubleSided isUserPaperCompatible");
        row("Dovrik", EmbosserType::Dovrik, ModelMask::Dovrik, 4, FeedType::Feeder,
            HeadType::Sideway, 0,
            "isDovrik hasBooklet hasFeeder isDoubleSided isUserPaperCompatible");
        row("Dovrik_V5", EmbosserType::Dovrik_V5, ModelMask::Dovrik, 4, FeedType::Feeder,
            HeadType::Sideway, 0,
            "isDovrik isOrv hasBooklet hasFeeder isDoubleSided isUserPaperCompatible");
        row("Marren", EmbosserType::Marren, ModelMask::Marren, 64, FeedType::Tray, HeadType::Normal,
            1,
            "isMarren hasBooklet hasFeeder hasTractorFeed hasMultipleHeadsPerPage isDoubleSided "
            "isUserPaperCompatible");
        row("MarrenPlus", EmbosserType::MarrenPlus, ModelMask::Marren, 64, FeedType::Tray,
            HeadType::Normal, 2,
            "isMarrenPlus hasBooklet hasFeeder hasTractorFeed hasMultipleHeadsPerPage "
            "isDoubleSided isUserPaperCompatible");
        row("Tolvek", EmbosserType::Tolvek, ModelMask::Undefined, 3, FeedType::Tractor,
            HeadType::Single, 0, "isUlm isTolvek hasTractorFeed");
        row("Tolvek_V5", EmbosserType::Tolvek_V5, ModelMask::Undefined, 3, FeedType::Tractor,
            HeadType::Single, 0, "isUlm isTolvek hasTractorFeed");
        row("Quillon", EmbosserType::Quillon, ModelMask::Quillon, 128, FeedType::Ignore,
            HeadType::Normal, 3,
            "isQuillon hasBooklet hasFeeder hasTractorFeed hasMultipleHeadsPerPage isDoubleSided "
            "isUserPaperCompatible");
        row("Feyra", EmbosserType::Feyra, ModelMask::Feyra, 16, FeedType::Feeder, HeadType::Single,
            0, "isFeyra hasFeeder isUserPaperCompatible");
        row("Halvik", EmbosserType::Halvik, ModelMask::Halvik, 32, FeedType::Tray, HeadType::Normal,
            0, "isHalvik isUlm hasFeeder isDoubleSided isUserPaperCompatible isUserPaperImperial");
    }

    void everyModelIsItself()
    {
        QFETCH(EmbosserType, type);
        QFETCH(ModelMask, mask);
        QFETCH(int, maskValue);
        QFETCH(FeedType, feed);
        QFETCH(HeadType, head);
        QFETCH(int, slaves);
        QFETCH(QString, tests);
        startModel();
        QCOMPARE(m_simulator.value("getType").toInt(), int(type));
        QCOMPARE(m_simulator.value("getModelMask").toInt(), int(mask));
        QCOMPARE(m_simulator.value("getMaskValue").toInt(), maskValue);
        QCOMPARE(m_simulator.value("getFeedType").toInt(), int(feed));
        QCOMPARE(m_simulator.value("getHeadType").toInt(), int(head));
        QCOMPARE(m_simulator.value("numberOfSlaves").toInt(), slaves);
        QCOMPARE(m_simulator.value("getSlaveDev").toString().isEmpty(), slaves == 0);

        const QStringList all =
            QStringLiteral(
                "isArvo isKestan isDovrik isMarren isMarrenPlus isFeyra isHalvik isQuillon "
                "isArvoOrv "
                "isOrv isUlm isTolvek hasBooklet hasFeeder hasTractorFeed hasMultipleHeadsPerPage "
                "isDoubleSided isUserPaperCompatible isUserPaperImperial")
                .split(QLatin1Char(' '));
        QStringList answered;
        for (const QString &test : all) {
            if (m_simulator.value(test).toBool())
                answered += test;
        }
        QCOMPARE(answered.join(QLatin1Char(' ')), tests);
    }

    void everyRowHasChoices_data() { modelRows(); }

    void everyRowHasChoices()
    {
        startModel();
        const auto rows = QMetaEnum::fromType<lcm::EnumDetail::RowValueList>();
        QCOMPARE(rows.keyCount(), 58);
        for (int i = 0; i < rows.keyCount(); ++i) {
            const QVariantList choices =
                m_simulator.value("getValueList", {rows.value(i)}).toList();
            QVERIFY2(!choices.isEmpty(), rows.key(i));
            QStringList keys;
            for (const QVariant &choice : choices) {
                const QVariantMap map = choice.toMap();
                QCOMPARE(map.keys(), QStringList({QStringLiteral("key"), QStringLiteral("value")}));
                QCOMPARE(map.value(QStringLiteral("value")).userType(), int(QMetaType::Int));
                keys += map.value(QStringLiteral("key")).toString();
            }
            QCOMPARE(keys.removeDuplicates(), 0);
        }
        QVERIFY(!m_simulator.error("getValueList", {-1}).isEmpty());
        QCOMPARE(m_simulator.error("getValueList", {58}),
                 QStringLiteral("there is no value list 58; they are numbered 0 to 57"));
    }

    void everyPaperOfTheListFitsTheModel_data() { modelRows(); }

    void everyPaperOfTheListFitsTheModel()
    {
        startModel();
        const int any = int(FeedType::Ignore);
        QCOMPARE(m_simulator.error("setPaperSize",
                                   {QStringLiteral("A4"), Simulator::masterCollection()}),
                 QString());
        const int feed = m_simulator.value("getFeedType").toInt();
        const int papers = int(lcm::RowValueList::Papers);
        for (const QVariant &choice : m_simulator.value("getValueList", {papers}).toList()) {
            const QString paper = choice.toMap().value(QStringLiteral("key")).toString();
            const double width = m_simulator.value("getWidthForPaper", {paper}).toDouble();
            const double height = m_simulator.value("getHeightForPaper", {paper}).toDouble();
            QVERIFY(width >= m_simulator.value("getMinWidth").toDouble());
            QVERIFY(width <= m_simulator.value("getMaxWidth").toDouble());
            QVERIFY(height >= m_simulator.value("getMinHeight").toDouble());
            QVERIFY(height <= m_simulator.value("getMaxHeight").toDouble());
            QVERIFY(m_simulator.value("getModelMaskForPaper", {paper}).toInt() &
                    m_simulator.value("getMaskValue").toInt());
            QCOMPARE(m_simulator.error("setPaperSize", {paper, Simulator::masterCollection()}),
                     QString());
            // The paper's feed, or the model's main one if any is right for the paper.
            const int paperFeed = m_simulator.value("getFeedTypeForPaper", {paper}).toInt();
            QCOMPARE(m_simulator.value("getFeedType").toInt(), paperFeed == any ? feed : paperFeed);
        }
    }

    void theReportsAgreeWithTheGetters_data() { modelRows(); }

    void theReportsAgreeWithTheGetters()
    {
        startModel();
        const QVariantMap report = m_simulator.value("embosserInfoCmd").toMap();
        QCOMPARE(report.value(QStringLiteral("Type")), m_simulator.value("getType"));
        QCOMPARE(report.value(QStringLiteral("ModelMask")), m_simulator.value("getModelMask"));
        QCOMPARE(report.value(QStringLiteral("hasBooklet")), m_simulator.value("hasBooklet"));
        const QVariantList master{Simulator::masterCollection()};
        QCOMPARE(report.value(QStringLiteral("Model")), m_simulator.value("getModel", master));
        QCOMPARE(report.value(QStringLiteral("SerialNo")),
                 m_simulator.value("getSerialNo", master));
        QCOMPARE(m_simulator.error("incrementPageCounter", master), QString());
        QCOMPARE(m_simulator.value("embosserInfoCmd").toMap().value(QStringLiteral("PageCounter")),
                 QVariant(report.value(QStringLiteral("PageCounter")).toInt() + 1));
    }

    void eachListOfDocumentsHasThoseOfItsKind_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("getDemoDocuments") << "/demo/";
        QTest::newRow("getManualDocuments") << "/manual/";
        QTest::newRow("getServiceDocuments") << "/service/";
    }

    void eachListOfDocumentsHasThoseOfItsKind()
    {
        QFETCH(QString, folder);
        m_simulator.start();
        const QVariantMap documents = m_simulator.value(QTest::currentDataTag()).toMap();
        QVERIFY(!documents.isEmpty());
        for (const QVariant &path : documents)
            QVERIFY2(path.toString().contains(folder), qPrintable(path.toString()));
    }

private:
    static void modelRows()
    {
        QTest::addColumn<int>("unused");
        const Ended ended = runSimulator({QStringLiteral("--list-models")});
        for (const QString &model : ended.output.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            QTest::newRow(qPrintable(model)) << 0;
    }

    void startModel()
    {
        m_simulator.start(
            {QStringLiteral("--model"), QString::fromLatin1(QTest::currentDataTag())});
    }

    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
};

QTEST_GUILESS_MAIN(TestModels)
#include "tst_models.moc"
