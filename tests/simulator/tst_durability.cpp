// SPDX-License-Identifier: MIT

#include "Simulator.h"

#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtTest/QTest>

#include <sys/stat.h>
#include <unistd.h>

class TestDurability : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_state = m_directory->filePath(QStringLiteral("state"));
    }

    void theStateIsKept()
    {
        start();
        set("setSsid", {QStringLiteral("net"), QStringLiteral("one")});
        set("setTopOfForm", {12.345678901234567, m_master, false});
        set("setUseAdjustableLinespacing", {true, m_master, false});
        set("setFileCRC", {4294967295.0, m_master});
        set("setTabSize", {7});
        m_simulator.process().terminateAndWait();
        start();
        QCOMPARE(m_simulator.value("getSsid", {QStringLiteral("one")}), QVariant("net"));
        QCOMPARE(m_simulator.value("getTopOfForm", {m_master}), QVariant(12.345678901234567));
        QCOMPARE(m_simulator.value("getUseAdjustableLinespacing", {m_master}), QVariant(true));
        QCOMPARE(m_simulator.value("getFileCRC", {m_master}), QVariant(-1));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(7));
        QCOMPARE(
            m_simulator.value("duplicateCatalog", {QStringLiteral("one"), QStringLiteral("two")}),
            QVariant(true));
    }

    void withoutAFileNothingIsKept()
    {
        m_simulator.start();
        set("setTabSize", {7});
        m_simulator.start();
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(4));
    }

    void theFilesAreTheOwnersAlone()
    {
        start();
        expectOwnersAlone();
    }

    void filesThatOthersMayReadAreMadeTheOwnersAlone()
    {
        start();
        set("setTabSize", {7});
        // What has been written last is still in the file beside it.
        m_simulator.process().killAndWait();
        for (const QString &file : {m_state, m_state + QStringLiteral("-wal")})
            QCOMPARE(::chmod(qPrintable(file), 0644), 0);
        start();
        expectOwnersAlone();
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(7));
    }

    void noAnsweredWriteIsLostWhenTheServiceIsKilled()
    {
        const int writes = 1000;
        const int spread = 120; // writes between two kills, at most
        auto *random = QRandomGenerator::global();
        int answered = 0;
        int kills = 0;
        start();
        while (answered < writes) {
            // In the middle of calls: some of those that are on their way are answered, some not.
            QVector<QDBusPendingCall> calls;
            const int count = random->bounded(2, spread);
            for (int i = 1; i <= count; ++i)
                calls << write(answered + i);
            calls[random->bounded(count)].waitForFinished();
            m_simulator.process().killAndWait();
            ++kills;
            int confirmed = answered;
            for (QDBusPendingCall &call : calls) {
                call.waitForFinished();
                if (!call.isError())
                    ++confirmed;
            }
            start();
            // What was carried out but not answered may be there or not.
            const int kept = m_simulator.value("getCounter", {1, m_master}).toInt();
            QVERIFY2(kept >= confirmed, qPrintable(QStringLiteral("%1 of %2 writes after %3 kills")
                                                       .arg(kept)
                                                       .arg(confirmed)
                                                       .arg(kills)));
            QVERIFY(kept <= answered + count);
            answered = kept;
        }
        qInfo("%d writes, killed %d times", answered, kills);
        QVERIFY(kills >= writes / spread);
    }

    void aFileThatIsInUseIsRefused()
    {
        start();
        expectRefusal({QStringLiteral("--state"), m_state}, "is in use by another process");
    }

    void aDamagedFileIsRefused_data()
    {
        QTest::addColumn<int>("offset"); // of the first byte that is lost
        QTest::addColumn<QString>("reason");
        QTest::newRow("cut off in its second page") << 6000 << "is damaged: ";
        QTest::newRow("cut off in its first page") << 3000 << "database disk image is malformed";
        QTest::newRow("cut off in its header") << 50 << "database disk image is malformed";
    }

    void aDamagedFileIsRefused()
    {
        QFETCH(int, offset);
        QFETCH(QString, reason);
        start();
        m_simulator.process().terminateAndWait();
        QFile file(m_state);
        QVERIFY(file.resize(offset));
        const Ended ended = runSimulator({QStringLiteral("--state"), m_state});
        QCOMPARE(ended.exitCode, 1);
        const QString start = QStringLiteral("embosser-simulator: %1: %2").arg(m_state, reason);
        QVERIFY2(ended.errors.startsWith(start), qPrintable(ended.errors));
        QCOMPARE(ended.errors.count(QLatin1Char('\n')), 1);
        QCOMPARE(file.size(), offset);
    }

    void aFileThatCannotBeWrittenIsRefused_data()
    {
        QTest::addColumn<int>("filePermissions");
        QTest::addColumn<int>("folderPermissions");
        QTest::addColumn<QString>("reason");
        QTest::newRow("file") << 0444 << 0777 << "Permission denied";
        QTest::newRow("folder") << 0666 << 0555 << "its folder is not writable";
        QTest::newRow("file of another user")
            << 0666 << 0777 << "cannot be made its owner's alone: Operation not permitted";
    }

    void aFileThatCannotBeWrittenIsRefused()
    {
        const bool isEmulated =
            ChildProcess(simulatorProgram(), {}).program() != simulatorProgram();
        if (::geteuid() != 0 || isEmulated) {
            QTest::qSkip("needs root, and a program that other users can run", __FILE__, __LINE__);
            return;
        }
        QFETCH(int, filePermissions);
        QFETCH(int, folderPermissions);
        QFETCH(QString, reason);
        start();
        m_simulator.process().terminateAndWait();
        QCOMPARE(::chmod(qPrintable(m_state), mode_t(filePermissions)), 0);
        QCOMPARE(::chmod(qPrintable(m_directory->path()), mode_t(folderPermissions)), 0);
        ChildProcess other(QStringLiteral("setpriv"),
                           {QStringLiteral("--reuid=nobody"), QStringLiteral("--regid=nogroup"),
                            QStringLiteral("--clear-groups"), simulatorProgram(),
                            QStringLiteral("--state"), m_state});
        other.setProcessChannelMode(QProcess::SeparateChannels);
        other.start();
        const Ended ended = waitForEnd(other);
        QCOMPARE(ended.exitCode, 1);
        QCOMPARE(ended.errors, QStringLiteral("embosser-simulator: %1: %2\n").arg(m_state, reason));
    }

    void aFileWithoutTheTableIsRefused()
    {
        QFile file(m_state);
        QVERIFY(file.open(QFile::WriteOnly));
        QCOMPARE(file.write("x"), qint64(1));
        file.close();
        expectRefusal({QStringLiteral("--state"), m_state},
                      "is damaged: it has no table of settings");
        QCOMPARE(file.size(), qint64(1));
        QVERIFY(file.remove());
        start();
        m_simulator.process().terminateAndWait();
        change("DROP TABLE setting");
        expectRefusal({QStringLiteral("--state"), m_state},
                      "is damaged: it has no table of settings");
    }

    void aFileThatIsGoneIsNoticedWithTheNextWrite()
    {
        start();
        set("setTabSize", {7});
        QVERIFY(QFile::remove(m_state));
        QCOMPARE(m_simulator.error("setTabSize", {8}),
                 m_state + QStringLiteral(": has been deleted or replaced"));
        QCOMPARE(m_simulator.value("getTabSize"), QVariant(7));
        QFile other(m_state);
        QVERIFY(other.open(QFile::WriteOnly));
        QVERIFY(!m_simulator.error("setTabSize", {8}).isEmpty());
    }

    void aFullMediumIsNoReasonNotToStart()
    {
        ChildProcess mount(QStringLiteral("mount"),
                           {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                            QStringLiteral("size=256k"), QStringLiteral("tmpfs"),
                            m_directory->path()});
        mount.start();
        if (waitForEnd(mount).exitCode != 0) {
            QTest::qSkip("file systems cannot be mounted here", __FILE__, __LINE__);
            return;
        }
        start();
        set("setTabSize", {7});
        m_simulator.process().terminateAndWait();
        QFile filler(m_directory->filePath(QStringLiteral("filler")));
        QVERIFY(filler.open(QFile::WriteOnly | QFile::Unbuffered));
        const QByteArray block(4096, 'x');
        while (filler.write(block) == block.size()) {
        }
        start();
        const QString full = m_state + QStringLiteral(": the medium is full");
        const int value = m_simulator.value("getTabSize").toInt();
        const QString refusal = m_simulator.error("setTabSize", {8});
        filler.remove();
        const QString afterwards = m_simulator.error("setTabSize", {8});
        m_simulator.process().terminateAndWait();
        ChildProcess unmount(QStringLiteral("umount"), {m_directory->path()});
        unmount.start();
        QCOMPARE(waitForEnd(unmount).exitCode, 0);
        QCOMPARE(value, 7);
        QCOMPARE(refusal, full);
        QCOMPARE(afterwards, QString());
    }

    void whatIsNoFileIsRefused()
    {
        QCOMPARE(::mkfifo(qPrintable(m_state), 0600), 0);
        expectRefusal({QStringLiteral("--state"), m_state}, "is not a regular file");
        m_state = m_directory->path();
        expectRefusal({QStringLiteral("--state"), m_state}, "Is a directory");
    }

    void aFileOfAnotherModelIsRefused()
    {
        start();
        m_simulator.process().terminateAndWait();
        expectRefusal(
            {QStringLiteral("--state"), m_state, QStringLiteral("--model"), QStringLiteral("Arvo")},
            "holds the state of the model Kestan, not Arvo");
    }

    void aDatabaseOfAnotherProgramIsRefused()
    {
        change("CREATE TABLE theirs (value)");
        expectRefusal({QStringLiteral("--state"), m_state}, "is a database of another program");
    }

    void aFileOfAnotherFormatIsRefused()
    {
        start();
        m_simulator.process().terminateAndWait();
        change("PRAGMA user_version = 99");
        expectRefusal({QStringLiteral("--state"), m_state},
                      "was written by another version of this program");
    }

    void aFileOfAnotherProgramIsRefusedAndLeftAsItIs()
    {
        QFile file(m_state);
        QVERIFY(file.open(QFile::ReadWrite));
        file.write("Not a database, but somebody's text.");
        file.close();
        expectRefusal({QStringLiteral("--state"), m_state}, "file is not a database");
        QVERIFY(file.open(QFile::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("Not a database, but somebody's text."));
    }

    void aStoredValueThatDoesNotFitIsAnError_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("said");
        const auto row = [](const char *title, const char *name, const QVariant &stored,
                            const char *method, const QString &said) {
            QTest::newRow(title) << QString::fromLatin1(name) << stored
                                 << QString::fromLatin1(method)
                                 << name + (": the value in the state does not fit: " + said);
        };
        row("text for a number", "LetterFont", "five", "getLetterFont",
            "takes a value of D-Bus type i");
        row("fraction for a whole number", "LetterFont", 2.5, "getLetterFont",
            "2.5 is not a whole number");
        row("number out of bounds", "LetterFont", 10, "getLetterFont", "10 is not between 0 and 9");
        row("number for a text", "Ssid", 5, "getSsid", "takes a value of D-Bus type s");
        row("text for a truth value", "UseAdjustableLinespacing", "1",
            "getUseAdjustableLinespacing", "takes a value of D-Bus type b");
        row("number that is no truth value", "UseAdjustableLinespacing", 2,
            "getUseAdjustableLinespacing", "takes a value of D-Bus type b");
        row("unknown paper", "PaperSize", "A0", "getPaperWidth", "the value is none of: 110x120, ");
        row("secret", "Passphrase", QString(64, QLatin1Char('x')), "getPassphrase",
            "the value is longer than 63 bytes");
    }

    void aStoredValueThatDoesNotFitIsAnError()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, stored);
        QFETCH(QString, method);
        QFETCH(QString, said);
        start();
        m_simulator.process().terminateAndWait();
        store(QStringLiteral("collection:") + m_master, name, stored);
        start();
        const QString error = m_simulator.error(method, {m_master});
        QVERIFY2(error.startsWith(said), qPrintable(error));
    }

    void savedUserSettingsThatCannotBeReadAreAnError()
    {
        start();
        m_simulator.process().terminateAndWait();
        store(QStringLiteral("user settings"), QStringLiteral("saved"), QStringLiteral("{"));
        start();
        QCOMPARE(m_simulator.error("loadUserSettings"),
                 QStringLiteral("the user settings saved in the state cannot be read"));
    }

    void aSettingThatCannotBeSavedIsNotSetEither_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QVariantList>("arguments");
        QTest::newRow("setter") << "setSpeechSpeed" << QVariantList{5, m_master, true};
        QTest::newRow("by name") << "setIntValue"
                                 << QVariantList{QStringLiteral("SpeechSpeed"), 5, m_master, true};
        QTest::newRow("by a delta")
            << "setIntDeltaValue" << QVariantList{QStringLiteral("SpeechSpeed"), 2, m_master, true};
    }

    void aSettingThatCannotBeSavedIsNotSetEither()
    {
        QFETCH(QString, method);
        QFETCH(QVariantList, arguments);
        start();
        m_simulator.process().terminateAndWait();
        change("CREATE TRIGGER full BEFORE INSERT ON setting WHEN NEW.scope = 'user settings' "
               "BEGIN SELECT RAISE(ABORT, 'no room'); END");
        start();
        const QString error = m_simulator.error(method, arguments);
        QVERIFY2(error.contains(QLatin1String("no room")), qPrintable(error));
        QCOMPARE(m_simulator.value("getSpeechSpeed", {m_master}), QVariant(3));
    }

private:
    /// Writes a value into the file.
    void store(const QString &scope, const QString &name, const QVariant &value) const
    {
        change("INSERT INTO setting VALUES (?, ?, ?)", {scope, name, value});
    }

    /// Changes the file as another program could.
    void change(const char *sql, const QVariantList &values = {}) const
    {
        const QString connection = QStringLiteral("test");
        {
            QSqlDatabase database =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
            database.setDatabaseName(m_state);
            QVERIFY(database.open());
            QSqlQuery query(database);
            QVERIFY(query.prepare(QString::fromLatin1(sql)));
            for (const QVariant &each : values)
                query.addBindValue(each);
            QVERIFY2(query.exec(), qPrintable(query.lastError().text()));
        }
        QSqlDatabase::removeDatabase(connection);
    }

    void start() { m_simulator.start({QStringLiteral("--state"), m_state}); }

    void expectOwnersAlone() const
    {
        for (const QString &file : {m_state, m_state + QStringLiteral("-wal")}) {
            struct stat status;
            QCOMPARE(::stat(qPrintable(file), &status), 0);
            QCOMPARE(int(status.st_mode & (S_IRWXG | S_IRWXO)), 0);
        }
    }

    void expectRefusal(const QStringList &arguments, const char *reason) const
    {
        const Ended ended = runSimulator(arguments);
        QCOMPARE(ended.exitCode, 1);
        QCOMPARE(ended.errors, QStringLiteral("embosser-simulator: %1: %2\n")
                                   .arg(m_state, QString::fromLatin1(reason)));
    }

    QDBusPendingCall write(int number) const
    {
        return m_simulator.asyncCall(QStringLiteral("setCounter"), {number, 1, m_master});
    }

    void set(const char *method, const QVariantList &arguments) const
    {
        QCOMPARE(m_simulator.error(method, arguments), QString());
    }

    const QString m_master = Simulator::masterCollection();
    PrivateBus m_bus;
    Simulator m_simulator{m_bus};
    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_state;
};

QTEST_GUILESS_MAIN(TestDurability)
#include "tst_durability.moc"
