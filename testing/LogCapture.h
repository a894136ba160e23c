// SPDX-License-Identifier: MIT

#ifndef TESTING_LOGCAPTURE_H
#define TESTING_LOGCAPTURE_H

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtCore/QtGlobal>

struct LogLine
{
    QtMsgType type;
    QString category;
    QString text;
    QString function;
    QString file;
    int line;
};

/// Collects what is logged, from any thread, instead of having it printed.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    Q_DISABLE_COPY(LogCapture)

    /// Returns the lines so far and forgets them.
    QVector<LogLine> takeLines();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    static LogCapture *s_current;
    const QtMessageHandler m_previous;
    QMutex m_mutex;
    QVector<LogLine> m_lines;
};

#endif
