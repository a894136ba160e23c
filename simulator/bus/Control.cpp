// SPDX-License-Identifier: MIT

#include "bus/Control.h"

#include "bus/CallRecord.h"
#include "bus/Faults.h"
#include "state/Configuration.h"
#include "state/Printer.h"
#include "state/Refusal.h"
#include "state/ServiceLog.h"
#include "state/Store.h"

#include <QtDBus/QDBusError>

namespace simulator {

Control::Control(Faults &faults, const ServiceLog &log, CallRecord &calls,
                 Configuration &configuration, Printer &printer)
{
    new FaultsAdaptor(faults, this);
    new CallsAdaptor(calls, configuration, printer, this);
    new LogAdaptor(log, this);
    new PrinterAdaptor(printer, this);
}

void Control::refuse(const QString &name, const QString &message)
{
    sendErrorReply(name, message);
}

void Control::carryOut(const std::function<void()> &action)
{
    try {
        action();
    } catch (const Refusal &refusal) {
        refuse(refusal.name, refusal.message);
    } catch (const StoreError &error) {
        refuse(QDBusError::errorString(QDBusError::Failed), QString::fromUtf8(error.what()));
    }
}

FaultsAdaptor::FaultsAdaptor(Faults &faults, Control *control)
    : QDBusAbstractAdaptor(control), m_faults(faults), m_control(control)
{
    connect(&faults, &Faults::happened, this, &FaultsAdaptor::Happened);
}

void FaultsAdaptor::Inject(const QString &kind, const QString &method, uint calls,
                           const QString &detail)
{
    m_control->carryOut([&] { m_faults.inject(kind, method, calls, detail); });
}

void FaultsAdaptor::Answer(const QString &method, uint calls, const QDBusVariant &value)
{
    m_control->carryOut([&] { m_faults.injectAnswer(method, calls, value.variant()); });
}

void FaultsAdaptor::Refuse(const QString &method, uint calls, const QString &errorName,
                           const QString &message)
{
    m_control->carryOut([&] { m_faults.injectRefusal(method, calls, errorName, message); });
}

void FaultsAdaptor::Clear()
{
    m_faults.clear();
}

MapList FaultsAdaptor::Pending() const
{
    MapList list;
    for (const Fault &fault : m_faults.pending())
        list.append({{QStringLiteral("kind"), Faults::nameOf(fault.kind)},
                     {QStringLiteral("method"), fault.method},
                     {QStringLiteral("calls"), fault.calls},
                     {QStringLiteral("detail"), fault.detail}});
    return list;
}

MapList FaultsAdaptor::History() const
{
    MapList list;
    for (const Fault &fault : m_faults.history())
        list.append({{QStringLiteral("kind"), Faults::nameOf(fault.kind)},
                     {QStringLiteral("method"), fault.method}});
    return list;
}

void FaultsAdaptor::Return()
{
    Q_EMIT m_control->returnRequested();
}

CallsAdaptor::CallsAdaptor(CallRecord &calls, Configuration &configuration, Printer &printer,
                           Control *control)
    : QDBusAbstractAdaptor(control),
      m_calls(calls),
      m_configuration(configuration),
      m_printer(printer),
      m_control(control)
{
}

MapList CallsAdaptor::Calls(const QString &method) const
{
    MapList list;
    for (const RecordedCall &call : m_calls.calls(method))
        list.append({{QStringLiteral("method"), call.method},
                     {QStringLiteral("arguments"), call.arguments},
                     {QStringLiteral("outcome"), call.outcome}});
    return list;
}

void CallsAdaptor::Clear()
{
    m_calls.clear();
}

void CallsAdaptor::Reset()
{
    m_control->carryOut([this] {
        m_configuration.clear();
        m_printer.refresh();
    });
}

PrinterAdaptor::PrinterAdaptor(Printer &printer, Control *control)
    : QDBusAbstractAdaptor(control), m_printer(printer), m_control(control)
{
    connect(&printer, &Printer::changed, this, &PrinterAdaptor::Changed);
}

void PrinterAdaptor::Print(uint pages, uint copies, uint milliseconds)
{
    m_control->carryOut([&] { m_printer.print(pages, copies, milliseconds); });
}

uint PrinterAdaptor::Step(uint pages)
{
    uint printed = 0;
    m_control->carryOut([&] { printed = m_printer.step(pages); });
    return printed;
}

void PrinterAdaptor::Cancel()
{
    m_control->carryOut([&] { m_printer.cancel(); });
}

void PrinterAdaptor::Interrupt(const QString &condition, uint afterPages)
{
    m_control->carryOut([&] { m_printer.interrupt(condition, afterPages); });
}

void PrinterAdaptor::Resolve()
{
    m_control->carryOut([&] { m_printer.resolve(); });
}

QVariantMap PrinterAdaptor::Job()
{
    QVariantMap job;
    m_control->carryOut([&] { job = m_printer.report(); });
    return job;
}

LogAdaptor::LogAdaptor(const ServiceLog &log, Control *control)
    : QDBusAbstractAdaptor(control), m_log(log)
{
}

bool LogAdaptor::IsEnabled() const
{
    return m_log.isEnabled();
}

QStringList LogAdaptor::Lines() const
{
    return m_log.lines();
}

} // namespace simulator
