// SPDX-License-Identifier: MIT

#ifndef LIBCONFIGURATIONMANAGER_WIRETYPES_H
#define LIBCONFIGURATIONMANAGER_WIRETYPES_H

namespace libconfigurationmanager {
namespace detail {

/// Makes the compound types known to the meta-type system and to Qt D-Bus; may be repeated.
void registerWireTypes();

// Their meta-types. A section is an element of a ConfigurationList.
int propListType();
int configurationListType();
int sectionType();

} // namespace detail
} // namespace libconfigurationmanager

#endif
