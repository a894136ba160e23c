// SPDX-License-Identifier: MIT

#ifndef EXAMPLES_SETTINGSWINDOW_SETTINGSWINDOW_H
#define EXAMPLES_SETTINGSWINDOW_SETTINGSWINDOW_H

#include "SettingField.h"

#include <QtCore/QVector>
#include <QtWidgets/QWidget>

class QFormLayout;
class QLabel;
class QTabWidget;

/// Some of an embosser's settings, a page for each family.
///
/// Nothing in it waits for the service: it opens at once and fills as the answers arrive.
class SettingsWindow : public QWidget
{
    Q_OBJECT
public:
    explicit SettingsWindow(QWidget *parent = nullptr);

private:
    void addPage(const QString &family);
    void addField(const QString &label, SettingField *field);
    void followTheService();

    AsyncConfigurationManager m_manager;
    QTabWidget *const m_pages;
    QLabel *const m_state;
    QFormLayout *m_page = nullptr;
    QVector<SettingField *> m_fields;
};

#endif
