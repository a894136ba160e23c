// SPDX-License-Identifier: MIT

#include "state/Store.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtSql/QSqlError>

#include <sys/stat.h>

namespace simulator {

namespace {

// In the header of the file, so that no other program's database is taken for a state.
const int applicationId = 0x656d6273; // "embs"
const int formatVersion = 1;

[[noreturn]] void fail(const QString &file, const QString &reason)
{
    throw StoreError(QStringLiteral("%1: %2").arg(file, reason).toStdString());
}

class MediumFull : public StoreError
{
public:
    using StoreError::StoreError;
};

[[noreturn]] void fail(const QString &file, const QSqlError &error)
{
    const QString full = QStringLiteral("13"); // SQLITE_FULL
    if (error.nativeErrorCode() == full)
        throw MediumFull(QStringLiteral("%1: the medium is full").arg(file).toStdString());
    const QString busy = QStringLiteral("5"); // SQLITE_BUSY
    const QString reason = error.nativeErrorCode() == busy
                               ? QStringLiteral("is in use by another process")
                               : error.databaseText().trimmed();
    fail(file, reason);
}

/// The file and those that SQLite keeps beside it.
QStringList filesOf(const QString &file)
{
    QStringList files{file};
    const QString log = file + QStringLiteral("-wal");
    if (QFile::exists(log))
        files += log;
    return files;
}

/// SQLite does not say why it cannot write.
void requireWritable(const QString &file)
{
    for (const QString &each : filesOf(file)) {
        QFile device(each);
        if (!device.open(QFile::ReadWrite))
            fail(each, device.errorString());
        if (!QFileInfo(each).isFile())
            fail(each, QStringLiteral("is not a regular file"));
    }
    if (!QFileInfo(QFileInfo(file).path()).isWritable())
        fail(file, QStringLiteral("its folder is not writable"));
}

/// Of no file, it is that of no other either.
FileIdentity identityOf(const QString &file)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(file).constData(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino};
}

/// The files hold secrets, and SQLite gives those that it makes the permissions of the first.
void makeTheOwnersAlone(const QString &file)
{
    for (const QString &each : filesOf(file)) {
        QFile device(each);
        if (!device.setPermissions(QFile::ReadOwner | QFile::WriteOwner))
            fail(each, QStringLiteral("cannot be made its owner's alone: ") + device.errorString());
    }
}

} // namespace

Store::Store(const QString &file)
    : m_file(file),
      m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("state")))
{
    if (!file.isEmpty())
        requireWritable(file);
    m_database.setDatabaseName(file.isEmpty() ? QStringLiteral(":memory:") : file);
    if (!m_database.open())
        fail(m_file, m_database.lastError());
    createOrCheckTables();
}

Store::~Store()
{
    const QString name = m_database.connectionName();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

void Store::createOrCheckTables()
{
    run(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
    // A file with something in it is not new, though SQLite may see nothing in it.
    const bool isNew = QFileInfo(m_file).size() == 0;
    if (!isNew)
        requireTable();
    // Before anything is changed in a file that may be another program's.
    if (!isNew && number(QStringLiteral("PRAGMA application_id")) != applicationId)
        fail(m_file, QStringLiteral("is a database of another program"));
    if (!isNew && number(QStringLiteral("PRAGMA user_version")) != formatVersion)
        fail(m_file, QStringLiteral("was written by another version of this program"));
    if (!m_file.isEmpty())
        makeTheOwnersAlone(m_file);
    QSqlQuery check = run(QStringLiteral("PRAGMA quick_check(1)"));
    if (check.next() && check.value(0) != QStringLiteral("ok"))
        fail(m_file, QStringLiteral("is damaged: %1")
                         .arg(check.value(0).toString().section(QLatin1Char('\n'), -1)));
    check.finish();
    // Before the log is made, so that there is never a file without the table.
    if (isNew)
        createTable();
    run(QStringLiteral("PRAGMA journal_mode = WAL"));
    // An answered write outlives also a loss of power.
    run(QStringLiteral("PRAGMA synchronous = FULL"));
    run(QStringLiteral("BEGIN EXCLUSIVE"));
    run(QStringLiteral("COMMIT"));
    m_identity = identityOf(m_file);
}

void Store::createTable()
{
    run(QStringLiteral("BEGIN EXCLUSIVE"));
    run(QStringLiteral("PRAGMA application_id = %1").arg(applicationId));
    run(QStringLiteral("PRAGMA user_version = %1").arg(formatVersion));
    run(QStringLiteral("CREATE TABLE setting (scope TEXT NOT NULL, name TEXT NOT NULL, "
                       "value NOT NULL, PRIMARY KEY (scope, name)) WITHOUT ROWID"));
    run(QStringLiteral("COMMIT"));
}

void Store::requireTable()
{
    const int tables = number(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    const int ours =
        number(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = 'setting'"));
    // Tables of other names are those of another program.
    if (ours == 0 &&
        (tables == 0 || number(QStringLiteral("PRAGMA application_id")) == applicationId))
        fail(m_file, QStringLiteral("is damaged: it has no table of settings"));
}

void Store::requireFile() const
{
    if (!m_file.isEmpty() && identityOf(m_file) != m_identity)
        fail(m_file, QStringLiteral("has been deleted or replaced"));
}

void Store::change(const QString &sql, const QVariantList &values)
{
    requireFile();
    run(sql, values);
}

int Store::number(const QString &sql) const
{
    QSqlQuery query = run(sql);
    query.next();
    return query.value(0).toInt();
}

QSqlQuery Store::run(const QString &sql, const QVariantList &values) const
{
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    if (!query.prepare(sql))
        fail(m_file, query.lastError());
    for (const QVariant &value : values)
        query.addBindValue(value);
    if (!query.exec())
        fail(m_file, query.lastError());
    return query;
}

QString Store::bindTo(const QString &model)
{
    const QString scope = QStringLiteral("store");
    const QString name = QStringLiteral("model");
    const QVariant stored = value(scope, name);
    if (stored.isValid() && stored != model)
        fail(m_file, QStringLiteral("holds the state of the model %1, not %2")
                         .arg(stored.toString(), model));
    try {
        setValue(scope, name, model);
    } catch (const MediumFull &full) {
        if (!stored.isValid())
            throw;
        return QString::fromUtf8(full.what()) +
               QStringLiteral("; nothing can be set until there is room");
    }
    return {};
}

void Store::clear()
{
    change(QStringLiteral("DELETE FROM setting WHERE scope <> 'store'"));
}

QVariant Store::value(const QString &scope, const QString &name) const
{
    QSqlQuery query = run(QStringLiteral("SELECT value FROM setting WHERE scope = ? AND name = ?"),
                          {scope, name});
    return query.next() ? query.value(0) : QVariant();
}

QMap<QString, QVariant> Store::values(const QString &scope) const
{
    QSqlQuery query =
        run(QStringLiteral("SELECT name, value FROM setting WHERE scope = ?"), {scope});
    QMap<QString, QVariant> values;
    while (query.next())
        values.insert(query.value(0).toString(), query.value(1));
    return values;
}

void Store::setValue(const QString &scope, const QString &name, const QVariant &value)
{
    change(QStringLiteral("INSERT OR REPLACE INTO setting VALUES (?, ?, ?)"), {scope, name, value});
}

void Store::removeValue(const QString &scope, const QString &name)
{
    change(QStringLiteral("DELETE FROM setting WHERE scope = ? AND name = ?"), {scope, name});
}

void Store::removeScope(const QString &scope)
{
    change(QStringLiteral("DELETE FROM setting WHERE scope = ?"), {scope});
}

void Store::copyScope(const QString &from, const QString &to)
{
    change(QStringLiteral("INSERT OR REPLACE INTO setting "
                          "SELECT ?, name, value FROM setting WHERE scope = ?"),
           {to, from});
}

Store::Transaction::Transaction(Store &store) : m_store(store), m_outermost(!store.m_inTransaction)
{
    if (m_outermost) {
        m_store.run(QStringLiteral("BEGIN"));
        m_store.m_inTransaction = true;
    }
}

Store::Transaction::~Transaction()
{
    if (!m_outermost)
        return;
    if (!m_committed)
        m_store.m_database.exec(QStringLiteral("ROLLBACK"));
    m_store.m_inTransaction = false;
}

void Store::Transaction::commit()
{
    if (m_outermost)
        m_store.run(QStringLiteral("COMMIT"));
    m_committed = true;
}

} // namespace simulator
