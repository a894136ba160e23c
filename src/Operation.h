// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_OPERATION_H
#define LIBCONFIGURATIONMANAGER_OPERATION_H

#include "Slot.h"

#include <QtCore/QMetaMethod>

namespace libconfigurationmanager {
namespace detail {

/// Where the operations stand, as the log names it.
constexpr char sourceFile[] = "src/ConfigurationManager_p.cpp";

enum OperationTrait {
    NoTrait = 0,
    IsConst = 1,
    SendsCollectionId = 2,
    EndsInFlag = 4, ///< which goes after the collection id
    TakesTextByValue = 8,
    SaysNotConnectedWithCapital = 16,
};

/// What tells one operation from the others, in 32 bits: a constant without data or relocations.
///
/// Its name, types and signature stand in the meta-object already.
class Operation
{
public:
    constexpr Operation(Slot slot, int line, int traits)
        : m_slot(quint32(slot)), m_line(quint32(line)), m_traits(quint32(traits))
    {
    }

    constexpr Slot slot() const { return Slot(m_slot); }

    /// What the meta-object of the private class says of the operation.
    QMetaMethod metaMethod() const;

    /// The line in sourceFile.
    constexpr int line() const { return int(m_line); }

    constexpr bool has(OperationTrait trait) const { return m_traits & trait; }

private:
    quint32 m_slot : 11;
    quint32 m_line : 16;
    quint32 m_traits : 5;
};

static_assert(sizeof(Operation) == 4);

/// The remote method of an operation that has not its own name; null for the others.
const char *remoteMethodOfAnotherName(Slot slot);

/// A parameter's value as QVariant takes it in: nothing is copied before the call is made.
struct Argument
{
    int type;
    const void *value;
};

} // namespace detail
} // namespace libconfigurationmanager

#endif
