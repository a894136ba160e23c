// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_CATALOGUE_H
#define TOOL_LIBRARY_CATALOGUE_H

#include "library/Operation.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace tool {

/// What one operation reads and another writes without a key; either may be missing.
struct Setting
{
    QString name;
    const Operation *getter = nullptr;
    const Operation *setter = nullptr;
    /// A phrase, such as "the size of a tabulator".
    QString meaning;
    /// Its value is shown only to whoever asks for it alone.
    bool isSecret = false;
    /// It tells one device from another, or what one has done so far.
    bool isIdentity = false;

    /// What is written or, where nothing is, read.
    const ValueType &valueType() const;

    /// Whether the setter takes the service's own flag beside the value.
    bool takesFlag() const;
};

/// All operations and settings of the library, in its order.
class Catalogue
{
public:
    Catalogue();
    Q_DISABLE_COPY(Catalogue)

    const QVector<Operation> &operations() const { return m_operations; }
    const QVector<Setting> &settings() const { return m_settings; }

    /// The operations of a name ("getWidth"), or the one of a signature ("getWidth(QString)").
    QVector<const Operation *> operationsNamed(const QString &name) const;
    QStringList operationNames() const;

    /// The setting of a name, or null.
    const Setting *setting(const QString &name) const;
    QStringList settingNames() const;
    QStringList readableSettings() const;
    QStringList writableSettings() const;

private:
    void readMetaObject();
    void readContract();
    void pairSettings();

    QVector<Operation> m_operations;
    QVector<Setting> m_settings;
    QHash<QString, int> m_settingIndexes;
};

} // namespace tool

#endif
