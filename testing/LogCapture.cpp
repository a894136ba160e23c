// SPDX-License-Identifier: MIT

#include "LogCapture.h"

#include <QtCore/QMutexLocker>

#include <utility>

LogCapture *LogCapture::s_current = nullptr;

LogCapture::LogCapture() : m_previous(qInstallMessageHandler(nullptr))
{
    Q_ASSERT(!s_current);
    s_current = this;
    // Only now: other threads may log at any time.
    qInstallMessageHandler(handle);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

QVector<LogLine> LogCapture::takeLines()
{
    const QMutexLocker locker(&m_mutex);
    return std::exchange(m_lines, {});
}

void LogCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    const QMutexLocker locker(&s_current->m_mutex);
    s_current->m_lines.append({type, QString::fromLatin1(context.category), text,
                               QString::fromLatin1(context.function),
                               QString::fromLatin1(context.file), context.line});
}
