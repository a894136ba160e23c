// SPDX-License-Identifier: MIT

#include "TabStops.h"

void TabStops::setDistance(int cells)
{
    m_isBusy = true;
    m_manager.setTabSize(cells).then(
        this, [this] { showNotice(QStringLiteral("The tab stops are set.")); },
        [this](const QDBusError &error) {
            showNotice(QStringLiteral("The tab stops stay as they are: %1").arg(error.message()));
        });
}

void TabStops::showNotice(const QString &notice)
{
    m_isBusy = false;
    m_notice = notice;
}
