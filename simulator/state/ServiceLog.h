// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_SERVICELOG_H
#define SIMULATOR_STATE_SERVICELOG_H

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace simulator {

/// The service's own log of the calls it gets; off until it is switched on. Never has a value.
class ServiceLog
{
public:
    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled) { m_enabled = enabled; }

    /// `outcome` is the name of a D-Bus error or of a fault, or empty.
    void add(const QString &method, const QString &outcome);
    void clear() { m_lines.clear(); }

    /// The last lines, the oldest first.
    QStringList lines() const { return m_lines; }

private:
    bool m_enabled = false;
    QStringList m_lines;
};

} // namespace simulator

#endif
