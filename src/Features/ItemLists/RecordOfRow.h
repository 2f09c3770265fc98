#pragma once
// From a row back to what it shows.

#include "Features/ItemLists/ItemListModel.h"

#include <algorithm>
#include <vector>

namespace cairnfield {

/// The record that the row stands for in a list that may have moved on since the rows were shown: the one at
/// the row's own place, unless it has another identity. Null when there is none.
template <class Record>
[[nodiscard]] const Record* recordOfRow(const ItemListModel& rows, int row,
                                        const std::vector<Record>& records) {
    const ListItem* item = rows.at(row);
    if (!item) return nullptr;
    const auto place = static_cast<std::size_t>(row);
    if (place < records.size() && records[place].id == item->id) return &records[place];
    const auto found = std::ranges::find(records, item->id, &Record::id);
    return found == records.end() ? nullptr : &*found;
}

}  // namespace cairnfield
