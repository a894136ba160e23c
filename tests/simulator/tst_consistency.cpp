// SPDX-License-Identifier: MIT

#include "SimulatedModel.h"
#include "methods/Call.h"

#include <libconfigurationmanager/lcm.h>

#include <QtCore/QMetaEnum>
#include <QtTest/QTest>

#include <cmath>

using simulator::Choice;
using simulator::Parameter;

/// What the service answers must not contradict itself, whatever the model.
class TestConsistency : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_model.reset(); }

    void aPaperIsUsableThatItsMaskAndAFeedOfTheModelAllow_data() { modelRows(); }

    void aPaperIsUsableThatItsMaskAndAFeedOfTheModelAllow()
    {
        startModel();
        const QMap<QString, QVariant> answers = m_model->configuration.answers();
        const int mask = answers.value("getMaskValue").toInt();
        const int ignored = int(lcm::FeedType::Ignore);
        int feed = answers.value("getFeedType").toInt();
        for (auto paper = m_model->profile.papers().begin();
             paper != m_model->profile.papers().end(); ++paper) {
            const int paperFeed = paper->value("feedType").toInt();
            const bool hasFeed =
                paperFeed == ignored ||
                paperFeed == m_model->profile.answers().value("getFeedType") ||
                (paperFeed == int(lcm::FeedType::Tractor) &&
                 answers.value("hasTractorFeed").toBool()) ||
                (paperFeed == int(lcm::FeedType::Feeder) && answers.value("hasFeeder").toBool());
            const bool isUsable = (paper->value("modelMask").toInt() & mask) && hasFeed;
            QCOMPARE(m_model->refusalOf("PaperSize", paper.key()).isEmpty(), isUsable);
            if (!isUsable)
                continue;
            feed = m_model->configuration.answers().value("getFeedType").toInt();
            QCOMPARE(feed, paperFeed == ignored
                               ? m_model->profile.answers().value("getFeedType").toInt()
                               : paperFeed);
        }
    }

    void everyEntryOfAMaskHasItsEffect()
    {
        const QMap<QString, QStringList> papers{
            {"Marren", {"A3", "A3Landscape", "Tabloid", "TabloidLandscape", "110x120"}},
            {"Halvik", {"A3", "Tabloid"}}};
        for (auto model = papers.begin(); model != papers.end(); ++model) {
            m_model.reset();
            m_model = std::make_unique<SimulatedModel>(model.key());
            for (const QString &paper : *model)
                QCOMPARE(m_model->refusalOf("PaperSize", paper), QString());
        }
    }

    void boundsValueAndPrecisionAgree_data() { modelRows(); }

    void boundsValueAndPrecisionAgree()
    {
        startModel();
        int seen = 0;
        const auto &parameters = m_model->profile.parameters();
        for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter) {
            const QString &name = parameter.key();
            if (m_model->configuration.setting(name).type == "s" ||
                (!parameter->min && parameter->row.isEmpty()) ||
                m_model->configuration.setting(name).type == "b")
                continue;
            ++seen;
            const int min = query("getMinValue", name);
            const int max = query("getMaxValue", name);
            const double value = m_model->configuration.value(name).toDouble();
            QVERIFY2(min <= value && value <= max, qPrintable(name));
            const double scaled = value * std::pow(10, query("getPrecision", name));
            QVERIFY2(std::abs(scaled - std::round(scaled)) < 1e-6, qPrintable(name));
            if (!parameter->row.isEmpty())
                continue;
            // A checksum may have more bits than an int's value.
            const bool isChecksum = name == "FileCRC";
            if (!parameter->unfulfilled.isEmpty())
                continue;
            QCOMPARE(m_model->refusalOf(name, min), QString());
            QCOMPARE(m_model->refusalOf(name, max), QString());
            QVERIFY2(!m_model->refusalOf(name, qint64(min) - 1).isEmpty(), qPrintable(name));
            QVERIFY2(isChecksum || !m_model->refusalOf(name, qint64(max) + 1).isEmpty(),
                     qPrintable(name));
        }
        QVERIFY(seen > 100);
    }

    void whatAModelHasNotIsRefused_data() { modelRows(); }

    void whatAModelHasNotIsRefused()
    {
        startModel();
        const QMap<QString, QVariant> answers = m_model->configuration.answers();
        const bool hasOwnPapers = answers.value("isUserPaperCompatible").toBool();
        const double width = m_model->configuration.value("PaperWidth").toDouble();
        const double length = m_model->configuration.value("PaperLength").toDouble();
        QCOMPARE(m_model->refusalOf("UserDefinedPaper", 1).isEmpty(), hasOwnPapers);
        QCOMPARE(m_model->refusalOf("PaperWidth", width - 1).isEmpty(), hasOwnPapers);
        QCOMPARE(m_model->refusalOf("PaperLength", length - 1).isEmpty(), hasOwnPapers);
        // What a backup has of it can still be restored.
        QCOMPARE(m_model->refusalOf("UserDefinedPaper", 0), QString());
        QCOMPARE(m_model->refusalOf("PaperWidth", width), QString());
        const bool isDoubleSided = answers.value("isDoubleSided").toBool();
        QCOMPARE(m_model->refusalOf("GraphicDoubleSided", 1).isEmpty(), isDoubleSided);
        const auto duplex = QMetaEnum::fromType<lcm::Duplex>();
        for (int i = 0; i < duplex.keyCount(); ++i) {
            const QString key = QString::fromLatin1(duplex.key(i));
            const bool isBooklet = key.contains("Booklet");
            const bool isPossible = isBooklet ? answers.value("hasBooklet").toBool()
                                              : isDoubleSided || !key.contains("Double");
            QCOMPARE(m_model->refusalOf("Duplexing", key).isEmpty(), isPossible);
        }
    }

    void aRefusalForWantOfACapabilityNamesTheRule()
    {
        m_model = std::make_unique<SimulatedModel>("Tolvek");
        QCOMPARE(m_model->refusalOf("UserDefinedPaper", 1),
                 QStringLiteral("UserDefinedPaper: cannot be changed on this model, for which "
                                "UserPaperAvailable does not hold"));
    }

    void thePageFitsItsPaper_data() { modelRows(); }

    void thePageFitsItsPaper()
    {
        startModel();
        expectFit("as delivered");
        for (const QString &paper : keysOf("PaperSize")) {
            set("PaperSize", paper);
            for (const QString &cell : keysOf("BrailleCellSize")) {
                set("BrailleCellSize", cell);
                for (const QString &dots : keysOf("BrailleCellDots")) {
                    set("BrailleCellDots", dots);
                    for (const QString &spacing : keysOf("BrailleLineSpacing")) {
                        set("BrailleLineSpacing", spacing);
                        expectFit(QStringList{paper, cell, dots, spacing}.join(' '));
                    }
                }
            }
        }
    }

    void thePageFollowsWhatIsSet()
    {
        m_model = std::make_unique<SimulatedModel>("Halvik");
        QCOMPARE(value("PrintWidth").toDouble(), 203.9);
        QCOMPARE(value("PrintLength").toDouble(), 272.4);
        QCOMPARE(value("CharactersPerLine").toInt(), 33);
        QCOMPARE(value("LinePerPage").toInt(), 26);
        set("PaperSize", "A4");
        QCOMPARE(value("PrintWidth").toDouble(), 198.0);
        QCOMPARE(value("LinePerPage").toInt(), 29);
        set("BrailleCellSize", "Text_3p2");
        QCOMPARE(value("CharactersPerLine").toInt(), 26);
        QCOMPARE(value("TotalCharPerLine").toInt(), 26);
        QCOMPARE(value("LinePerPage").toInt(), 19);
        set("BrailleCellSize", "Text_2p5");
        set("BrailleLineSpacing", "Double");
        QCOMPARE(value("LinePerPage").toInt(), 14);
        QCOMPARE(value("TotalLinePerPage").toInt(), 14);
        set("BrailleLineSpacing", "Single");
        set("BrailleCellDots", "EightDot");
        QCOMPARE(value("LinePerPage").toInt(), 23);
        set("PaperWidth", 132.0);
        QCOMPARE(value("PrintWidth").toDouble(), 120.0);
        QCOMPARE(value("CharactersPerLine").toInt(), 20);
    }

    void whatHasBeenSetOfThePageLastsUntilItFollowsAgain()
    {
        m_model = std::make_unique<SimulatedModel>("Kestan");
        set("CharactersPerLine", 20);
        set("LinePerPage", 10);
        QCOMPARE(value("CharactersPerLine").toInt(), 20);
        set("BrailleLineSpacing", "Double");
        QCOMPARE(value("CharactersPerLine").toInt(), 20);
        QVERIFY(value("LinePerPage").toInt() != 10);
        set("PaperSize", "A4");
        QCOMPARE(value("CharactersPerLine").toInt(), 33);
        // In a sequence, what others follow comes first.
        m_model->configuration.setValues(simulator::Configuration::masterCollection(),
                                         {{"CharactersPerLine", 12},
                                          {"LinePerPage", 11},
                                          {"PrintWidth", 100.0},
                                          {"PaperWidth", 150.0},
                                          {"PaperSize", "85x110"}});
        QCOMPARE(value("CharactersPerLine").toInt(), 12);
        QCOMPARE(value("LinePerPage").toInt(), 11);
        QCOMPARE(value("PrintWidth").toDouble(), 100.0);
        QCOMPARE(value("PaperWidth").toDouble(), 150.0);
        QCOMPARE(value("PaperLength").toDouble(), 279.4);
    }

    void pairsStayInOrder_data()
    {
        QTest::addColumn<QString>("low");
        QTest::addColumn<QString>("high");
        QTest::newRow("fan") << "FanTemperatureOff"
                             << "FanTemperatureOn";
        QTest::newRow("voltage") << "VoltageLowLimit"
                                 << "VoltageHighLimit";
    }

    void pairsStayInOrder()
    {
        QFETCH(QString, low);
        QFETCH(QString, high);
        m_model = std::make_unique<SimulatedModel>("Kestan");
        const int lower = value(low).toInt();
        const int higher = value(high).toInt();
        QVERIFY(lower < higher);
        const QString refusal = m_model->refusalOf(low, higher);
        QVERIFY2(refusal.startsWith(QStringLiteral("%1: %2 is not below %3, which is %2")
                                        .arg(low)
                                        .arg(higher)
                                        .arg(high)),
                 qPrintable(refusal));
        QCOMPARE(value(low).toInt(), lower);
        QVERIFY(!m_model->refusalOf(high, lower).isEmpty());
        QCOMPARE(value(high).toInt(), higher);
        QCOMPARE(m_model->refusalOf(low, higher - 1), QString());
        QCOMPARE(m_model->refusalOf(low, lower), QString());
        // Both at once, past each other.
        const QString master = simulator::Configuration::masterCollection();
        m_model->configuration.setValues(master, {{low, higher + 1}, {high, higher + 2}});
        QCOMPARE(value(low).toInt(), higher + 1);
        QVERIFY_EXCEPTION_THROWN(
            m_model->configuration.setValues(master, {{low, higher}, {high, lower}}),
            simulator::Refusal);
        QCOMPARE(value(high).toInt(), higher + 2);
    }

    void listsBelongToSettings_data() { modelRows(); }

    void listsBelongToSettings()
    {
        startModel();
        const auto &parameters = m_model->profile.parameters();
        QStringList unused = m_model->profile.rows().keys();
        for (const Parameter &parameter : parameters)
            unused.removeAll(parameter.row);
        for (const char *derived : {"Model", "Papers", "DemoFiles", "Manuals"})
            unused.removeAll(derived);
        const bool hasTractor =
            m_model->profile.answers().value("getFeedType") == int(lcm::FeedType::Tractor);
        const QString standby = hasTractor ? "PfStandbyPosFF" : "PfStandbyPos";
        QCOMPARE(parameters.value("StandbyPosition").row, standby);
        unused.removeAll(hasTractor ? "PfStandbyPos" : "PfStandbyPosFF");
        // The service has no setting for these.
        QCOMPARE(unused, QStringList({"DhcpStatic", "Ignore", "NewVolume", "ReverseTime1",
                                      "ReverseTime2", "Undefined", "Wifi"}));
        QCOMPARE(parameters.value("EmbosserAvailable").row, QStringLiteral("Available"));
        for (const QString &name : parameters.keys()) {
            if (name.startsWith("AlignAdjustment"))
                QCOMPARE(parameters.value(name).row, QStringLiteral("FineTuneAlign"));
        }
    }

    void noTypedTextIsInARefusal_data() { modelRows(); }

    void noTypedTextIsInARefusal()
    {
        startModel();
        const QString typed = QString(300, QLatin1Char('#'));
        int refused = 0;
        for (const QString &name : m_model->profile.parameters().keys()) {
            const QString message = m_model->refusalOf(name, typed);
            QVERIFY2(!message.contains('#'), qPrintable(message));
            QVERIFY2(message.isEmpty() || message.startsWith(name + ": "), qPrintable(message));
            refused += !message.isEmpty();
        }
        QVERIFY(refused > 100);
    }

private:
    static void modelRows()
    {
        QTest::addColumn<int>("unused");
        for (const QString &model : simulator::Profile::builtInModels())
            QTest::newRow(qPrintable(model)) << 0;
    }

    void startModel()
    {
        m_model = std::make_unique<SimulatedModel>(QString::fromLatin1(QTest::currentDataTag()));
    }

    QVariant value(const QString &name) const { return m_model->configuration.value(name); }

    void set(const QString &name, const QVariant &value)
    {
        QCOMPARE(m_model->refusalOf(name, value), QString());
    }

    int query(const QString &method, const QString &name) const
    {
        const QVariantList arguments{name};
        return simulator::parameterQueries(m_model->configuration)
            .value(method)(simulator::Call(*m_model->interface.method(method), arguments))
            .toInt();
    }

    QStringList keysOf(const QString &setting) const
    {
        QStringList keys;
        const auto &profile = m_model->profile;
        for (const Choice &choice : profile.rows().value(profile.parameters().value(setting).row))
            keys += choice.key;
        return keys;
    }

    double lineDistance() const
    {
        const QVariantList arguments{0.0, 0, 0.0, 0.0, QString(), QString(), QString(), QString()};
        const QString method = QStringLiteral("getLineToLine");
        return simulator::geometryQueries(m_model->configuration)
            .value(method)(simulator::Call(*m_model->interface.method(method), arguments))
            .toDouble();
    }

    void expectFit(const QString &title) const
    {
        const double tolerance = 1e-6;
        const double cell =
            m_model->profile.cells().value(value("BrailleCellSize").toString()).cellToCell;
        const double width = value("PrintWidth").toDouble();
        const double length = value("PrintLength").toDouble();
        const int characters = value("CharactersPerLine").toInt();
        const int lines = value("LinePerPage").toInt();
        QVERIFY2(width < value("PaperWidth").toDouble(), qPrintable(title));
        QVERIFY2(length < value("PaperLength").toDouble(), qPrintable(title));
        QVERIFY2(characters * cell <= width + tolerance, qPrintable(title));
        QVERIFY2((characters + 1) * cell > width - tolerance, qPrintable(title));
        QVERIFY2(lines * lineDistance() <= length + tolerance, qPrintable(title));
        QVERIFY2((lines + 1) * lineDistance() > length - tolerance, qPrintable(title));
        QCOMPARE(value("TotalCharPerLine").toInt(), characters);
        QCOMPARE(value("TotalLinePerPage").toInt(), lines);
    }

    std::unique_ptr<SimulatedModel> m_model;
};

QTEST_GUILESS_MAIN(TestConsistency)
#include "tst_consistency.moc"
