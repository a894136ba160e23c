// SPDX-License-Identifier: MIT

#include "library/Sequence.h"

#include "common/Failure.h"
#include "library/Lookup.h"
#include "library/Session.h"

namespace tool {

void writeTogether(const QVariantMap &values, const Catalogue &catalogue, Session *session)
{
    const Reply reply =
        session->call(operationFor(catalogue, QStringLiteral("processSequence"), 1), {values});
    if (reply.error)
        throw Failure(ExitStatus::Failed, *reply.error);
    if (!reply.value.toBool())
        throw Failure(ExitStatus::Failed, QStringLiteral("the service refused"));
}

} // namespace tool
