// SPDX-License-Identifier: MIT

#ifndef EXAMPLES_CONSUMERTESTS_TABSTOPS_H
#define EXAMPLES_CONSUMERTESTS_TABSTOPS_H

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtCore/QObject>
#include <QtCore/QString>

/// A part of an application: has the embosser use other tab stops, and says how that went.
class TabStops : public QObject
{
    Q_OBJECT
public:
    void setDistance(int cells);

    /// Whether the embosser has not answered yet.
    bool isBusy() const { return m_isBusy; }

    /// What the user reads.
    QString notice() const { return m_notice; }

private:
    void showNotice(const QString &notice);

    libconfigurationmanager::AsyncConfigurationManager m_manager;
    bool m_isBusy = false;
    QString m_notice;
};

#endif
