// SPDX-License-Identifier: MIT

#include "program/Options.h"

#include "bus/Faults.h"
#include "model/Profile.h"
#include "program/Documentation.h"

#include <QtCore/QCommandLineParser>

#include <cstdio>
#include <cstdlib>

namespace simulator {

namespace {

const QString defaultModel = QStringLiteral("Kestan");

QString fileOfModel(const QString &model)
{
    const QStringList models = Profile::builtInModels();
    if (!models.contains(model))
        throw UsageError(QStringLiteral("there is no model \"%1\"; there are: %2")
                             .arg(model, models.join(QStringLiteral(", ")))
                             .toStdString());
    return Profile::fileOfBuiltIn(model);
}

QString faultKinds()
{
    QString text;
    for (const QStringList &kind : Faults::kinds())
        text += QStringLiteral("%1: %2\n").arg(kind[0], kind[1]);
    return text;
}

} // namespace

Options optionsFrom(const QStringList &arguments)
{
    const QCommandLineOption model(
        QStringLiteral("model"),
        QStringLiteral("Simulate this model (default: %1).").arg(defaultModel), ValueName::model(),
        defaultModel);
    const QCommandLineOption listModels(QStringLiteral("list-models"),
                                        QStringLiteral("List the models and exit."));
    const QCommandLineOption profile(QStringLiteral("profile"),
                                     QStringLiteral("Simulate the model that a file describes."),
                                     ValueName::file());
    const QCommandLineOption state(
        QStringLiteral("state"),
        QStringLiteral("Keep the state in a file (default: in memory, lost at the end)."),
        ValueName::file());
    const QCommandLineOption usb(
        QStringLiteral("usb"),
        QStringLiteral("The directory that stands for the USB medium (default: none is there)."),
        ValueName::directory());
    QCommandLineOption fault(QStringLiteral("fault"),
                             QStringLiteral("Let the next calls of a method, or of any (*), meet a "
                                            "fault; may be repeated."),
                             QStringLiteral("fault:method[:calls[:detail]]"));
    QCommandLineOption generate(QStringLiteral("generate"), {}, QStringLiteral("kind"));
    generate.setFlags(QCommandLineOption::HiddenFromHelp);

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Simulates the configuration service of a Braille embosser on the system bus, or on the\n"
        "bus that DBUS_SYSTEM_BUS_ADDRESS names."));
    const QList<QCommandLineOption> documented{parser.addHelpOption(),
                                               parser.addVersionOption(),
                                               model,
                                               listModels,
                                               profile,
                                               state,
                                               usb,
                                               fault};
    fault.setDescription(fault.description() + QStringLiteral(" The faults are:\n") + faultKinds());
    parser.addOptions({model, listModels, profile, state, usb, fault, generate});
    if (!parser.parse(arguments))
        throw UsageError(parser.errorText().toStdString());
    parser.process(arguments);

    if (parser.isSet(generate)) {
        const QString text = documentation(parser.value(generate), documented);
        std::fputs(text.toUtf8().constData(), stdout);
        std::exit(EXIT_SUCCESS);
    }
    if (!parser.positionalArguments().isEmpty())
        throw UsageError(QStringLiteral("unexpected argument \"%1\"; see --help")
                             .arg(parser.positionalArguments().constFirst())
                             .toStdString());
    for (const QCommandLineOption &each : {profile, state, usb}) {
        if (parser.isSet(each) && parser.value(each).isEmpty())
            throw UsageError(QStringLiteral("--%1 needs the name of a %2")
                                 .arg(each.names().constFirst(), each.valueName())
                                 .toStdString());
    }
    if (parser.isSet(model) && parser.isSet(profile))
        throw UsageError("--model and --profile exclude each other");
    if (parser.isSet(listModels)) {
        for (const QString &name : Profile::builtInModels())
            std::puts(qPrintable(name));
        std::exit(EXIT_SUCCESS);
    }
    return {parser.isSet(profile) ? parser.value(profile) : fileOfModel(parser.value(model)),
            parser.value(state), parser.value(usb), parser.values(fault)};
}

} // namespace simulator
