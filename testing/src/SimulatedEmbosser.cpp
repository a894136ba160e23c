// SPDX-License-Identifier: MIT

#include <libconfigurationmanager-testing/SimulatedEmbosser.h>

#include "BoundProcess.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUuid>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusVariant>
#include <QtTest/QtTest>

namespace libconfigurationmanager {

namespace {

const char *const systemBusVariable = "DBUS_SYSTEM_BUS_ADDRESS";
const int milliseconds = 30000;

void fail(const QString &reason)
{
    if (!QTest::currentTestFunction())
        qFatal("The simulated embosser: %s", qPrintable(reason));
    QTest::qFail(qPrintable(QStringLiteral("The simulated embosser: ") + reason), nullptr, 0);
}

/// Not a blocking call, whose errors Qt keeps in the connection without a lock.
QDBusMessage answerTo(const QDBusMessage &message, const QDBusConnection &connection)
{
    QDBusPendingCall call = connection.asyncCall(message, milliseconds);
    call.waitForFinished();
    return call.reply();
}

/// What tells one bus from another.
QString idOf(const QDBusConnection &bus)
{
    const QString name = QStringLiteral("org.freedesktop.DBus");
    return answerTo(QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/DBus"),
                                                   name, QStringLiteral("GetId")),
                    bus)
        .arguments()
        .value(0)
        .toString();
}

QVariantList mapsIn(const QDBusMessage &answer)
{
    QVariantList maps;
    const auto list = answer.arguments().value(0).value<QDBusArgument>();
    if (list.currentSignature() == QLatin1String("aa{sv}")) {
        for (const QVariantMap &map : qdbus_cast<QList<QVariantMap>>(list))
            maps += map;
    }
    return maps;
}

QString nameOf(SimulatedEmbosser::Condition condition)
{
    switch (condition) {
    case SimulatedEmbosser::Condition::OutOfPaper:
        return QStringLiteral("out-of-paper");
    case SimulatedEmbosser::Condition::BinFull:
        return QStringLiteral("bin-full");
    case SimulatedEmbosser::Condition::CoverOpen:
        return QStringLiteral("cover-open");
    case SimulatedEmbosser::Condition::Jam:
        return QStringLiteral("jam");
    }
    return {};
}

/// Qt hands maps and lists in a variant over as they came.
QVariant demarshalled(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() == QLatin1String("a{sv}"))
        return qdbus_cast<QVariantMap>(argument);
    if (argument.currentSignature() == QLatin1String("av"))
        return qdbus_cast<QVariantList>(argument);
    return value;
}

} // namespace

class SimulatedEmbosserPrivate
{
public:
    ~SimulatedEmbosserPrivate() { QDBusConnection::disconnectFromBus(m_connectionName); }

    void start(const QStringList &options);
    bool startBus();
    QDBusMessage control(const QString &interface, const QString &method,
                         const QVariantList &arguments = {}) const;
    void inject(const QString &kind, const QString &method, uint calls,
                const QString &detail = {}) const;

private:
    /// Starts a process and takes the line by which it says that it is ready. Null, and the test
    /// has failed with what the process says, if there is none.
    std::unique_ptr<BoundProcess> begin(const QStringList &command, QString &line) const;

    const QString m_connectionName = QUuid::createUuid().toString();
    const QTemporaryDir m_directory;
    std::unique_ptr<BoundProcess> m_bus;

public:
    QString address;
    std::unique_ptr<BoundProcess> simulator; // which ends before its bus
};

std::unique_ptr<BoundProcess> SimulatedEmbosserPrivate::begin(const QStringList &command,
                                                              QString &line) const
{
    const QString &program = command.constFirst();
    const QString errorFile = m_directory.filePath(program + QStringLiteral(".errors"));
    auto process = std::make_unique<BoundProcess>(command);
    process->setProcessChannelMode(QProcess::SeparateChannels);
    process->setStandardErrorFile(errorFile);
    line = process->startAndReadLine();
    if (!line.isEmpty())
        return process;
    if (process->error() == QProcess::FailedToStart) {
        fail(QStringLiteral("the program %1 is not found in PATH").arg(program));
    } else {
        QFile errors(errorFile);
        errors.open(QIODevice::ReadOnly);
        const QString words = QString::fromUtf8(errors.readAll()).trimmed();
        fail(QStringLiteral("%1 does not get ready: %2")
                 .arg(program, words.isEmpty() ? process->errorString() : words));
    }
    return {};
}

bool SimulatedEmbosserPrivate::startBus()
{
    m_bus = begin(dbusDaemonCommand(m_directory.filePath(QStringLiteral("bus"))), address);
    if (!m_bus)
        return false;
    qputenv(systemBusVariable, address.toUtf8());
    const QDBusConnection bus = QDBusConnection::connectToBus(address, m_connectionName);
    const QString id = idOf(bus);
    if (id.isEmpty()) {
        fail(QStringLiteral("its bus does not answer: %1").arg(bus.lastError().message()));
        return false;
    }
    const QDBusConnection used = QDBusConnection::systemBus();
    if (!used.isConnected() || idOf(used) != id) {
        fail(QStringLiteral("this process has used the system bus already, and would go on using "
                            "it: start the embosser before the first ConfigurationManager, and "
                            "only one in a process"));
        return false;
    }
    return true;
}

void SimulatedEmbosserPrivate::start(const QStringList &options)
{
    // The former one must have left the bus.
    simulator.reset();
    if (address.isEmpty() && !startBus()) {
        address.clear();
        return;
    }
    QString ready;
    simulator = begin(QStringList(QStringLiteral("embosser-simulator")) << options, ready);
}

QDBusMessage SimulatedEmbosserPrivate::control(const QString &interface, const QString &method,
                                               const QVariantList &arguments) const
{
    const QString name = QStringLiteral("com.tavelornbraille.Simulator");
    QDBusMessage message =
        QDBusMessage::createMethodCall(name, QStringLiteral("/com/tavelornbraille/Simulator"),
                                       name + QLatin1Char('.') + interface, method);
    message.setArguments(arguments);
    if (!simulator) {
        fail(QStringLiteral("%1: it has not been started").arg(method));
        return {};
    }
    QDBusMessage answer = answerTo(message, QDBusConnection(m_connectionName));
    if (answer.type() != QDBusMessage::ReplyMessage)
        fail(QStringLiteral("%1: %2").arg(method, answer.errorMessage()));
    return answer;
}

void SimulatedEmbosserPrivate::inject(const QString &kind, const QString &method, uint calls,
                                      const QString &detail) const
{
    control(QStringLiteral("Faults"), QStringLiteral("Inject"), {kind, method, calls, detail});
}

SimulatedEmbosser::SimulatedEmbosser() : d(std::make_unique<SimulatedEmbosserPrivate>()) {}

SimulatedEmbosser::~SimulatedEmbosser() = default;

void SimulatedEmbosser::start(const QString &model)
{
    d->start(model.isEmpty() ? QStringList() : QStringList{QStringLiteral("--model"), model});
}

void SimulatedEmbosser::startProfile(const QString &file)
{
    d->start({QStringLiteral("--profile"), file});
}

void SimulatedEmbosser::stop()
{
    d->simulator.reset();
}

bool SimulatedEmbosser::isRunning() const
{
    // Without an event loop nobody else takes notice of the end.
    return d->simulator && !d->simulator->waitForFinished(0) &&
           d->simulator->state() == QProcess::Running;
}

QString SimulatedEmbosser::busAddress() const
{
    return d->address;
}

void SimulatedEmbosser::reset()
{
    returnToBus();
    clearFaults();
    d->control(QStringLiteral("Calls"), QStringLiteral("Reset"));
    clearCalls();
}

QVector<ReceivedCall> SimulatedEmbosser::calls(const QString &method) const
{
    QVector<ReceivedCall> calls;
    const QVariantList maps =
        mapsIn(d->control(QStringLiteral("Calls"), QStringLiteral("Calls"), {method}));
    for (const QVariant &entry : maps) {
        const QVariantMap map = entry.toMap();
        QVariantList arguments = demarshalled(map.value(QStringLiteral("arguments"))).toList();
        for (QVariant &argument : arguments)
            argument = demarshalled(argument);
        calls.append({map.value(QStringLiteral("method")).toString(), arguments,
                      map.value(QStringLiteral("outcome")).toString()});
    }
    return calls;
}

void SimulatedEmbosser::clearCalls()
{
    d->control(QStringLiteral("Calls"), QStringLiteral("Clear"));
}

void SimulatedEmbosser::answer(const QString &method, const QVariant &value, uint calls)
{
    d->control(QStringLiteral("Faults"), QStringLiteral("Answer"),
               {method, calls, QVariant::fromValue(QDBusVariant(value))});
}

void SimulatedEmbosser::refuse(const QString &method, const QString &errorName,
                               const QString &message, uint calls)
{
    d->control(QStringLiteral("Faults"), QStringLiteral("Refuse"),
               {method, calls, errorName, message});
}

void SimulatedEmbosser::delay(const QString &method, std::chrono::milliseconds time, uint calls)
{
    d->inject(QStringLiteral("delay"), method, calls, QString::number(time.count()));
}

void SimulatedEmbosser::leaveUnanswered(const QString &method, uint calls)
{
    d->inject(QStringLiteral("no-answer"), method, calls);
}

void SimulatedEmbosser::answerWithWrongType(const QString &method, uint calls)
{
    d->inject(QStringLiteral("wrong-type"), method, calls);
}

void SimulatedEmbosser::crash(const QString &method)
{
    d->inject(QStringLiteral("crash"), method, 1);
}

void SimulatedEmbosser::leaveBus(const QString &method, std::chrono::milliseconds absence)
{
    d->inject(QStringLiteral("drop-name"), method, 1, QString::number(absence.count()));
}

void SimulatedEmbosser::returnToBus()
{
    d->control(QStringLiteral("Faults"), QStringLiteral("Return"));
}

int SimulatedEmbosser::pendingFaults() const
{
    return mapsIn(d->control(QStringLiteral("Faults"), QStringLiteral("Pending"))).size();
}

void SimulatedEmbosser::clearFaults()
{
    d->control(QStringLiteral("Faults"), QStringLiteral("Clear"));
}

void SimulatedEmbosser::print(uint pages, uint copies, std::chrono::milliseconds perPage)
{
    d->control(QStringLiteral("Printer"), QStringLiteral("Print"),
               {pages, copies, uint(perPage.count())});
}

uint SimulatedEmbosser::printPages(uint pages)
{
    return d->control(QStringLiteral("Printer"), QStringLiteral("Step"), {pages})
        .arguments()
        .value(0)
        .toUInt();
}

void SimulatedEmbosser::interrupt(Condition condition, uint afterPages)
{
    d->control(QStringLiteral("Printer"), QStringLiteral("Interrupt"),
               {nameOf(condition), afterPages});
}

void SimulatedEmbosser::resolve()
{
    d->control(QStringLiteral("Printer"), QStringLiteral("Resolve"));
}

void SimulatedEmbosser::cancelJob()
{
    d->control(QStringLiteral("Printer"), QStringLiteral("Cancel"));
}

PrintJob SimulatedEmbosser::job() const
{
    const QVariantMap job =
        demarshalled(
            d->control(QStringLiteral("Printer"), QStringLiteral("Job")).arguments().value(0))
            .toMap();
    const auto number = [&job](const char *name) {
        return job.value(QString::fromLatin1(name)).toInt();
    };
    return {job.value(QStringLiteral("status")).toString(),
            job.value(QStringLiteral("condition")).toString(),
            number("pages"),
            number("copies"),
            number("printedPages"),
            number("printedCopies"),
            number("sheetsInBin")};
}

} // namespace libconfigurationmanager
