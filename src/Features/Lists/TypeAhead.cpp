#include "Features/Lists/TypeAhead.h"

#include "Shared/Text/Text.h"

#include <algorithm>

namespace cairnfield {

std::optional<int> TypeAhead::find(std::string_view typed, Instant now, int current, int rowCount,
                                   const std::function<std::optional<std::string>(int)>& name) {
    if (now - lastTyped_ > pause) prefix_.clear();
    lastTyped_ = now;
    prefix_ += lowercasedASCII(typed);
    if (prefix_.empty() || rowCount < 1) return std::nullopt;

    std::string wanted = prefix_;
    if (std::ranges::all_of(wanted, [&](char letter) { return letter == wanted.front(); })) wanted.resize(1);

    const int from = std::max(current, 0) + (current >= 0 && wanted.size() == 1 ? 1 : 0);
    for (int step = 0; step < rowCount; ++step) {
        const int row = (from + step) % rowCount;
        const auto text = name(row);
        if (text && lowercasedASCII(*text).starts_with(wanted)) return row;
    }
    return std::nullopt;
}

}  // namespace cairnfield
