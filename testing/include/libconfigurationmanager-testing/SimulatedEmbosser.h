// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_TESTING_SIMULATEDEMBOSSER_H
#define LIBCONFIGURATIONMANAGER_TESTING_SIMULATEDEMBOSSER_H

#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <chrono>
#include <memory>

namespace libconfigurationmanager {

class SimulatedEmbosserPrivate;

/// What is known of the job that an embosser prints, or has printed last.
struct PrintJob
{
    QString status;    ///< none, printing, paused, held, finished, cancelled or failed
    QString condition; ///< what holds it or has ended it, if anything
    int pages = 0;     ///< of each copy
    int copies = 0;
    int printedPages = 0; ///< of all copies
    int printedCopies = 0;
    int sheetsInBin = 0; ///< of this job and of those before it
};

/// A call that the simulated service has got.
struct ReceivedCall
{
    QString method;         ///< the name of the remote method
    QVariantList arguments; ///< as they were sent; of what is secret, only that it was there
    QString outcome;        ///< "ok", or the name of the error that was the answer

    bool succeeded() const { return outcome == QLatin1String("ok"); }
};

/// A simulated embosser on a bus of its own, for the test cases of an application with QtTest.
///
/// The process of the test takes that bus for the system bus: its ConfigurationManager, and
/// whatever it starts, finds the simulated service and nothing else. Bus and embosser end with the
/// object, also when a test fails, or with the process. A process has one object, since Qt connects
/// to the system bus only once: start it in initTestCase(), before the application uses that bus.
///
/// What cannot be done fails the current test and says why; outside of a test, it ends the process.
/// No method waits for longer than half a minute. Needs a QCoreApplication, and the programs
/// dbus-daemon and embosser-simulator in PATH.
class SimulatedEmbosser
{
public:
    /// What can happen to a job; all but a jam hold it.
    enum class Condition {
        OutOfPaper,
        BinFull,
        CoverOpen,
        Jam,
    };

    /// As a number of calls: all of them, until the faults are cleared.
    static constexpr uint allCalls = 0;

    SimulatedEmbosser();
    ~SimulatedEmbosser();
    Q_DISABLE_COPY(SimulatedEmbosser)

    /// Starts an embosser of a model, Kestan if none is named, and waits until it answers.
    ///
    /// One that runs already ends first: the service is away for a moment, and all is as delivered.
    void start(const QString &model = {});

    /// The same with an embosser that a profile describes, such as one that `embosserctl capture`
    /// has written.
    void startProfile(const QString &file);

    /// Ends the embosser: the service leaves the bus, which stays.
    void stop();

    /// Returns whether it has been started and has not ended, be it by a fault.
    bool isRunning() const;

    /// The address of its bus, for other programs; empty before the first start.
    QString busAddress() const;

    /// Has the model's values again and forgets calls, faults and the job, for the next test.
    void reset();

    /// What the application has sent: the last 1000 calls, of one method or of all, the oldest
    /// first.
    QVector<ReceivedCall> calls(const QString &method = {}) const;
    void clearCalls();

    /// The next calls of a method, or of any ("*"), are not carried out but answered with a value,
    /// which need not be of the right type.
    void answer(const QString &method, const QVariant &value, uint calls = 1);

    /// They are refused with an error, such as "org.example.Error.Busy".
    void refuse(const QString &method, const QString &errorName, const QString &message,
                uint calls = 1);

    /// They are carried out, but answered so much later.
    void delay(const QString &method, std::chrono::milliseconds time, uint calls = 1);

    /// They are never answered, as by a service that hangs.
    void leaveUnanswered(const QString &method, uint calls = 1);

    /// They are carried out, but the answer is of another type.
    void answerWithWrongType(const QString &method, uint calls = 1);

    /// The next call has the embosser end as if it were killed; start() brings another one.
    void crash(const QString &method);

    /// The next call has the service leave the bus for a while, or, at 0, until returnToBus().
    void leaveBus(const QString &method, std::chrono::milliseconds absence = {});
    void returnToBus();

    /// How many of these wait for calls that have not come.
    int pendingFaults() const;
    void clearFaults();

    /// Begins a job: so many copies, or, at 0, as many as are set, of a document with so many
    /// pages.
    ///
    /// A page takes so long; at 0, pages are printed by printPages() alone.
    void print(uint pages, uint copies = 1, std::chrono::milliseconds perPage = {});

    /// Prints the next pages, at most 1000, at once, and returns how many: fewer if the job ends or
    /// is held.
    uint printPages(uint pages = 1);

    /// Has something happen to the job after so many more pages, or, at 0, now.
    void interrupt(Condition condition, uint afterPages = 0);

    /// Ends the condition: the job that it holds goes on.
    void resolve();
    void cancelJob();
    PrintJob job() const;

private:
    std::unique_ptr<SimulatedEmbosserPrivate> d;
};

} // namespace libconfigurationmanager

#endif
