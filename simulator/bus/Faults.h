// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_BUS_FAULTS_H
#define SIMULATOR_BUS_FAULTS_H

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <optional>

namespace contract {
class Interface;
} // namespace contract

namespace simulator {

/// Something that goes wrong in a call.
struct Fault
{
    enum class Kind {
        Error,
        Refuse,
        Answer,
        WrongType,
        Delay,
        NoAnswer,
        Crash,
        DropName,
    };

    Kind kind;
    QString method;         ///< "*" is any
    quint32 calls;          ///< how many are still affected; 0 is all until the faults are cleared
    QString detail;         ///< see Faults::kinds()
    QString errorName = {}; ///< of a refusal
    QVariant answer = {};

    int milliseconds() const { return detail.toInt(); }
};

/// The faults that wait for their calls, and those that have happened.
class Faults : public QObject
{
    Q_OBJECT
public:
    explicit Faults(const contract::Interface &interface);

    /// The names of the kinds, each with its meaning and that of its detail, for a reader.
    static QVector<QStringList> kinds();
    static QString nameOf(Fault::Kind kind);

    /// Throws a Refusal if there is no such kind or method, or the detail is not what it takes.
    void inject(const QString &kind, const QString &method, quint32 calls, const QString &detail);

    /// The next calls are answered with a value, or refused with an error.
    void injectAnswer(const QString &method, quint32 calls, const QVariant &answer);
    void injectRefusal(const QString &method, quint32 calls, const QString &errorName,
                       const QString &message);

    /// The same from a text KIND:METHOD[:CALLS[:DETAIL]]; one call unless it says another number.
    void inject(const QString &text);

    void clear();

    /// The fault that a call meets: the first injected that is for its method.
    std::optional<Fault> next(const QString &method);

    const QVector<Fault> &pending() const { return m_pending; }

    /// One for each of the last 1000 calls that met one; `method` is that of the call.
    const QVector<Fault> &history() const { return m_history; }

Q_SIGNALS:
    void happened(const QString &kind, const QString &method);

private:
    void requireMethod(const QString &kind, const QString &method) const;

    const contract::Interface &m_interface;
    QVector<Fault> m_pending;
    QVector<Fault> m_history;
};

} // namespace simulator

#endif
