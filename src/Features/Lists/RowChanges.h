#pragma once
// How a list gets from the rows it shows to the rows it should show with as little disturbance as possible.
// Pure, any thread. A row is known by a key that is unique within its list.

#include <cstdint>
#include <span>
#include <vector>

namespace cairnfield {

using RowKey = std::uint64_t;

/// Neighbouring rows.
struct RowRun {
    int first = 0;
    int count = 0;

    friend bool operator==(const RowRun&, const RowRun&) = default;
};

/// The steps from old to new rows, to be taken in this order: the removals, then the reordering of what is
/// left, then the insertions.
struct RowChanges {
    std::vector<RowRun> removals;    ///< positions in the old list, the last run first
    bool isReordered = false;        ///< the rows that stay have another order than before
    std::vector<RowRun> insertions;  ///< positions in the new list, the first run first

    [[nodiscard]] bool isEmpty() const { return removals.empty() && !isReordered && insertions.empty(); }
    /// How many steps; a list that would take very many is better shown anew.
    [[nodiscard]] std::size_t runs() const { return removals.size() + insertions.size(); }
};

/// Linear in the number of rows.
[[nodiscard]] RowChanges rowChanges(std::span<const RowKey> before, std::span<const RowKey> after);

}  // namespace cairnfield
