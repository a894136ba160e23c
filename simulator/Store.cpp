// SPDX-License-Identifier: MIT

#include "Store.h"

#include <QtSql/QSqlError>

namespace simulator {

namespace {

// In the header of the file, so that no other program's database is taken for a state.
const int applicationId = 0x656d6273; // "embs"
const int formatVersion = 1;

[[noreturn]] void fail(const QString &what, const QSqlError &error)
{
    throw StoreError(
        QStringLiteral("%1: %2").arg(what, error.databaseText().trimmed()).toStdString());
}

} // namespace

Store::Store(const QString &file)
    : m_file(file),
      m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("state")))
{
    m_database.setDatabaseName(file.isEmpty() ? QStringLiteral(":memory:") : file);
    if (!m_database.open())
        fail(file, m_database.lastError());
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
    try {
        run(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"));
        run(QStringLiteral("PRAGMA journal_mode = WAL"));
        // An answered write outlives also a loss of power.
        run(QStringLiteral("PRAGMA synchronous = FULL"));
        run(QStringLiteral("BEGIN EXCLUSIVE"));
        QSqlQuery id = run(QStringLiteral("PRAGMA application_id"));
        QSqlQuery tables = run(QStringLiteral("SELECT count(*) FROM sqlite_master"));
        id.next();
        tables.next();
        const bool isNew = tables.value(0).toInt() == 0;
        if (!isNew && id.value(0).toInt() != applicationId)
            throw StoreError("is a database of another program");
        id.finish();
        tables.finish();
        if (isNew) {
            run(QStringLiteral("PRAGMA application_id = %1").arg(applicationId));
            run(QStringLiteral("PRAGMA user_version = %1").arg(formatVersion));
            run(QStringLiteral("CREATE TABLE setting (scope TEXT NOT NULL, name TEXT NOT NULL, "
                               "value NOT NULL, PRIMARY KEY (scope, name)) WITHOUT ROWID"));
        }
        QSqlQuery version = run(QStringLiteral("PRAGMA user_version"));
        version.next();
        if (version.value(0).toInt() != formatVersion)
            throw StoreError("was written by another version of this program");
        version.finish();
        run(QStringLiteral("COMMIT"));
    } catch (const StoreError &error) {
        throw StoreError(m_file.toStdString() + ": " + error.what());
    }
}

QSqlQuery Store::run(const QString &sql, const QVariantList &values) const
{
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    if (!query.prepare(sql))
        fail(QStringLiteral("SQLite"), query.lastError());
    for (const QVariant &value : values)
        query.addBindValue(value);
    if (!query.exec())
        fail(QStringLiteral("SQLite"), query.lastError());
    return query;
}

void Store::bindTo(const QString &model)
{
    const QString scope = QStringLiteral("store");
    const QString name = QStringLiteral("model");
    const QVariant stored = value(scope, name);
    if (stored.isValid() && stored != model)
        throw StoreError(QStringLiteral("%1: is the state of a %2, not of a %3")
                             .arg(m_file, stored.toString(), model)
                             .toStdString());
    setValue(scope, name, model);
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
    run(QStringLiteral("INSERT OR REPLACE INTO setting VALUES (?, ?, ?)"), {scope, name, value});
}

void Store::removeValue(const QString &scope, const QString &name)
{
    run(QStringLiteral("DELETE FROM setting WHERE scope = ? AND name = ?"), {scope, name});
}

void Store::removeScope(const QString &scope)
{
    run(QStringLiteral("DELETE FROM setting WHERE scope = ?"), {scope});
}

void Store::copyScope(const QString &from, const QString &to)
{
    run(QStringLiteral("INSERT OR REPLACE INTO setting "
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
