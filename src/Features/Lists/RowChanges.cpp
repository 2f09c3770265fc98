#include "Features/Lists/RowChanges.h"

#include <algorithm>
#include <unordered_set>

namespace cairnfield {

namespace {

using KeySet = std::unordered_set<RowKey>;

// Runs of rows that the set does not hold, first run first.
std::vector<RowRun> runsMissing(std::span<const RowKey> keys, const KeySet& set) {
    std::vector<RowRun> runs;
    for (int row = 0; row < static_cast<int>(keys.size()); ++row) {
        if (set.contains(keys[static_cast<std::size_t>(row)])) continue;
        if (!runs.empty() && runs.back().first + runs.back().count == row) {
            ++runs.back().count;
        } else {
            runs.push_back({row, 1});
        }
    }
    return runs;
}

}  // namespace

RowChanges rowChanges(std::span<const RowKey> before, std::span<const RowKey> after) {
    RowChanges changes;
    if (std::ranges::equal(before, after)) return changes;

    const KeySet old(before.begin(), before.end());
    const KeySet next(after.begin(), after.end());
    changes.removals = runsMissing(before, next);
    std::ranges::reverse(changes.removals);
    changes.insertions = runsMissing(after, old);

    std::size_t position = 0;
    for (const RowKey key : before) {
        if (!next.contains(key)) continue;
        while (!old.contains(after[position])) ++position;
        if (after[position++] != key) {
            changes.isReordered = true;
            break;
        }
    }
    return changes;
}

}  // namespace cairnfield
