// SPDX-License-Identifier: MIT

#include "methods/Call.h"

namespace simulator {

QVariant Call::argument(const QString &name) const
{
    for (int i = 0; i < m_arguments.size(); ++i) {
        if (m_method.arguments.at(i).name == name)
            return m_arguments.at(i);
    }
    return {};
}

} // namespace simulator
