// SPDX-License-Identifier: MIT

#include "bus/Control.h"

#include "bus/Faults.h"
#include "state/Refusal.h"
#include "state/ServiceLog.h"

namespace simulator {

Control::Control(Faults &faults, const ServiceLog &log)
{
    new FaultsAdaptor(faults, this);
    new LogAdaptor(log, this);
}

void Control::refuse(const QString &name, const QString &message)
{
    sendErrorReply(name, message);
}

FaultsAdaptor::FaultsAdaptor(Faults &faults, Control *control)
    : QDBusAbstractAdaptor(control), m_faults(faults), m_control(control)
{
    connect(&faults, &Faults::happened, this, &FaultsAdaptor::Happened);
}

void FaultsAdaptor::Inject(const QString &kind, const QString &method, uint calls,
                           const QString &detail)
{
    try {
        m_faults.inject(kind, method, calls, detail);
    } catch (const Refusal &refusal) {
        m_control->refuse(refusal.name, refusal.message);
    }
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
