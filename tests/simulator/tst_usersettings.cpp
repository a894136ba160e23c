// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtTest/QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

class TestUserSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // The simulator inherits it: a file that cannot grow is an error, not the end.
        std::signal(SIGXFSZ, SIG_IGN);
        // So that nobody else keeps others from reading what the simulator writes.
        ::umask(0);
    }

    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_simulator.start({QStringLiteral("--usb"), m_directory->path()});
    }

    void whatIsSavedIsLoadedAgain()
    {
        const QString other = QStringLiteral("other");
        QCOMPARE(m_simulator.value("loadUserSettings"), QVariant(false)); // none are saved
        set("setSsid", {QStringLiteral("mine"), m_master});
        set("setTabSize", {7});
        set("setSsid", {QStringLiteral("theirs"), other});
        QCOMPARE(m_simulator.value("saveUserSettings"), QVariant(true));
        set("setSsid", {QStringLiteral("changed"), m_master});
        set("setTabSize", {3});
        set("setDateFormat", {QStringLiteral("dd.MM.yyyy"), m_master, false});
        QCOMPARE(m_simulator.value("removeCatalogsCollection", {other}), QVariant(true));
        // Not the user's: it stays.
        set("setSerialNo", {QStringLiteral("new"), m_master, false});
        set("setOddLowPulseTime", {555, m_master, false});

        QCOMPARE(m_simulator.value("loadUserSettings"), QVariant(true));
        QCOMPARE(m_simulator.value("getSsid", {m_master}), QVariant("mine"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(7));
        QCOMPARE(m_simulator.value("getDateFormat", {m_master}), QVariant("yyyy-MM-dd"));
        QCOMPARE(m_simulator.value("getSsid", {other}), QVariant("theirs"));
        QCOMPARE(m_simulator.value("getSerialNo", {m_master}), QVariant("new"));
        QCOMPARE(m_simulator.value("getOddLowPulseTime", {m_master}), QVariant(555));
    }

    void aFlagSavesTheOneSetting()
    {
        set("setSpeechSpeed", {5, m_master, true});
        set("setSpeechSpeed", {1, m_master, false});
        set("setLetterFont", {5, m_master, false});
        set("setPassphrase", {QStringLiteral("open sesame"), m_master});
        QCOMPARE(m_simulator.value("loadUserSettings"), QVariant(true));
        QCOMPARE(m_simulator.value("getSpeechSpeed", {m_master}), QVariant(5));
        // What has not been saved stays as it is.
        QCOMPARE(m_simulator.value("getLetterFont", {m_master}), QVariant(5));
        QCOMPARE(m_simulator.value("getPassphrase", {m_master}), QVariant("open sesame"));
    }

    void aFlagChangesOneOfTheSavedSettings()
    {
        set("setLetterFont", {3, m_master, false});
        QCOMPARE(m_simulator.value("saveUserSettings"), QVariant(true));
        set("setSpeechSpeed", {5, m_master, true});
        set("setLetterFont", {5, m_master, false});
        set("setSpeechSpeed", {1, m_master, false});
        QCOMPARE(m_simulator.value("loadUserSettings"), QVariant(true));
        QCOMPARE(m_simulator.value("getSpeechSpeed", {m_master}), QVariant(5));
        QCOMPARE(m_simulator.value("getLetterFont", {m_master}), QVariant(3));
    }

    void whatFollowsThePaperFollowsItAgain()
    {
        QCOMPARE(m_simulator.value("saveUserSettings"), QVariant(true));
        const QVariant width = m_simulator.value("getPaperWidth", {m_master});
        set("setPaperSize", {QStringLiteral("A4"), m_master});
        set("setPaperWidth", {123.5, m_master});
        QCOMPARE(m_simulator.value("loadUserSettings"), QVariant(true));
        QCOMPARE(m_simulator.value("getPaperWidth", {m_master}), width);
        set("setPaperSize", {QStringLiteral("A4"), m_master});
        QCOMPARE(m_simulator.value("getPaperWidth", {m_master}), QVariant(210.0));
    }

    void aFlagDoesNotSaveWhatIsNotTheUsers()
    {
        set("setOddLowPulseTime", {555, m_master, true});
        QCOMPARE(m_simulator.value("loadUserSettings"), QVariant(false));
    }

    void whatIsOnTheMediumIsLoadedAgain()
    {
        set("setSsid", {QStringLiteral("mine"), m_master});
        set("setUseAdjustableLinespacing", {true, m_master, false});
        set("setPaperWidth", {123.5, m_master});
        QCOMPARE(m_simulator.value("saveUserSettingsUSB"), QVariant(true));
        m_simulator.start({QStringLiteral("--usb"), m_directory->path()});
        QCOMPARE(m_simulator.value("getSsid", {m_master}), QVariant(QString()));
        QCOMPARE(m_simulator.value("loadUserSettingsUSB"), QVariant(true));
        QCOMPARE(m_simulator.value("getSsid", {m_master}), QVariant("mine"));
        QCOMPARE(m_simulator.value("getUseAdjustableLinespacing", {m_master}), QVariant(true));
        QCOMPARE(m_simulator.value("getPaperWidth", {m_master}), QVariant(123.5));
    }

    void aSecretStaysInTheDevice()
    {
        for (const QString &collection : {m_master, QStringLiteral("other")})
            set("setPassphrase", {QStringLiteral("open sesame"), collection});
        QCOMPARE(m_simulator.value("saveUserSettingsUSB"), QVariant(true));
        QVERIFY(medium().contains("other"));
        QVERIFY(!medium().contains("open sesame"));
        QVERIFY(!medium().contains("Passphrase"));
        expectOwnersAlone(mediumFile());
        set("setPassphrase", {QStringLiteral("new sesame"), m_master});
        QCOMPARE(m_simulator.value("loadUserSettingsUSB"), QVariant(true));
        QCOMPARE(m_simulator.value("getPassphrase", {m_master}), QVariant("new sesame"));
    }

    void whatIsOnAFullMediumStays()
    {
        set("setSsid", {QStringLiteral("mine"), m_master});
        QCOMPARE(m_simulator.value("saveUserSettingsUSB"), QVariant(true));
        const QByteArray saved = medium();
        set("setSsid", {QStringLiteral("changed"), m_master});
        letNoFileGrow();
        QCOMPARE(m_simulator.error("saveUserSettingsUSB"),
                 mediumFile() + QStringLiteral(": File too large"));
        QCOMPARE(medium(), saved);
        // Nor is there a part of the new one.
        QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files).size(), 1);
    }

    void aMediumThatCannotBeWrittenIsAnError()
    {
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("embosser-settings.json")));
        const QString error = m_simulator.error("saveUserSettingsUSB");
        QVERIFY2(error.startsWith(mediumFile() + QStringLiteral(": ")), qPrintable(error));
    }

    void withoutAMediumTheCommandsAnswerFalse()
    {
        QCOMPARE(m_simulator.value("loadUserSettingsUSB"), QVariant(false)); // nothing on it
        QVERIFY(m_directory->remove());
        QCOMPARE(m_simulator.value("saveUserSettingsUSB"), QVariant(false));
        QCOMPARE(m_simulator.value("loadUserSettingsUSB"), QVariant(false));
        m_simulator.start();
        QCOMPARE(m_simulator.value("saveUserSettingsUSB"), QVariant(false));
        QCOMPARE(m_simulator.value("loadUserSettingsUSB"), QVariant(false));
    }

    void whatCannotBeUsedOnTheMediumChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("said");
        const auto row = [](const char *name, const char *content, const char *said) {
            QTest::newRow(name) << QByteArray(content) << QString::fromLatin1(said);
        };
        row("no JSON", "{", "unterminated object");
        row("no object", "[]", "names no model");
        row("no settings file", R"({"collections": {}})", "names no model");
        row("another model",
            R"({"model": "Arvo", "collections": {"masterCollectionKey": {"LetterFont": 1}}})",
            "holds settings of the model Arvo, not Kestan");
        row("no settings", R"({"model": "Kestan"})", "holds no settings");
        row("no collections", R"({"model": "Kestan", "collections": {}})", "holds no settings");
        row("collections that are none", R"({"model": "Kestan", "collections": []})",
            "holds no settings");
        row("collection that is none",
            R"({"model": "Kestan", "collections": {"masterCollectionKey": 5}})",
            "the collection \"masterCollectionKey\" is not an object");
        row("one collection that is none",
            R"({"model": "Kestan", "collections": {"masterCollectionKey": {"LetterFont": 1},
                                                   "other": "x"}})",
            "the collection \"other\" is not an object");
        row("unknown setting",
            R"({"model": "Kestan", "collections": {"masterCollectionKey": {"Sisd": "x"}}})",
            "there is no user setting \"Sisd\"");
        row("not the user's",
            R"({"model": "Kestan", "collections": {"masterCollectionKey": {"SerialNo": "x"}}})",
            "there is no user setting \"SerialNo\"");
        row("out of bounds",
            R"({"model": "Kestan",
                "collections": {"masterCollectionKey": {"LetterFont": 1, "TabSize": 99}}})",
            "TabSize: 99 is none of");
    }

    void whatCannotBeUsedOnTheMediumChangesNothing()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, said);
        set("setSsid", {QStringLiteral("mine"), m_master});
        writeMedium(content);
        const QString error = m_simulator.error("loadUserSettingsUSB");
        QVERIFY2(error.startsWith(mediumFile() + ": " + said), qPrintable(error));
        QCOMPARE(m_simulator.value("getSsid", {m_master}), QVariant("mine"));
        QCOMPARE(m_simulator.value("getLetterFont", {m_master}), QVariant(0));
    }

    void aSecretOnTheMediumIsNotTaken()
    {
        set("setPassphrase", {QStringLiteral("open sesame"), m_master});
        writeMedium(R"({"model": "Kestan", "collections": {"masterCollectionKey":
                        {"Passphrase": "theirs", "LetterFont": 1}}})");
        QCOMPARE(m_simulator.value("loadUserSettingsUSB"), QVariant(true));
        QCOMPARE(m_simulator.value("getPassphrase", {m_master}), QVariant("open sesame"));
        QCOMPARE(m_simulator.value("getLetterFont", {m_master}), QVariant(1));
    }

    void aLayoutIsTakenFromAFile()
    {
        const QString path = m_directory->filePath(QStringLiteral("Letters.json"));
        QFile file(path);
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(R"({"PaperSize": "A4", "TabSize": 2})");
        file.close();
        set("setLayoutFromPath", {path});
        QCOMPARE(m_simulator.value("getLayoutName", {m_master}), QVariant("Letters"));
        QCOMPARE(m_simulator.value("getPaperSize", {m_master}), QVariant("A4"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(2));
        const QVariantMap layout = m_simulator.value("getLayoutParameters", {m_master}).toMap();
        QCOMPARE(layout.value(QStringLiteral("PaperSize")), QVariant("A4"));
        QCOMPARE(m_simulator.error("setLayoutFromPath", {QStringLiteral("/nonexistent")}),
                 QStringLiteral("/nonexistent: No such file or directory"));
        writeMedium("[]");
        QCOMPARE(m_simulator.error("setLayoutFromPath", {mediumFile()}),
                 mediumFile() + QStringLiteral(": is not a layout: not a JSON object"));
    }

    void whatIsNoFileIsNotRead()
    {
        // Whoever opened these would wait for somebody who writes.
        const QString layout = m_directory->filePath(QStringLiteral("layout"));
        for (const QString &path : {layout, mediumFile()})
            QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
        const QString reason = QStringLiteral(": is not a regular file");
        QCOMPARE(m_simulator.error("setLayoutFromPath", {layout}), layout + reason);
        QCOMPARE(m_simulator.error("loadUserSettingsUSB"), mediumFile() + reason);
        QCOMPARE(m_simulator.error("setLayoutFromPath", {m_directory->path()}),
                 m_directory->path() + reason);
    }

    void theLegacyJsonStandsBesideTheState()
    {
        const QString state = m_directory->filePath(QStringLiteral("state"));
        m_simulator.start({QStringLiteral("--state"), state});
        const QString other = QStringLiteral("other");
        for (const QString &collection : {m_master, other})
            set("setPassphrase", {QStringLiteral("open sesame"), collection});
        set("setSsid", {QStringLiteral("mine"), m_master});
        set("setSsid", {QStringLiteral("theirs"), other});
        set("generateLegacyJson");
        const QString path = state + QStringLiteral(".json");
        const QByteArray content = read(path);
        QCOMPARE(QJsonDocument::fromJson(content)
                     .object()
                     .value(QStringLiteral("Communication and network"))
                     .toObject()
                     .value(QStringLiteral("Ssid"))
                     .toString(),
                 QStringLiteral("mine"));
        QVERIFY(content.contains("theirs"));
        QVERIFY(!content.contains("open sesame"));
        QVERIFY(!content.contains("Passphrase"));
        expectOwnersAlone(path);
    }

    void theLegacyJsonStaysWhenThereIsNoRoomForAnother()
    {
        const QString state = m_directory->filePath(QStringLiteral("state"));
        m_simulator.start({QStringLiteral("--state"), state});
        set("generateLegacyJson");
        const QString path = state + QStringLiteral(".json");
        const QByteArray written = read(path);
        letNoFileGrow();
        QCOMPARE(m_simulator.error("generateLegacyJson"),
                 path + QStringLiteral(": File too large"));
        QCOMPARE(read(path), written);
        QVERIFY(!written.isEmpty());
    }

private:
    /// The simulator cannot write to a file any more, as when the disk is full.
    void letNoFileGrow()
    {
        const rlimit none{0, RLIM_INFINITY};
        QCOMPARE(::prlimit(pid_t(m_simulator.process().processId()), RLIMIT_FSIZE, &none, nullptr),
                 0);
    }

    static void expectOwnersAlone(const QString &path)
    {
        struct stat status;
        QCOMPARE(::stat(qPrintable(path), &status), 0);
        QCOMPARE(int(status.st_mode & (S_IRWXG | S_IRWXO)), 0);
    }

    void set(const char *method, const QVariantList &arguments = {}) const
    {
        QCOMPARE(m_simulator.error(method, arguments), QString());
    }

    QString mediumFile() const
    {
        return m_directory->filePath(QStringLiteral("embosser-settings.json"));
    }

    void writeMedium(const QByteArray &content) const
    {
        QFile file(mediumFile());
        QVERIFY(file.open(QFile::WriteOnly));
        file.write(content);
    }

    QByteArray medium() const { return read(mediumFile()); }

    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QString m_master = Simulator::masterCollection();
    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
    std::unique_ptr<QTemporaryDir> m_directory;
};

QTEST_GUILESS_MAIN(TestUserSettings)
#include "tst_usersettings.moc"
