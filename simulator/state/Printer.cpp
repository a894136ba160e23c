// SPDX-License-Identifier: MIT

#include "state/Printer.h"

#include "model/Profile.h"
#include "state/Configuration.h"
#include "state/Refusal.h"
#include "state/Store.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace simulator {

namespace {

const QString printingScope = QStringLiteral("printing");

const QString pagesName = QStringLiteral("pages");
const QString copiesName = QStringLiteral("copies");
const QString printedName = QStringLiteral("printed");
const QString millisecondsName = QStringLiteral("milliseconds");
const QString statusName = QStringLiteral("status");
const QString conditionName = QStringLiteral("condition");
const QString nextName = QStringLiteral("next");
const QString nextAfterName = QStringLiteral("nextAfter");
const QString sheetsName = QStringLiteral("sheetsInBin");

// So that the simulator is not deaf for long.
const quint32 mostAtOnce = 1000;

/// The values of DocumentStatus.
enum Status {
    NoJob,
    Printing,
    Paused,
    Held,
    Finished,
    Cancelled,
    Failed,
};

struct ConditionDescription
{
    const char *name;
    const char *meaning;
    bool endsJob; ///< otherwise the job goes on when the condition is over
    QVector<QPair<QString, bool>> sensors;
};

const QString binFull = QStringLiteral("bin-full");
const QString jam = QStringLiteral("jam");

const QVector<ConditionDescription> &descriptions()
{
    static const QVector<ConditionDescription> all{
        {"out-of-paper",
         "there is no paper: the job is held",
         false,
         {{QStringLiteral("PaperIn"), false}, {QStringLiteral("PaperOut"), true}}},
        {"bin-full",
         "the bin has no room, as it has of itself with MaxPaperInBin sheets: the job is held",
         false,
         {{QStringLiteral("TrayFull"), true}}},
        {"cover-open",
         "the cover is open: the job is held",
         false,
         {{QStringLiteral("CoverOpen"), true}}},
        {"jam", "a sheet is stuck: the job has failed", true, {}},
    };
    return all;
}

/// Null if there is none of that name.
const ConditionDescription *descriptionOf(const QString &name)
{
    const auto *const found =
        std::find_if(descriptions().begin(), descriptions().end(),
                     [&](const auto &each) { return name == QLatin1String(each.name); });
    return found == descriptions().end() ? nullptr : &*found;
}

/// By the name of a kind of printing.
int pagesOnASheet(const QString &duplexing)
{
    if (duplexing == QLatin1String("Booklet") || duplexing == QLatin1String("Booklet16"))
        return 4;
    if (duplexing == QLatin1String("BookletSingle") || duplexing.endsWith(QLatin1String("Double")))
        return 2;
    return 1;
}

} // namespace

struct Printer::Job
{
    int pages = 0; ///< of one copy
    int copies = 0;
    int printed = 0; ///< pages of all copies
    int milliseconds = 0;
    int status = NoJob;
    QString condition;
    QString next;
    int nextAfter = 0;
    int sheetsInBin = 0;

    bool isActive() const { return status == Printing || status == Paused || status == Held; }
    int printedCopies() const { return pages > 0 ? printed / pages : 0; }
};

Printer::Printer(Configuration &configuration, Store &store)
    : m_configuration(configuration), m_store(store)
{
    connect(&m_pace, &QTimer::timeout, this, [this] { orSayWhy([this] { step(1); }); });
    m_pace.setSingleShot(true);
}

QVector<QStringList> Printer::conditions()
{
    QVector<QStringList> rows;
    for (const ConditionDescription &description : descriptions())
        rows.append(
            {QString::fromLatin1(description.name), QString::fromLatin1(description.meaning)});
    return rows;
}

QStringList Printer::statusNames()
{
    return {QStringLiteral("none"),  QStringLiteral("printing"), QStringLiteral("paused"),
            QStringLiteral("held"),  QStringLiteral("finished"), QStringLiteral("cancelled"),
            QStringLiteral("failed")};
}

Printer::Job Printer::load() const
{
    const QMap<QString, QVariant> values = m_store.values(printingScope);
    Job job;
    job.pages = values.value(pagesName).toInt();
    job.copies = values.value(copiesName).toInt();
    job.printed = values.value(printedName).toInt();
    job.milliseconds = values.value(millisecondsName).toInt();
    job.status = values.value(statusName).toInt();
    job.condition = values.value(conditionName).toString();
    job.next = values.value(nextName).toString();
    job.nextAfter = values.value(nextAfterName).toInt();
    job.sheetsInBin = values.value(sheetsName).toInt();
    return job;
}

void Printer::save(Job &job)
{
    const int before = m_store.value(printingScope, statusName).toInt();
    job.status = statusOf(job);
    // The state has no null.
    const auto text = [](const QString &name) { return name.isNull() ? QStringLiteral("") : name; };
    const QVariantMap values{{pagesName, job.pages},       {copiesName, job.copies},
                             {printedName, job.printed},   {millisecondsName, job.milliseconds},
                             {statusName, job.status},     {conditionName, text(job.condition)},
                             {nextName, text(job.next)},   {nextAfterName, job.nextAfter},
                             {sheetsName, job.sheetsInBin}};
    for (auto value = values.begin(); value != values.end(); ++value)
        m_store.setValue(printingScope, value.key(), *value);
    if (job.status != before) {
        set(QStringLiteral("DocumentStatus"), job.status);
        set(QStringLiteral("SensorState/HeadHome"), job.status != Printing);
    }
}

void Printer::set(const QString &setting, const QVariant &value)
{
    // A captured embosser may have other sensors.
    if (m_configuration.profile().parameters().contains(setting))
        m_configuration.setValue(setting, Configuration::masterCollection(), value);
}

void Printer::count(const QString &setting)
{
    if (m_configuration.profile().parameters().contains(setting) &&
        number(setting) < std::numeric_limits<int>::max())
        m_configuration.increment(setting, Configuration::masterCollection());
}

int Printer::number(const QString &setting) const
{
    return m_configuration.value(setting).toInt();
}

int Printer::statusOf(const Job &job) const
{
    if (!job.isActive())
        return job.status;
    const ConditionDescription *const condition = descriptionOf(job.condition);
    if (condition && isNoticed(job.condition))
        return condition->endsJob ? Failed : Held;
    return m_configuration.value(QStringLiteral("PrintingPaused")).toBool() ? Paused : Printing;
}

bool Printer::isNoticed(const QString &condition) const
{
    if (number(QStringLiteral("PrintWithoutSensors")) != 0)
        return false;
    return condition != jam || (number(QStringLiteral("PaperJamDetect")) != 0 &&
                                number(QStringLiteral("SensorPaperJam")) != 0);
}

void Printer::setCondition(Job &job, const QString &condition)
{
    const auto setSensors = [this](const ConditionDescription *description, bool isThere) {
        if (!description)
            return;
        for (const auto &sensor : description->sensors)
            set(QStringLiteral("SensorState/") + sensor.first, sensor.second == isThere);
    };
    setSensors(descriptionOf(job.condition), false);
    setSensors(descriptionOf(condition), true);
    job.condition = condition;
}

void Printer::print(quint32 pages, quint32 copies, quint32 milliseconds)
{
    const QString copiesSetting = QStringLiteral("NumberOfCopies");
    const QString printedSetting = QStringLiteral("NumberOfPrintedPages");
    const QString first = QStringLiteral("FirstPageForJob");

    Store::Transaction transaction(m_store);
    Job job = load();
    if (job.isActive())
        throw failed(QStringLiteral("a job is being printed"));
    const qint64 skipped = std::max(number(first) - 1, 0);
    if (pages <= skipped)
        throw invalidArguments(
            QStringLiteral("a document of %1 pages ends before page %2, which is %3")
                .arg(pages)
                .arg(skipped + 1)
                .arg(first));
    if (copies == 0)
        copies = quint32(std::max(number(copiesSetting), 1));
    else
        m_configuration.setValue(copiesSetting, Configuration::masterCollection(), copies);
    const double total = double(pages - skipped) * copies;
    const QString objection =
        m_configuration.profile().objectionTo(printedSetting, QVariant(total));
    if (!objection.isEmpty() || total > std::numeric_limits<int>::max())
        throw invalidArguments(
            QStringLiteral("%1 pages: %2 %3").arg(total, 0, 'f', 0).arg(printedSetting, objection));
    if (milliseconds > quint32(std::numeric_limits<int>::max()))
        throw invalidArguments(QStringLiteral("%1 milliseconds are too many").arg(milliseconds));

    job.pages = int(pages - skipped);
    job.copies = int(copies);
    job.printed = 0;
    job.milliseconds = int(milliseconds);
    job.status = Printing;
    set(printedSetting, 0);
    set(QStringLiteral("NumberOfPrintedCopies"), 0);
    save(job);
    transaction.commit();
    follow();
}

quint32 Printer::step(quint32 pages)
{
    if (pages > mostAtOnce)
        throw invalidArguments(
            QStringLiteral("no more than %1 pages are printed at once").arg(mostAtOnce));
    Store::Transaction transaction(m_store);
    Job job = load();
    quint32 printed = 0;
    for (; printed < pages && job.status == Printing; ++printed) {
        printPage(job);
        save(job);
    }
    transaction.commit();
    follow();
    return printed;
}

void Printer::printPage(Job &job)
{
    ++job.printed;
    count(QStringLiteral("Counter/1"));
    set(QStringLiteral("NumberOfPrintedPages"), job.printed);

    const int page = (job.printed - 1) % job.pages + 1;
    const bool isLastOfCopy = page == job.pages;
    const QString duplexing = m_configuration.value(QStringLiteral("Duplexing")).toString();
    if (isLastOfCopy || page % pagesOnASheet(duplexing) == 0) {
        ++job.sheetsInBin;
        count(QStringLiteral("Counter/2"));
    }
    if (isLastOfCopy)
        set(QStringLiteral("NumberOfPrintedCopies"), job.printedCopies());
    if (job.printedCopies() == job.copies) {
        job.status = Finished;
        count(QStringLiteral("Counter/3"));
    } else if (isLastOfCopy && m_configuration.value(QStringLiteral("BetweenCopies")).toString() ==
                                   QLatin1String("Pause")) {
        set(QStringLiteral("PrintingPaused"), true);
    }

    const int room = number(QStringLiteral("MaxPaperInBin"));
    if (room > 0 && job.sheetsInBin >= room)
        setCondition(job, binFull);
    if (!job.next.isEmpty() && --job.nextAfter <= 0) {
        setCondition(job, job.next);
        job.next.clear();
    }
}

void Printer::cancel()
{
    Store::Transaction transaction(m_store);
    Job job = load();
    if (!job.isActive())
        throw failed(QStringLiteral("no job is being printed"));
    job.status = Cancelled;
    save(job);
    transaction.commit();
    follow();
}

void Printer::interrupt(const QString &condition, quint32 afterPages)
{
    if (!descriptionOf(condition)) {
        QStringList names;
        for (const QStringList &each : conditions())
            names += each[0];
        throw invalidArguments(QStringLiteral("there is no condition \"%1\"; there are: %2")
                                   .arg(condition, names.join(QStringLiteral(", "))));
    }
    Store::Transaction transaction(m_store);
    Job job = load();
    if (afterPages == 0) {
        setCondition(job, condition);
    } else {
        job.next = condition;
        job.nextAfter = int(std::min(afterPages, quint32(std::numeric_limits<int>::max())));
    }
    save(job);
    transaction.commit();
    follow();
}

void Printer::resolve()
{
    Store::Transaction transaction(m_store);
    Job job = load();
    if (job.condition == binFull)
        job.sheetsInBin = 0;
    setCondition(job, {});
    save(job);
    transaction.commit();
    follow();
}

void Printer::refresh()
{
    if (m_isActive)
        orSayWhy([this] { follow(); });
}

void Printer::follow()
{
    Job job = load();
    if (statusOf(job) != job.status) {
        Store::Transaction transaction(m_store);
        save(job);
        transaction.commit();
    }
    m_isActive = job.isActive();
    if (job.status != Printing || job.milliseconds == 0) {
        m_pace.stop();
    } else if (!m_pace.isActive()) {
        const int wait = job.printed == 0 ? number(QStringLiteral("WaitBeforePrinting")) * 1000 : 0;
        m_pace.start(job.milliseconds + wait);
    }
    if (job.status != m_told) {
        m_told = job.status;
        Q_EMIT changed(statusNames().value(job.status));
    }
}

void Printer::resume()
{
    orSayWhy([this] { follow(); });
}

void Printer::orSayWhy(const std::function<void()> &action)
{
    const auto say = [](const char *reason) {
        std::fprintf(stderr, "embosser-simulator: the job stops: %s\n", reason);
    };
    try {
        action();
    } catch (const Refusal &refusal) {
        say(qPrintable(refusal.message));
    } catch (const StoreError &error) {
        say(error.what());
    }
}

QVariantMap Printer::report() const
{
    const Job job = load();
    return {{QStringLiteral("status"), statusNames().value(job.status)},
            {QStringLiteral("condition"), job.condition},
            {QStringLiteral("pages"), job.pages},
            {QStringLiteral("copies"), job.copies},
            {QStringLiteral("printedPages"), job.printed},
            {QStringLiteral("printedCopies"), job.printedCopies()},
            {QStringLiteral("sheetsInBin"), job.sheetsInBin}};
}

} // namespace simulator
