#pragma once
// Finding a row by typing the start of its name. Letters typed in quick succession make one prefix; after a
// pause a new one begins. Confined to the main thread.

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

class TypeAhead {
public:
    using Instant = std::chrono::steady_clock::time_point;

    /// A letter that comes later than this after the last one starts over.
    static constexpr std::chrono::milliseconds pause{1000};

    /// Adds what was typed and answers the row that it leads to: the first whose name starts with the prefix,
    /// case aside, looked for from the current row onwards and round the end. The first letter of a prefix,
    /// and one letter typed again and again, look from the row after the current one, so that they step
    /// through what starts with it. `name` gives the text of a row, absent for rows that cannot be chosen;
    /// `current` is -1 for none.
    [[nodiscard]] std::optional<int> find(std::string_view typed, Instant now, int current, int rowCount,
                                          const std::function<std::optional<std::string>(int)>& name);

private:
    std::string prefix_;  ///< folded
    Instant lastTyped_{};
};

}  // namespace cairnfield
