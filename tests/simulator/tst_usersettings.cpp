// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

class TestUserSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_simulator.start({QStringLiteral("--usb"), m_directory->path()});
    }

    void whatIsSavedIsLoadedAgain()
    {
        const QString other = QStringLiteral("other");
        QCOMPARE(command("loadUserSettings"), QVariant(false)); // none are saved
        set("setSsid", {QStringLiteral("mine"), m_master});
        set("setTabSize", {7});
        set("setSsid", {QStringLiteral("theirs"), other});
        QCOMPARE(command("saveUserSettings"), QVariant(true));
        set("setSsid", {QStringLiteral("changed"), m_master});
        set("setTabSize", {3});
        set("setDateFormat", {QStringLiteral("dd.MM.yyyy"), m_master, false});
        QCOMPARE(command("removeCatalogsCollection", {other}), QVariant(true));
        // Not the user's: it stays.
        set("setSerialNo", {QStringLiteral("new"), m_master, false});
        set("setOddLowPulseTime", {555, m_master, false});

        QCOMPARE(command("loadUserSettings"), QVariant(true));
        QCOMPARE(command("getSsid", {m_master}), QVariant("mine"));
        QCOMPARE(command("getTabSize"), QVariant(7));
        QCOMPARE(command("getDateFormat", {m_master}), QVariant("yyyy-MM-dd"));
        QCOMPARE(command("getSsid", {other}), QVariant("theirs"));
        QCOMPARE(command("getSerialNo", {m_master}), QVariant("new"));
        QCOMPARE(command("getOddLowPulseTime", {m_master}), QVariant(555));
    }

    void aFlagSavesTheOneSetting()
    {
        set("setSpeechSpeed", {5, m_master, true});
        set("setLetterFont", {5, m_master, false});
        QCOMPARE(command("loadUserSettings"), QVariant(true));
        QCOMPARE(command("getSpeechSpeed", {m_master}), QVariant(5));
        QCOMPARE(command("getLetterFont", {m_master}), QVariant(0));
    }

    void aFlagDoesNotSaveWhatIsNotTheUsers()
    {
        set("setOddLowPulseTime", {555, m_master, true});
        QCOMPARE(command("loadUserSettings"), QVariant(false));
    }

    void whatIsOnTheMediumIsLoadedAgain()
    {
        set("setSsid", {QStringLiteral("mine"), m_master});
        set("setUseAdjustableLinespacing", {true, m_master, false});
        set("setPaperWidth", {123.5, m_master});
        QCOMPARE(command("saveUserSettingsUSB"), QVariant(true));
        m_simulator.start({QStringLiteral("--usb"), m_directory->path()});
        QCOMPARE(command("getSsid", {m_master}), QVariant(QString()));
        QCOMPARE(command("loadUserSettingsUSB"), QVariant(true));
        QCOMPARE(command("getSsid", {m_master}), QVariant("mine"));
        QCOMPARE(command("getUseAdjustableLinespacing", {m_master}), QVariant(true));
        QCOMPARE(command("getPaperWidth", {m_master}), QVariant(123.5));
    }

    void aSecretStaysInTheDevice()
    {
        set("setPassphrase", {QStringLiteral("open sesame"), m_master});
        QCOMPARE(command("saveUserSettingsUSB"), QVariant(true));
        QVERIFY(!medium().contains("open sesame"));
        QVERIFY(!medium().contains("Passphrase"));
        set("setPassphrase", {QStringLiteral("new sesame"), m_master});
        QCOMPARE(command("loadUserSettingsUSB"), QVariant(true));
        QCOMPARE(command("getPassphrase", {m_master}), QVariant("new sesame"));
    }

    void withoutAMediumTheCommandsAnswerFalse()
    {
        QCOMPARE(command("loadUserSettingsUSB"), QVariant(false)); // nothing on it
        QVERIFY(m_directory->remove());
        QCOMPARE(command("saveUserSettingsUSB"), QVariant(false));
        QCOMPARE(command("loadUserSettingsUSB"), QVariant(false));
        m_simulator.start();
        QCOMPARE(command("saveUserSettingsUSB"), QVariant(false));
        QCOMPARE(command("loadUserSettingsUSB"), QVariant(false));
    }

    void whatCannotBeUsedOnTheMediumChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("said");
        QTest::newRow("no JSON") << QByteArray("{") << "embosser-settings.json: ";
        QTest::newRow("no settings") << QByteArray("{}") << "holds no settings";
        QTest::newRow("unknown setting")
            << QByteArray(R"({"collections": {"masterCollectionKey": {"Sisd": "x"}}})")
            << "there is no user setting \"Sisd\"";
        QTest::newRow("not the user's")
            << QByteArray(R"({"collections": {"masterCollectionKey": {"SerialNo": "x"}}})")
            << "there is no user setting \"SerialNo\"";
        QTest::newRow("out of bounds")
            << QByteArray(
                   R"({"collections": {"masterCollectionKey": {"LetterFont": 1, "TabSize": 99}}})")
            << "TabSize: 99 is none of";
    }

    void whatCannotBeUsedOnTheMediumChangesNothing()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, said);
        set("setSsid", {QStringLiteral("mine"), m_master});
        QFile file(mediumFile());
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(content);
        file.close();
        const QString error = m_simulator.error(QStringLiteral("loadUserSettingsUSB"));
        QVERIFY2(error.contains(said), qPrintable(error));
        QCOMPARE(command("getSsid", {m_master}), QVariant("mine"));
        QCOMPARE(command("getLetterFont", {m_master}), QVariant(0));
    }

    void aLayoutIsTakenFromAFile()
    {
        const QString path = m_directory->filePath(QStringLiteral("Letters.json"));
        QFile file(path);
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(R"({"PaperSize": "A4", "TabSize": 2})");
        file.close();
        set("setLayoutFromPath", {path});
        QCOMPARE(command("getLayoutName", {m_master}), QVariant("Letters"));
        QCOMPARE(command("getPaperSize", {m_master}), QVariant("A4"));
        QCOMPARE(command("getTabSize"), QVariant(2));
        const QVariantMap layout = command("getLayoutParameters", {m_master}).toMap();
        QCOMPARE(layout.value(QStringLiteral("PaperSize")), QVariant("A4"));
        QVERIFY(!m_simulator
                     .error(QStringLiteral("setLayoutFromPath"), {QStringLiteral("/nonexistent")})
                     .isEmpty());
    }

    void theLegacyJsonStandsBesideTheState()
    {
        const QString state = m_directory->filePath(QStringLiteral("state"));
        m_simulator.start({QStringLiteral("--state"), state});
        set("setPassphrase", {QStringLiteral("open sesame"), m_master});
        set("setSsid", {QStringLiteral("mine"), m_master});
        set("generateLegacyJson");
        QFile file(state + QStringLiteral(".json"));
        QVERIFY(file.open(QFile::ReadOnly));
        const QByteArray content = file.readAll();
        QCOMPARE(QJsonDocument::fromJson(content)
                     .object()
                     .value(QStringLiteral("Communication and network"))
                     .toObject()
                     .value(QStringLiteral("Ssid"))
                     .toString(),
                 QStringLiteral("mine"));
        QVERIFY(!content.contains("open sesame"));
    }

private:
    QVariant command(const char *method, const QVariantList &arguments = {}) const
    {
        return m_simulator.value(QString::fromLatin1(method), arguments);
    }

    void set(const char *method, const QVariantList &arguments = {}) const
    {
        QCOMPARE(m_simulator.error(QString::fromLatin1(method), arguments), QString());
    }

    QString mediumFile() const
    {
        return m_directory->filePath(QStringLiteral("embosser-settings.json"));
    }

    QByteArray medium() const
    {
        QFile file(mediumFile());
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QString m_master = Simulator::masterCollection();
    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(TestUserSettings)
#include "tst_usersettings.moc"
