// SPDX-License-Identifier: MIT

#include "terminal/ProgressBar.h"

#include <QtCore/QString>
#include <QtCore/QTextStream>

#include <cstdio>

namespace tool {

namespace {

const int barWidth = 40;

void redraw(const QString &text)
{
    QTextStream(stderr) << QStringLiteral("\r\x1b[K") << text;
}

} // namespace

ProgressBar::ProgressBar(int steps, bool isShown) : m_steps(steps), m_isShown(isShown) {}

ProgressBar::~ProgressBar()
{
    if (m_isShown)
        redraw(QString());
}

void ProgressBar::step()
{
    ++m_done;
    if (!m_isShown)
        return;
    const int filled = barWidth * m_done / m_steps;
    const QString bar = QString(filled, QLatin1Char('#')).leftJustified(barWidth);
    redraw(QStringLiteral("[%1] %2/%3").arg(bar).arg(m_done).arg(m_steps));
}

} // namespace tool
