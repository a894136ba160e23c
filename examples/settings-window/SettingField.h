// SPDX-License-Identifier: MIT

#ifndef EXAMPLES_SETTINGSWINDOW_SETTINGFIELD_H
#define EXAMPLES_SETTINGSWINDOW_SETTINGFIELD_H

#include <libconfigurationmanager-async/AsyncConfigurationManager.h>

#include <QtWidgets/QWidget>

#include <functional>
#include <optional>

class QComboBox;
class QLabel;
class QSpinBox;

using libconfigurationmanager::AsyncConfigurationManager;
using libconfigurationmanager::PendingReply;

/// One setting: what edits it, and beside it what the service has refused.
class SettingField : public QWidget
{
    Q_OBJECT
public:
    explicit SettingField(QWidget *editor);

    /// Asks the service for the value and for what is allowed; nothing can be edited until it has
    /// answered.
    void load();

    /// What the service has said against it, if anything.
    QString problem() const;

protected:
    /// Asks, and shows what is answered.
    virtual void ask() = 0;

    void showProblem(const QDBusError &error);

    /// Shows what the service says to a new value, and if it refuses, the value that it keeps.
    void showOutcome(const PendingReply<void> &reply);

private:
    QLabel *const m_problem;
};

/// A whole number between the bounds that the service gives.
class NumberField : public SettingField
{
    Q_OBJECT
public:
    using Getter = std::function<PendingReply<int>()>;
    using Setter = std::function<PendingReply<void>(int)>;

    /// name: that of the parameter of which the service knows the bounds.
    NumberField(AsyncConfigurationManager &manager, const QString &name, Getter getter,
                Setter setter);

protected:
    void ask() override;

private:
    NumberField(AsyncConfigurationManager &manager, const QString &name, Getter getter,
                Setter setter, QSpinBox *editor);
    void answered();
    void store();

    AsyncConfigurationManager &m_manager;
    const QString m_name;
    const Getter m_getter;
    const Setter m_setter;
    QSpinBox *const m_editor;
    std::optional<int> m_minimum;
    std::optional<int> m_maximum;
    std::optional<int> m_value;
    /// How many answers are still to come.
    int m_awaited = 0;
};

/// One of the texts in a value list of the service.
class ChoiceField : public SettingField
{
    Q_OBJECT
public:
    using Getter = std::function<PendingReply<QString>()>;
    using Setter = std::function<PendingReply<void>(const QString &)>;

    ChoiceField(AsyncConfigurationManager &manager, lcm::RowValueList row, Getter getter,
                Setter setter);

protected:
    void ask() override;

private:
    ChoiceField(AsyncConfigurationManager &manager, lcm::RowValueList row, Getter getter,
                Setter setter, QComboBox *editor);

    AsyncConfigurationManager &m_manager;
    const lcm::RowValueList m_row;
    const Getter m_getter;
    const Setter m_setter;
    QComboBox *const m_editor;
};

/// A text that only the service changes.
class ReadOnlyField : public SettingField
{
    Q_OBJECT
public:
    using Getter = std::function<PendingReply<QString>()>;

    explicit ReadOnlyField(Getter getter);

protected:
    void ask() override;

private:
    ReadOnlyField(Getter getter, QLabel *text);

    const Getter m_getter;
    QLabel *const m_text;
};

#endif
