// SPDX-License-Identifier: MIT

#include "bus/Control.h"

#include "bus/CallRecord.h"
#include "bus/Faults.h"
#include "state/Configuration.h"
#include "state/Refusal.h"
#include "state/ServiceLog.h"
#include "state/Store.h"

#include <QtDBus/QDBusError>

namespace simulator {

Control::Control(Faults &faults, const ServiceLog &log, CallRecord &calls,
                 Configuration &configuration)
{
    new FaultsAdaptor(faults, this);
    new CallsAdaptor(calls, configuration, this);
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
    inject([&] { m_faults.inject(kind, method, calls, detail); });
}

void FaultsAdaptor::Answer(const QString &method, uint calls, const QDBusVariant &value)
{
    inject([&] { m_faults.injectAnswer(method, calls, value.variant()); });
}

void FaultsAdaptor::Refuse(const QString &method, uint calls, const QString &errorName,
                           const QString &message)
{
    inject([&] { m_faults.injectRefusal(method, calls, errorName, message); });
}

void FaultsAdaptor::inject(const std::function<void()> &injection)
{
    try {
        injection();
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

CallsAdaptor::CallsAdaptor(CallRecord &calls, Configuration &configuration, Control *control)
    : QDBusAbstractAdaptor(control),
      m_calls(calls),
      m_configuration(configuration),
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
    try {
        m_configuration.clear();
    } catch (const StoreError &error) {
        m_control->refuse(QDBusError::errorString(QDBusError::Failed),
                          QString::fromUtf8(error.what()));
    }
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
