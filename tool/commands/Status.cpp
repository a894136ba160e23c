// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "common/JsonText.h"
#include "library/Lookup.h"
#include "library/Session.h"
#include "library/Value.h"
#include "terminal/Output.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QQueue>

namespace tool {

namespace {

/// A line of the status: what it is called and which operation tells it.
struct Fact
{
    QString label;
    QString key;
    QString operation;
};

const QVector<Fact> &facts()
{
    static const QVector<Fact> facts{
        {QStringLiteral("Embosser type"), QStringLiteral("type"), QStringLiteral("getType")},
        {QStringLiteral("Model"), QStringLiteral("model"), QStringLiteral("getModel")},
        {QStringLiteral("Serial number"), QStringLiteral("serialNumber"),
         QStringLiteral("getSerialNo")},
        {QStringLiteral("Version number"), QStringLiteral("versionNumber"),
         QStringLiteral("getVersionInt")},
        {QStringLiteral("Firmware date"), QStringLiteral("firmwareDate"),
         QStringLiteral("getFirmwareDate")},
        {QStringLiteral("Paper feed"), QStringLiteral("feedType"), QStringLiteral("getFeedType")},
        {QStringLiteral("Print head"), QStringLiteral("headType"), QStringLiteral("getHeadType")},
    };
    return facts;
}

/// Whether the operation asks something about the embosser that is true or false.
bool isCapability(const Operation &operation)
{
    return operation.isQuery && operation.setting.isEmpty() && operation.parameters.isEmpty() &&
           operation.result.name == QLatin1String("bool");
}

/// Asks the service several things, and reports on standard error what it does not answer.
class Questions
{
public:
    explicit Questions(const Request &request) : m_request(request), m_session(request.session)
    {
        m_session.requireConnection();
    }

    void ask(const Operation &operation)
    {
        m_asked.enqueue({&operation, m_session.begin(operation)});
    }

    /// Returns the answer to what was asked first, and of which there has been none.
    QJsonValue nextAnswer()
    {
        const auto [operation, call] = m_asked.dequeue();
        const Reply reply = m_session.finish(call);
        if (!reply.error)
            return toJson(reply.value, operation->result);
        m_request.output.error(about(operation->name, *reply.error));
        m_status = ExitStatus::Failed;
        m_errors.insert(operation->name,
                        errorToJson(m_status, reason(operation->name, *reply.error)));
        return QJsonValue::Undefined;
    }

    ExitStatus status() const { return m_status; }
    const QJsonObject &errors() const { return m_errors; }

private:
    const Request &m_request;
    Session m_session;
    QQueue<QPair<const Operation *, Session::Call>> m_asked;
    ExitStatus m_status = ExitStatus::Done;
    QJsonObject m_errors;
};

ExitStatus runConnected(const Request &request)
{
    QVector<const Operation *> capabilities;
    for (const Operation &operation : request.catalogue.operations()) {
        if (isCapability(operation))
            capabilities.append(&operation);
    }
    Questions questions(request);
    for (const Fact &fact : facts())
        questions.ask(operationFor(request.catalogue, fact.operation, 0));
    for (const Operation *capability : qAsConst(capabilities))
        questions.ask(*capability);

    QJsonObject status{{QStringLiteral("connected"), true}};
    QVector<QStringList> rows{{QStringLiteral("Connected"), QStringLiteral("yes")}};
    for (const Fact &fact : facts()) {
        const QJsonValue answer = questions.nextAnswer();
        if (answer.isUndefined())
            continue;
        status.insert(fact.key, answer);
        rows.append({fact.label, toText(answer)});
    }
    QStringList names;
    for (const Operation *capability : qAsConst(capabilities)) {
        if (questions.nextAnswer().toBool())
            names.append(capability->name);
    }
    status.insert(QStringLiteral("capabilities"), QJsonArray::fromStringList(names));
    rows.append({QStringLiteral("Capabilities"), names.join(QLatin1Char(' '))});

    if (!questions.errors().isEmpty())
        status.insert(QStringLiteral("errors"), questions.errors());
    if (request.output.isJson())
        request.output.json(status);
    else
        request.output.table(rows);
    return questions.status();
}

ExitStatus runStatus(const Request &request)
{
    try {
        return runConnected(request);
    } catch (const Failure &failure) {
        const bool isConnected = failure.status() != ExitStatus::NotConnected;
        if (request.output.isJson()) {
            request.output.json(QJsonObject{
                {QStringLiteral("connected"), isConnected},
                {QStringLiteral("error"), errorToJson(failure.status(), failure.message())}});
        } else if (!isConnected) {
            request.output.table({{QStringLiteral("Connected"), QStringLiteral("no")}});
        }
        throw;
    }
}

} // namespace

Command statusCommand()
{
    Command command;
    command.name = QStringLiteral("status");
    command.summary = QStringLiteral("show the state of the service and the embosser's identity");
    command.description = QStringList{
        QStringLiteral("Shows whether the configuration service is connected, and the embosser's "
                       "model, serial number, firmware and capabilities: the queries that return "
                       "true, such as hasFeeder."),
    };
    command.run = runStatus;
    return command;
}

} // namespace tool
