// SPDX-License-Identifier: MIT

#include "commandline/Seconds.h"

#include "common/Failure.h"

#include <cmath>

namespace tool {

std::chrono::milliseconds secondsFrom(const QString &text)
{
    constexpr double most = 86400;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber || !(number >= 0 && number <= most)) {
        throw Failure(
            ExitStatus::Usage,
            QStringLiteral("'%1' is not a number of seconds from 0 to %2").arg(text).arg(most));
    }
    // What is not 0 stays so.
    return std::chrono::milliseconds(qint64(std::ceil(number * 1000)));
}

} // namespace tool
