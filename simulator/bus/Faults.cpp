// SPDX-License-Identifier: MIT

#include "bus/Faults.h"

#include "state/RecentEntries.h"
#include "state/Refusal.h"

#include <contract/Interface.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>

namespace simulator {

namespace {

enum class Detail {
    None,
    Text,
    Error,
    Milliseconds,
};

struct KindDescription
{
    Fault::Kind kind;
    const char *name;
    Detail detail;
    const char *meaning;
};

const KindDescription descriptions[]{
    {Fault::Kind::Error, "error", Detail::Text,
     "the call is not carried out, the answer is an error; DETAIL is its message"},
    {Fault::Kind::Refuse, "refuse", Detail::Error,
     "the same; DETAIL is the name of a D-Bus error and, after a colon, its message"},
    {Fault::Kind::Answer, "answer", Detail::Text,
     "the call is not carried out, the answer is the text DETAIL"},
    {Fault::Kind::WrongType, "wrong-type", Detail::None,
     "the call is carried out, the answer is of another type"},
    {Fault::Kind::Delay, "delay", Detail::Milliseconds,
     "the call is carried out, the answer comes after DETAIL milliseconds"},
    {Fault::Kind::NoAnswer, "no-answer", Detail::None,
     "the call is neither carried out nor answered"},
    {Fault::Kind::Crash, "crash", Detail::None,
     "the service ends at once, as if killed, before the call is carried out"},
    {Fault::Kind::DropName, "drop-name", Detail::Milliseconds,
     "the service leaves the bus for DETAIL milliseconds, or, at 0, until Return() is called; the "
     "call is carried out and answered"},
};

const KindDescription &descriptionOf(const QString &name)
{
    const auto *found =
        std::find_if(std::begin(descriptions), std::end(descriptions),
                     [&](const KindDescription &d) { return name == QLatin1String(d.name); });
    if (found != std::end(descriptions))
        return *found;
    QStringList names;
    for (const KindDescription &description : descriptions)
        names += QString::fromLatin1(description.name);
    throw invalidArguments(QStringLiteral("there is no fault \"%1\"; there are: %2")
                               .arg(name, names.join(QStringLiteral(", "))));
}

void checkDetail(const KindDescription &description, const QString &detail)
{
    bool isNumber = false;
    const bool isNegative = detail.toInt(&isNumber) < 0;
    const QString kind = QString::fromLatin1(description.name);
    if (description.detail == Detail::None && !detail.isEmpty())
        throw invalidArguments(QStringLiteral("%1 takes no detail").arg(kind));
    if (description.detail == Detail::Milliseconds && (!isNumber || isNegative))
        throw invalidArguments(QStringLiteral("%1 takes a number of milliseconds").arg(kind));
}

} // namespace

Faults::Faults(const contract::Interface &interface) : m_interface(interface) {}

QVector<QStringList> Faults::kinds()
{
    QVector<QStringList> rows;
    for (const KindDescription &description : descriptions)
        rows.append(
            {QString::fromLatin1(description.name), QString::fromLatin1(description.meaning)});
    return rows;
}

QString Faults::nameOf(Fault::Kind kind)
{
    const auto *found = std::find_if(std::begin(descriptions), std::end(descriptions),
                                     [&](const KindDescription &d) { return d.kind == kind; });
    return QString::fromLatin1(found->name);
}

void Faults::inject(const QString &kind, const QString &method, quint32 calls,
                    const QString &detail)
{
    const KindDescription &description = descriptionOf(kind);
    requireMethod(kind, method);
    checkDetail(description, detail);
    if (description.kind == Fault::Kind::Refuse)
        injectRefusal(method, calls, detail.section(QLatin1Char(':'), 0, 0),
                      detail.section(QLatin1Char(':'), 1));
    else if (description.kind == Fault::Kind::Answer)
        injectAnswer(method, calls, detail);
    else
        m_pending.append({description.kind, method, calls, detail});
}

void Faults::requireMethod(const QString &kind, const QString &method) const
{
    if (method.isEmpty())
        throw invalidArguments(
            QStringLiteral("%1 needs the name of a method, or * for any").arg(kind));
    if (method != QLatin1String("*") && !m_interface.method(method))
        throw invalidArguments(QStringLiteral("the service has no method %1").arg(method));
}

void Faults::injectAnswer(const QString &method, quint32 calls, const QVariant &answer)
{
    requireMethod(nameOf(Fault::Kind::Answer), method);
    m_pending.append({Fault::Kind::Answer, method, calls, {}, {}, answer});
}

void Faults::injectRefusal(const QString &method, quint32 calls, const QString &errorName,
                           const QString &message)
{
    const QString kind = nameOf(Fault::Kind::Refuse);
    requireMethod(kind, method);
    // What is no name of an error would end the connection to the bus.
    static const QRegularExpression name(
        QRegularExpression::anchoredPattern(QStringLiteral("[A-Za-z_]\\w*(\\.[A-Za-z_]\\w*)+")));
    const int longestName = 255;
    if (!name.match(errorName).hasMatch() || errorName.size() > longestName)
        throw invalidArguments(QStringLiteral("%1 takes the name of a D-Bus error").arg(kind));
    m_pending.append({Fault::Kind::Refuse, method, calls, message, errorName});
}

void Faults::inject(const QString &text)
{
    const QChar colon = QLatin1Char(':');
    const QString calls = text.section(colon, 2, 2);
    bool isNumber = calls.isEmpty();
    const quint32 number = isNumber ? 1 : calls.toUInt(&isNumber);
    if (!isNumber)
        throw invalidArguments(QStringLiteral("\"%1\" is not a number of calls").arg(calls));
    inject(text.section(colon, 0, 0), text.section(colon, 1, 1), number, text.section(colon, 3));
}

void Faults::clear()
{
    m_pending.clear();
    m_history.clear();
}

std::optional<Fault> Faults::next(const QString &method)
{
    auto *const fault = std::find_if(m_pending.begin(), m_pending.end(), [&](const Fault &f) {
        return f.method == method || f.method == QLatin1String("*");
    });
    if (fault == m_pending.end())
        return {};
    Fault met = *fault;
    met.method = method;
    if (fault->calls > 0 && --fault->calls == 0)
        m_pending.erase(fault);
    appendRecent(m_history, met);
    Q_EMIT happened(nameOf(met.kind), method);
    return met;
}

} // namespace simulator
