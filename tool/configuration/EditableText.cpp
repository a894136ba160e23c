// SPDX-License-Identifier: MIT

#include "configuration/EditableText.h"

#include "common/Failure.h"
#include "common/JsonText.h"
#include "common/Quoting.h"
#include "library/Catalogue.h"
#include "library/Value.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

namespace tool {

namespace {

const QLatin1Char quote('"');

const QString head = QStringLiteral(
    "# The settings of the embosser. What is changed here is written when the editor "
    "is left,\n"
    "# all of it or, if something is wrong with it, nothing. A setting whose line is "
    "taken out\n"
    "# stays as it is. A text may stand in quotes, as in JSON: \"two\\nlines\".\n");

/// The text in quotes if it would not be read again, or shown, as it is.
QString quotedIfNeeded(const QString &text)
{
    if (text == printable(text) && text == text.trimmed() && !text.startsWith(quote))
        return text;
    QString result;
    for (const QChar character : text) {
        const QString shown = printable(character);
        if (character == quote)
            result += QStringLiteral("\\\"");
        else if (shown.startsWith(QLatin1String("\\x")))
            result += QStringLiteral("\\u00") + shown.mid(2);
        else
            result += shown;
    }
    return quote + result + quote;
}

/// The key of the number, unless it would be read as another number.
std::optional<QString> keyOf(const QJsonValue &value, const QJsonObject &choices,
                             const ValueType &type)
{
    for (auto choice = choices.begin(); choice != choices.end(); ++choice) {
        if (choice.value() != value)
            continue;
        try {
            argumentFromText(choice.key(), type);
        } catch (const Failure &) {
            return choice.key();
        }
    }
    return {};
}

} // namespace

QString editableText(const QVector<QJsonObject> &descriptions, const Catalogue &catalogue)
{
    QString text = head;
    for (const QJsonObject &description : descriptions) {
        const auto told = [&](const char *key) {
            return printable(description.value(QLatin1String(key)).toString());
        };
        const QString name = told("name");
        const QString range = told("range");
        text += QStringLiteral("\n# %1\n").arg(told("meaning"));
        if (!range.isEmpty())
            text += QStringLiteral("# %1\n").arg(range);
        const QJsonValue value = description.value(QLatin1String("value"));
        if (value.isUndefined()) {
            text += QStringLiteral("# %1: the service does not tell it\n").arg(name);
            continue;
        }
        const auto key = keyOf(value, description.value(QLatin1String("choices")).toObject(),
                               catalogue.setting(name)->valueType());
        text += QStringLiteral("%1 = %2").arg(name, quotedIfNeeded(key.value_or(toText(value))));
        text = text.trimmed() + QLatin1Char('\n');
    }
    return text;
}

std::optional<Assignment> assignmentIn(const QString &line)
{
    const QString text = line.trimmed();
    if (text.isEmpty() || text.startsWith(QLatin1Char('#')))
        return {};
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals < 1)
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("this is neither 'NAME = VALUE' nor a comment"));
    const QString name = text.left(equals).trimmed();
    const QString value = text.mid(equals + 1).trimmed();
    if (!value.startsWith(quote))
        return Assignment{name, value};
    const QJsonValue quoted = QJsonDocument::fromJson('[' + value.toUtf8() + ']').array().first();
    if (!quoted.isString())
        throw Failure(ExitStatus::Usage,
                      QStringLiteral("%1: this is no text in quotes, as JSON has it").arg(name));
    return Assignment{name, quoted.toString()};
}

} // namespace tool
