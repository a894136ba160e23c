// SPDX-License-Identifier: MIT

#include "SettingsWindow.h"

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QVBoxLayout>

#include <type_traits>

using Manager = AsyncConfigurationManager;
using lcm::RowValueList;

namespace {

/// Calls a setter of either form: some take a flag.
template<typename Setter, typename Value>
PendingReply<void> store(Manager &manager, Setter setter, const Value &value)
{
    if constexpr (std::is_invocable_v<Setter, Manager &, Value>)
        return (manager.*setter)(value);
    else
        return (manager.*setter)(value, false);
}

} // namespace

SettingsWindow::SettingsWindow(QWidget *parent)
    : QWidget(parent), m_pages(new QTabWidget), m_state(new QLabel)
{
    setWindowTitle(tr("Embosser settings"));
    m_pages->setUsesScrollButtons(false);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_pages);
    layout->addWidget(m_state);

    const auto get = [this](auto getter) {
        return [this, getter] { return (m_manager.*getter)(); };
    };
    const auto addNumber = [=](const QString &label, const QString &name, auto getter,
                               auto setter) {
        addField(label, new NumberField(m_manager, name, get(getter), [this, setter](int value) {
                     return store(m_manager, setter, value);
                 }));
    };
    const auto addChoice = [=](const QString &label, RowValueList row, auto getter, auto setter) {
        addField(label,
                 new ChoiceField(m_manager, row, get(getter), [this, setter](const QString &value) {
                     return store(m_manager, setter, value);
                 }));
    };
    const auto addText = [=](const QString &label, auto getter) {
        addField(label, new ReadOnlyField(get(getter)));
    };

    addPage(tr("Embosser"));
    addText(tr("Model"), &Manager::getModel);
    addText(tr("Serial number"), &Manager::getSerialNo);
    addText(tr("Firmware of"), &Manager::getFirmwareDate);
    addText(tr("Company"), &Manager::getCompanyName);

    addPage(tr("Print head"));
    addNumber(tr("Pulse time, odd, low"), QStringLiteral("OddLowPulseTime"),
              &Manager::getOddLowPulseTime, &Manager::setOddLowPulseTime);
    addNumber(tr("Pulse time, even, low"), QStringLiteral("EvenLowPulseTime"),
              &Manager::getEvenLowPulseTime, &Manager::setEvenLowPulseTime);
    addNumber(tr("Alignment, low"), QStringLiteral("AlignLow"), &Manager::getAlignLow,
              &Manager::setAlignLow);
    addNumber(tr("Alignment, high"), QStringLiteral("AlignHigh"), &Manager::getAlignHigh,
              &Manager::setAlignHigh);

    addPage(tr("Paper"));
    addNumber(tr("Sensor level"), QStringLiteral("PaperSensorLevel"), &Manager::getPaperSensorLevel,
              &Manager::setPaperSensorLevel);
    addNumber(tr("Speed of throwing out"), QStringLiteral("PaperThrowOutSpeed"),
              &Manager::getPaperThrowOutSpeed, &Manager::setPaperThrowOutSpeed);

    addPage(tr("Serial line"));
    addChoice(tr("Data bits"), RowValueList::DataBits, &Manager::getDatabit, &Manager::setDatabit);
    addChoice(tr("Parity"), RowValueList::Parity, &Manager::getParity, &Manager::setParity);
    addChoice(tr("Stop bits"), RowValueList::StopBits, &Manager::getStopbit, &Manager::setStopbit);
    addChoice(tr("Handshake"), RowValueList::Handshake, &Manager::getHandshake,
              &Manager::setHandshake);

    addPage(tr("Speech"));
    addChoice(tr("Language"), RowValueList::Speech, &Manager::getCurrentSpeech,
              &Manager::setCurrentSpeech);
    addChoice(tr("Volume"), RowValueList::Volume, &Manager::getVolume, &Manager::setVolume);
    addNumber(tr("Volume, fine"), QStringLiteral("VolumeFineAdjustment"),
              &Manager::getVolumeFineAdjustment, &Manager::setVolumeFineAdjustment);

    addPage(tr("Document"));
    addChoice(tr("Braille code"), RowValueList::BrailleCode, &Manager::getBrailleLanguage,
              &Manager::setBrailleLanguage);
    addChoice(tr("Page number"), RowValueList::PageNumber, &Manager::getPageNumber,
              &Manager::setPageNumber);
    addNumber(tr("Copies"), QStringLiteral("NumberOfCopies"), &Manager::getNumberOfCopies,
              &Manager::setNumberOfCopies);

    connect(&m_manager, &Manager::connected, this, &SettingsWindow::followTheService);
    connect(&m_manager, &Manager::disconnected, this, &SettingsWindow::followTheService);
    followTheService();
}

void SettingsWindow::addPage(const QString &family)
{
    auto *page = new QWidget;
    m_page = new QFormLayout(page);
    m_pages->addTab(page, family);
}

void SettingsWindow::addField(const QString &label, SettingField *field)
{
    field->setObjectName(label);
    m_page->addRow(label, field);
    m_fields.append(field);
}

void SettingsWindow::followTheService()
{
    const bool isConnected = m_manager.isConnected();
    m_pages->setEnabled(isConnected);
    m_state->setText(isConnected ? tr("Connected to the configuration service")
                                 : tr("There is no configuration service"));
    if (!isConnected)
        return;
    for (SettingField *field : qAsConst(m_fields))
        field->load();
}
