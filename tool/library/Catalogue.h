// SPDX-License-Identifier: MIT

#ifndef TOOL_LIBRARY_CATALOGUE_H
#define TOOL_LIBRARY_CATALOGUE_H

#include "library/Operation.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace tool {

/// What getX() reads and setX(value) writes; either may be missing.
struct Setting
{
    QString name;
    const Operation *getter = nullptr;
    const Operation *setter = nullptr;

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
    void readIntrospection();
    void pairSettings();

    QVector<Operation> m_operations;
    QVector<Setting> m_settings;
};

} // namespace tool

#endif
