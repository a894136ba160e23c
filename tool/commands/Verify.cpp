// SPDX-License-Identifier: MIT

#include "commands/Commands.h"

#include "library/Session.h"
#include "terminal/Output.h"
#include "verification/Verification.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

namespace tool {

namespace {

QJsonObject toJson(const Verification &verification)
{
    QJsonArray families;
    for (const FamilyReport &report : verification.families()) {
        QJsonArray findings;
        for (const Finding &finding : report.findings)
            findings.append(QJsonObject{{QStringLiteral("subject"), finding.subject},
                                        {QStringLiteral("finding"), finding.text}});
        families.append(
            QJsonObject{{QStringLiteral("family"), report.family},
                        {QStringLiteral("methods"), report.methods},
                        {QStringLiteral("calls"), report.calls},
                        {QStringLiteral("notJudged"), QJsonArray::fromStringList(report.notJudged)},
                        {QStringLiteral("findings"), findings}});
    }
    return {{QStringLiteral("introspection"), verification.isIntrospected()},
            {QStringLiteral("families"), families},
            {QStringLiteral("findings"), verification.findings()}};
}

void print(const Verification &verification, Output &output)
{
    QVector<QStringList> rows;
    for (const FamilyReport &report : verification.families()) {
        rows.append({report.family, QString::number(report.methods), QString::number(report.calls),
                     QString::number(report.notJudged.size()),
                     QString::number(report.findings.size())});
    }
    output.table(rows,
                 {QStringLiteral("Family"), QStringLiteral("methods"), QStringLiteral("calls"),
                  QStringLiteral("not judged"), QStringLiteral("findings")});
    for (const FamilyReport &report : verification.families()) {
        if (report.findings.isEmpty())
            continue;
        QVector<QStringList> findings;
        for (const Finding &finding : report.findings)
            findings.append({finding.subject, finding.text});
        output.heading(report.family);
        output.table(findings);
    }
    if (!verification.isIntrospected())
        output.note(QStringLiteral("the service offers no introspection: only what can be read has "
                                   "been judged"));
}

ExitStatus runVerify(const Request &request)
{
    Session session(request.session);
    session.requireConnection();
    Verification verification(session, request.catalogue);
    verification.run(request.session.timeout);
    if (request.output.isJson())
        request.output.json(toJson(verification));
    else
        print(verification, request.output);
    return verification.findings() == 0 ? ExitStatus::Done : ExitStatus::Failed;
}

} // namespace

Command verifyCommand()
{
    Command command;
    command.name = QStringLiteral("verify");
    command.summary = QStringLiteral("judge the service by the contract");
    command.description = QStringList{
        QStringLiteral(
            "Judges whether the service is as programs expect it: every method is there and takes "
            "the right arguments, every answer is of the right type, bounds enclose the values, "
            "and what a setting holds is in its value list. No setting is changed: methods that "
            "write are judged by what introspection tells of them, the others are called, with all "
            "names that the service tells."),
        QStringLiteral(
            "Shows for each group of operations how many methods and calls have been judged, and "
            "what deviates. Not judged are methods that introspection does not tell of or that "
            "have answered no call, such as a query by key when no key is known. The exit status "
            "is 1 if there are findings."),
    };
    command.run = runVerify;
    return command;
}

} // namespace tool
