// SPDX-License-Identifier: MIT

#include "SettingField.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QSpinBox>

#include <utility>

SettingField::SettingField(QWidget *editor) : m_problem(new QLabel(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(editor);
    layout->addWidget(m_problem, 1);
    editor->setMinimumWidth(160);
    editor->setEnabled(false);
    m_problem->setMinimumWidth(240);
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet(QStringLiteral("color: #a00000"));
}

void SettingField::load()
{
    m_problem->clear();
    ask();
}

QString SettingField::problem() const
{
    return m_problem->text();
}

void SettingField::showProblem(const QDBusError &error)
{
    m_problem->setText(error.message());
}

void SettingField::showOutcome(const PendingReply<void> &reply)
{
    reply.then(
        this, [this] { m_problem->clear(); },
        [this](const QDBusError &error) {
            showProblem(error);
            ask();
        });
}

NumberField::NumberField(AsyncConfigurationManager &manager, const QString &name, Getter getter,
                         Setter setter)
    : NumberField(manager, name, std::move(getter), std::move(setter), new QSpinBox)
{
}

NumberField::NumberField(AsyncConfigurationManager &manager, const QString &name, Getter getter,
                         Setter setter, QSpinBox *editor)
    : SettingField(editor),
      m_manager(manager),
      m_name(name),
      m_getter(std::move(getter)),
      m_setter(std::move(setter)),
      m_editor(editor)
{
    connect(m_editor, &QSpinBox::editingFinished, this, &NumberField::store);
}

void NumberField::ask()
{
    m_awaited = 3;
    const auto onError = [this](const QDBusError &error) {
        showProblem(error);
        answered();
    };
    const auto keepIn = [this](std::optional<int> &kept) {
        return [this, &kept](int answer) {
            kept = answer;
            answered();
        };
    };
    m_manager.getMinValue(m_name).then(this, keepIn(m_minimum), onError);
    m_manager.getMaxValue(m_name).then(this, keepIn(m_maximum), onError);
    m_getter().then(this, keepIn(m_value), onError);
}

/// Without its bounds, the editor would cut the value off.
void NumberField::answered()
{
    if (--m_awaited > 0 || !m_value)
        return;
    m_editor->setRange(m_minimum.value_or(*m_value), m_maximum.value_or(*m_value));
    m_editor->setValue(*m_value);
    m_editor->setEnabled(true);
}

void NumberField::store()
{
    if (m_editor->value() == m_value)
        return;
    m_value = m_editor->value();
    showOutcome(m_setter(*m_value));
}

ChoiceField::ChoiceField(AsyncConfigurationManager &manager, lcm::RowValueList row, Getter getter,
                         Setter setter)
    : ChoiceField(manager, row, std::move(getter), std::move(setter), new QComboBox)
{
}

ChoiceField::ChoiceField(AsyncConfigurationManager &manager, lcm::RowValueList row, Getter getter,
                         Setter setter, QComboBox *editor)
    : SettingField(editor),
      m_manager(manager),
      m_row(row),
      m_getter(std::move(getter)),
      m_setter(std::move(setter)),
      m_editor(editor)
{
    connect(m_editor, &QComboBox::textActivated, this,
            [this](const QString &text) { showOutcome(m_setter(text)); });
}

void ChoiceField::ask()
{
    const auto onError = [this](const QDBusError &error) { showProblem(error); };
    m_manager.getValueList(int(m_row))
        .then(
            this,
            [this](const lcm::PropList &choices) {
                m_editor->clear();
                for (const QVariantMap &choice : choices)
                    m_editor->addItem(choice.value(QStringLiteral("key")).toString());
            },
            onError);
    m_getter().then(
        this,
        [this](const QString &value) {
            m_editor->setCurrentIndex(m_editor->findText(value));
            m_editor->setEnabled(true);
        },
        onError);
}

ReadOnlyField::ReadOnlyField(Getter getter) : ReadOnlyField(std::move(getter), new QLabel) {}

ReadOnlyField::ReadOnlyField(Getter getter, QLabel *text)
    : SettingField(text), m_getter(std::move(getter)), m_text(text)
{
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void ReadOnlyField::ask()
{
    m_getter().then(
        this,
        [this](const QString &text) {
            m_text->setText(text);
            m_text->setEnabled(true);
        },
        [this](const QDBusError &error) { showProblem(error); });
}
