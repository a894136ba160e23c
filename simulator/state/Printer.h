// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_PRINTER_H
#define SIMULATOR_STATE_PRINTER_H

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <functional>

namespace simulator {

class Configuration;
class Store;

/// Prints a job, on no paper: what moves are the settings that tell of a job and of the embosser.
///
/// The job is kept as the settings are, and goes on when the simulator is started again. Methods
/// throw a Refusal when what is asked for cannot be; nothing has changed then.
class Printer : public QObject
{
    Q_OBJECT
public:
    Printer(Configuration &configuration, Store &store);

    /// What can happen to a job, each with its meaning, for a reader.
    static QVector<QStringList> conditions();

    /// The names of DocumentStatus, the first of which is that of 0.
    static QStringList statusNames();

    /// Begins a job: so many copies, or, at 0, as many as are set, of a document with so many
    /// pages. A page takes so long; at 0, it is printed by step() only.
    void print(quint32 pages, quint32 copies, quint32 milliseconds);

    /// Prints the next pages, at most 1000, at once, and returns how many: fewer if the job ends or
    /// is held.
    quint32 step(quint32 pages);

    void cancel();

    /// Has a condition come after so many more pages, or, at 0, now. It is there until resolve().
    void interrupt(const QString &condition, quint32 afterPages);

    /// Ends the condition: paper is there again, the bin is empty, the cover is closed.
    void resolve();

    /// All that is known of the job, for a reader: its pages, how far it is, the condition.
    QVariantMap report() const;

    /// Goes on with the job that was being printed when the simulator ended.
    void resume();

    /// Takes notice of what has been set meanwhile, such as a pause.
    void refresh();

Q_SIGNALS:
    /// The job has begun, ended, is held or paused, or goes on.
    void changed(const QString &status);

private:
    struct Job;

    Job load() const;
    /// Keeps what has become of the job, with all that follows from it.
    void save(Job &job);
    void printPage(Job &job);
    /// Has a condition instead of the one that is there; an empty one is none.
    void setCondition(Job &job, const QString &condition);
    void set(const QString &setting, const QVariant &value);
    void count(const QString &setting);
    int number(const QString &setting) const;
    /// What a job that is being printed does: a pause or a condition can have come or gone.
    int statusOf(const Job &job) const;
    /// Whether the embosser looks at the sensor for it.
    bool isNoticed(const QString &condition) const;
    /// Has the pace, the settings and those who listen follow what has become of the job.
    void follow();
    /// For what nobody has asked for, and who could be answered.
    static void orSayWhy(const std::function<void()> &action);

    Configuration &m_configuration;
    Store &m_store;
    QTimer m_pace; ///< the next page
    bool m_isActive = false;
    int m_told = 0; ///< the status that those who listen know
};

} // namespace simulator

#endif
