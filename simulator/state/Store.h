// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_STORE_H
#define SIMULATOR_STATE_STORE_H

#include <QtCore/QMap>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>

#include <stdexcept>

namespace simulator {

/// What tells a file from any other on the same machine.
using FileIdentity = QPair<quint64, quint64>;

/// The state cannot be kept; what() says why.
class StoreError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The values that have been set, in SQLite, each in the scope it belongs to.
///
/// A change is on the disk when the method that makes it returns, or, within a Transaction, when
/// that is committed. All methods throw StoreError when SQLite fails.
class Store
{
public:
    /// Opens or creates the file; in memory if the name is empty. The file cannot be opened a
    /// second time while it is open.
    explicit Store(const QString &file);
    ~Store();
    Q_DISABLE_COPY(Store)

    /// Marks what is kept as the state of a model. Throws if it is that of another one. Returns a
    /// warning if nothing can be kept beside what is there already, since the medium is full.
    QString bindTo(const QString &model);

    /// Forgets all that has been set.
    void clear();

    /// Invalid when nothing has been set.
    QVariant value(const QString &scope, const QString &name) const;
    QMap<QString, QVariant> values(const QString &scope) const;
    void setValue(const QString &scope, const QString &name, const QVariant &value);
    void removeValue(const QString &scope, const QString &name);
    void removeScope(const QString &scope);

    /// Adds the values of one scope to another.
    void copyScope(const QString &from, const QString &to);

    /// Changes that come into force together or, unless commit() is called, not at all.
    class Transaction
    {
    public:
        explicit Transaction(Store &store);
        ~Transaction();
        Q_DISABLE_COPY(Transaction)
        void commit();

    private:
        Store &m_store;
        const bool m_outermost;
        bool m_committed = false;
    };

private:
    QSqlQuery run(const QString &sql, const QVariantList &values = {}) const;
    int number(const QString &sql) const;
    void createOrCheckTables();
    void createTable();
    void requireTable();
    /// Of a file that has been deleted or replaced, nothing would ever be read again.
    void requireFile() const;
    void change(const QString &sql, const QVariantList &values = {});

    const QString m_file;
    QSqlDatabase m_database;
    FileIdentity m_identity;
    bool m_inTransaction = false;
};

} // namespace simulator

#endif
