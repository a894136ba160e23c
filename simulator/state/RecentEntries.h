// SPDX-License-Identifier: MIT

#ifndef SIMULATOR_STATE_RECENTENTRIES_H
#define SIMULATOR_STATE_RECENTENTRIES_H

namespace simulator {

/// Appends an entry to a list that has the last 1000 entries only.
template<typename List>
void appendRecent(List &list, const typename List::value_type &entry)
{
    if (list.size() == 1000)
        list.removeFirst();
    list.append(entry);
}

} // namespace simulator

#endif
