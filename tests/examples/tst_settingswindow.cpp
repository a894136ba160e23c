// SPDX-License-Identifier: MIT

#include "EventLoopWatch.h"
#include "SettingsWindow.h"
#include "Simulator.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLayout>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

#include <algorithm>
#include <memory>

namespace {

const QString pulseTime = QStringLiteral("Pulse time, odd, low");
const QString parity = QStringLiteral("Parity");
const QString model = QStringLiteral("Model");

} // namespace

/// The window is driven as by a user, and the service looked at from beside it.
class TestSettingsWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_window.reset();
        m_simulator.process().killAndWait();
    }

    void itShowsWhatTheServiceHas()
    {
        m_simulator.start();
        open();
        QTRY_VERIFY(areAllEnabled());
        for (const SettingField *field : m_window->findChildren<SettingField *>())
            QVERIFY2(field->problem().isEmpty(), qPrintable(field->objectName()));

        auto *number = editor<QSpinBox>(pulseTime);
        QCOMPARE(number->value(), m_simulator.value("getOddLowPulseTime", {masterId()}).toInt());
        const QString name = QStringLiteral("OddLowPulseTime");
        QCOMPARE(number->minimum(), m_simulator.value("getMinValue", {name}).toInt());
        QCOMPARE(number->maximum(), m_simulator.value("getMaxValue", {name}).toInt());

        auto *choice = editor<QComboBox>(parity);
        QCOMPARE(choice->currentText(), m_simulator.value("getParity", {masterId()}).toString());
        QStringList offered;
        for (int i = 0; i < choice->count(); ++i)
            offered << choice->itemText(i);
        QStringList allowed;
        const QVariant row = int(lcm::RowValueList::Parity);
        for (const QVariant &map : m_simulator.value("getValueList", {row}).toList())
            allowed << map.toMap().value(QStringLiteral("key")).toString();
        QCOMPARE(offered, allowed);
        QVERIFY(offered.size() > 1);
        for (const QComboBox *box : m_window->findChildren<QComboBox *>())
            QVERIFY2(box->currentIndex() >= 0, qPrintable(box->parent()->objectName()));

        QCOMPARE(editor<QLabel>(model)->text(),
                 m_simulator.value("getModel", {masterId()}).toString());

        // The picture in the README is made so.
        showPageOf(pulseTime);
        const QString picture = qEnvironmentVariable("SCREENSHOT");
        if (!picture.isEmpty())
            QVERIFY(m_window->grab().save(picture));
    }

    void whatIsEnteredIsStored()
    {
        m_simulator.start();
        open();
        QTRY_VERIFY(areAllEnabled());
        enterPulseTime(QStringLiteral("700"));
        QTRY_COMPARE(m_simulator.value("getOddLowPulseTime", {masterId()}).toInt(), 700);

        showPageOf(parity);
        auto *choice = editor<QComboBox>(parity);
        const QString before = choice->currentText();
        QTest::keyClick(choice, choice->currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Up);
        QVERIFY(choice->currentText() != before);
        QTRY_COMPARE(m_simulator.value("getParity", {masterId()}).toString(),
                     choice->currentText());
    }

    void aRefusalStandsBesideItsField()
    {
        m_simulator.start(
            {QStringLiteral("--fault"),
             QStringLiteral("refuse:setOddLowPulseTime:1:tests.Error:Not while it prints")});
        open();
        QTRY_VERIFY(areAllEnabled());
        const int kept = editor<QSpinBox>(pulseTime)->value();
        enterPulseTime(QStringLiteral("700"));
        QTRY_COMPARE(field(pulseTime)->problem(), QStringLiteral("Not while it prints"));
        QTRY_COMPARE(editor<QSpinBox>(pulseTime)->value(), kept);
        for (const SettingField *other : m_window->findChildren<SettingField *>()) {
            if (other != field(pulseTime))
                QVERIFY2(other->problem().isEmpty(), qPrintable(other->objectName()));
        }

        enterPulseTime(QStringLiteral("701"));
        QTRY_COMPARE(m_simulator.value("getOddLowPulseTime", {masterId()}).toInt(), 701);
        QTRY_COMPARE(field(pulseTime)->problem(), QString());
    }

    void itIsGreyWithoutTheService()
    {
        open();
        // The bus may not have noticed yet that the last service has gone.
        QTRY_VERIFY(!pages()->isEnabled());
        m_simulator.start();
        QTRY_VERIFY(pages()->isEnabled() && areAllEnabled());
        m_simulator.process().killAndWait();
        QTRY_VERIFY(!pages()->isEnabled());
        QVERIFY(!editor<QSpinBox>(pulseTime)->isEnabled());
        m_simulator.start();
        QTRY_VERIFY(pages()->isEnabled() && areAllEnabled());
        for (const SettingField *field : m_window->findChildren<SettingField *>())
            QVERIFY2(field->problem().isEmpty(), qPrintable(field->objectName()));
    }

    void itStaysAliveWhileEveryAnswerIsLate()
    {
        m_simulator.start({QStringLiteral("--fault"), QStringLiteral("delay:*:10000:5000")});
        EventLoopWatch watch;
        open();
        // It is there before any answer can be.
        QVERIFY(m_window->isVisible());
        QVERIFY(!isAnyEnabled());
        // Its pages can be looked at meanwhile.
        for (int page = pages()->count() - 1; page >= 0; --page) {
            QTest::mouseClick(pages()->tabBar(), Qt::LeftButton, {},
                              pages()->tabBar()->tabRect(page).center());
            QCOMPARE(pages()->currentIndex(), page);
        }
        QVERIFY(!isAnyEnabled());
        QEventLoop loop;
        QTimer heartbeat;
        int beats = 0;
        connect(&heartbeat, &QTimer::timeout, &loop, [&] {
            ++beats;
            if (areAllEnabled())
                loop.exit(1);
        });
        heartbeat.start(10);
        QTimer::singleShot(60000, &loop, &QEventLoop::quit);
        QCOMPARE(loop.exec(), 1);
        QVERIFY(beats > 100);
        // One answer that is waited for would take five times as long.
        QVERIFY2(watch.longest() < std::chrono::milliseconds(1000),
                 qPrintable(QString::number(watch.longest().count())));
    }

private:
    void open()
    {
        m_window = std::make_unique<SettingsWindow>();
        m_window->show();
    }

    static QString masterId() { return Simulator::masterCollection(); }

    QTabWidget *pages() const { return m_window->findChild<QTabWidget *>(); }
    SettingField *field(const QString &label) const
    {
        return m_window->findChild<SettingField *>(label);
    }

    template<typename Editor>
    Editor *editor(const QString &label) const
    {
        return editorOf<Editor>(field(label));
    }

    /// Beside it stands what the service says against the value.
    template<typename Editor = QWidget>
    static Editor *editorOf(const SettingField *field)
    {
        return qobject_cast<Editor *>(field->layout()->itemAt(0)->widget());
    }

    bool areAllEnabled() const
    {
        const auto fields = m_window->findChildren<SettingField *>();
        return std::all_of(fields.begin(), fields.end(),
                           [](const SettingField *field) { return editorOf(field)->isEnabled(); });
    }

    bool isAnyEnabled() const
    {
        const auto fields = m_window->findChildren<SettingField *>();
        return std::any_of(fields.begin(), fields.end(),
                           [](const SettingField *field) { return editorOf(field)->isEnabled(); });
    }

    void showPageOf(const QString &label)
    {
        pages()->setCurrentWidget(field(label)->parentWidget());
    }

    void enterPulseTime(const QString &text)
    {
        showPageOf(pulseTime);
        auto *number = editor<QSpinBox>(pulseTime);
        number->selectAll();
        QTest::keyClicks(number, text);
        QTest::keyClick(number, Qt::Key_Return);
    }

    const PrivateBus m_bus;
    Simulator m_simulator{m_bus};
    std::unique_ptr<SettingsWindow> m_window;
};

QTEST_MAIN(TestSettingsWindow)
#include "tst_settingswindow.moc"
