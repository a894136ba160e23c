// SPDX-License-Identifier: MIT

#include <libconfigurationmanager-testing/SimulatedEmbosser.h>
#include <libconfigurationmanager/ConfigurationManager.h>
#include <libconfigurationmanager/QmlTypes.h>

#include <QtCore/QProcess>
#include <QtQml/QQmlApplicationEngine>

#include <QtTest/QTest>

#include <memory>

using libconfigurationmanager::SimulatedEmbosser;
using libconfigurationmanager::detail::ConfigurationManager;

/// The example's window in QML is used as by a user; that its program starts is seen by the calls.
class TestQmlPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_embosser.start(QStringLiteral("Dovrik"));
        libconfigurationmanager::registerQmlTypes();
    }

    void init()
    {
        if (!m_embosser.isRunning())
            m_embosser.start(QStringLiteral("Dovrik"));
        m_embosser.reset();
        m_manager = std::make_unique<ConfigurationManager>();
        m_engine = std::make_unique<QQmlApplicationEngine>();
        m_engine->setInitialProperties(
            {{QStringLiteral("embosser"), QVariant::fromValue<QObject *>(m_manager.get())},
             {QStringLiteral("isPresent"), m_manager->isConnected()}});
        m_engine->load(QUrl(QStringLiteral("qrc:/Panel.qml")));
        QCOMPARE(m_engine->rootObjects().size(), 1);
    }

    void cleanup()
    {
        m_engine.reset();
        m_manager.reset();
    }

    void showsWhatTheServiceHas()
    {
        QCOMPARE(item("model")->property("text").toString(), QStringLiteral("Dovrik"));
        QCOMPARE(item("speed")->property("currentText").toString(), QStringLiteral("Medium"));
        QCOMPARE(item("speed")->property("count").toInt(), 4);
        QVERIFY(item("lineSpacing")->property("currentIndex").toInt() >= 0);
        QCOMPARE(item("copies")->property("value").toInt(), m_manager->getNumberOfCopies());
    }

    void storesWhatIsChosen()
    {
        QObject *speed = item("speed");
        speed->setProperty("currentIndex", 3);
        QVERIFY(QMetaObject::invokeMethod(speed, "activated", Q_ARG(int, 3)));
        QCOMPARE(m_manager->getPrintSpeed(), QStringLiteral("Draft"));
        QCOMPARE(speed->property("currentText").toString(), QStringLiteral("Draft"));
    }

    void showsWhatStaysAfterARefusal()
    {
        m_embosser.refuse(QStringLiteral("setPrintSpeed"), QStringLiteral("org.example.Busy"),
                          QStringLiteral("not now"));
        QObject *speed = item("speed");
        speed->setProperty("currentIndex", 3);
        QVERIFY(QMetaObject::invokeMethod(speed, "activated", Q_ARG(int, 3)));
        QCOMPARE(speed->property("currentText").toString(), QStringLiteral("Medium"));
    }

    void followsTheService()
    {
        QObject *panel = m_engine->rootObjects().constFirst();
        m_embosser.stop();
        QTRY_COMPARE(panel->property("title").toString(), QStringLiteral("No embosser"));
        m_embosser.start(QStringLiteral("Halvik"));
        QTRY_COMPARE(panel->property("title").toString(), QStringLiteral("Embosser"));
        QCOMPARE(item("model")->property("text").toString(), QStringLiteral("Halvik"));
        m_embosser.stop();
    }

    void isAProgram()
    {
        m_embosser.clearCalls();
        QProcess program;
        program.start(QStringLiteral(QML_PANEL), QStringList());
        QTRY_VERIFY_WITH_TIMEOUT(!m_embosser.calls(QStringLiteral("getNumberOfCopies")).isEmpty(),
                                 30000);
        program.kill();
        QVERIFY(program.waitForFinished());
    }

private:
    QObject *item(const char *name) const
    {
        return m_engine->rootObjects().constFirst()->findChild<QObject *>(
            QString::fromLatin1(name));
    }

    SimulatedEmbosser m_embosser;
    std::unique_ptr<ConfigurationManager> m_manager;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
};

QTEST_MAIN(TestQmlPanel)
#include "tst_qmlpanel.moc"
