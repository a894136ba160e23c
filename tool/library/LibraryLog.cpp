// SPDX-License-Identifier: MIT

#include "library/LibraryLog.h"

#include "common/Quoting.h"

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
