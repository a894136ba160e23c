// SPDX-License-Identifier: MIT

#include "library/LibraryLog.h"

#include <QtCore/QByteArray>
#include <QtCore/QLoggingCategory>

#include <utility>

namespace tool {

namespace {

const char libraryCategory[] = "libconfigurationmanager.ConfigurationManager";
const char libraryFunctions[] = "libconfigurationmanager::detail::ConfigurationManager";

QLoggingCategory::CategoryFilter previousFilter = nullptr;

/// Leaves the user's rules as they are, but for what the failures are read from.
void keepCriticalLines(QLoggingCategory *category)
{
    previousFilter(category);
    category->setEnabled(QtCriticalMsg, true);
}

/// The character that QDebug names by a letter, or else the one that it has put a backslash before.
QChar escapedCharacter(QChar name)
{
    const QString names = QStringLiteral("bfnrt");
    const QString characters = QStringLiteral("\b\f\n\r\t");
    const int index = names.indexOf(name);
    return index < 0 ? name : characters[index];
}

/// Takes back the quotes and escapes with which QDebug prints a QString: "\n", "\u0001" and, above
/// U+FFFF, "\U000E0001".
QString unquoted(const QString &text)
{
    QString result;
    for (int i = 1; i < text.size() - 1; ++i) {
        if (text[i] != QLatin1Char('\\')) {
            result += text[i];
            continue;
        }
        const QChar escape = text[++i];
        if (escape.toLower() != QLatin1Char('u')) {
            result += escapedCharacter(escape);
            continue;
        }
        const int digits = escape.isLower() ? 4 : 8;
        const uint character = text.midRef(i + 1, digits).toUInt(nullptr, 16);
        if (QChar::requiresSurrogates(character)) {
            result += QChar(QChar::highSurrogate(character));
            result += QChar(QChar::lowSurrogate(character));
        } else {
            result += QChar(character);
        }
        i += digits;
    }
    return result;
}

} // namespace

LibraryLog *LibraryLog::s_current = nullptr;

LibraryLog::LibraryLog() : m_previous(qInstallMessageHandler(nullptr))
{
    Q_ASSERT(!s_current);
    s_current = this;
    // Only now: other threads may log at any time.
    qInstallMessageHandler(handle);
    previousFilter = QLoggingCategory::installFilter(nullptr);
    QLoggingCategory::installFilter(keepCriticalLines);
}

LibraryLog::~LibraryLog()
{
    QLoggingCategory::installFilter(previousFilter);
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

std::optional<LibraryLog::Failure> LibraryLog::takeFailure()
{
    return std::exchange(m_failure, std::nullopt);
}

void LibraryLog::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (qstrcmp(context.category, libraryCategory) == 0)
        s_current->m_failure = {true, text};
    else if (type == QtCriticalMsg && QByteArray(context.function).contains(libraryFunctions))
        s_current->m_failure = {false, unquoted(text)};
    else
        s_current->m_previous(type, context, text);
}

} // namespace tool
