#pragma once
// What a stream has to report and when: at once after a quiet period, otherwise `latency` after the last
// report. A plain value that is told the time. Bounded: a root with too many changed directories is reported
// as a whole.

#include "Shared/Concurrency/BootClock.h"
#include "Shared/Paths/FilePath.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace cairnfield {

class ChangeBatch {
public:
    using Instant = BootClock::time_point;
    static constexpr std::size_t maximumPaths = 8192;  ///< of one root in one batch

    ChangeBatch(const std::vector<FilePath>& roots, std::chrono::milliseconds latency);

    /// A directory below the root of this position; `relative` is empty for the root itself.
    void add(std::size_t root, std::string_view relative);
    /// From now on, and until it is complete again, a root is part of every batch. False when it was so
    /// already.
    bool setIncomplete(std::size_t root) { return !std::exchange(roots_[root].isIncomplete, true); }
    bool setComplete(std::size_t root) { return std::exchange(roots_[root].isIncomplete, false); }

    [[nodiscard]] bool isEmpty() const noexcept { return isEmpty_; }
    /// When to `take` what is there; none when nothing is. In the past: at once.
    [[nodiscard]] std::optional<Instant> due() const;
    /// Everything, each path once; the batch is empty again.
    [[nodiscard]] std::vector<FilePath> take(Instant now);

    /// Changes with every `take`, and with `renumber`: what was added under this number need not be added
    /// again.
    [[nodiscard]] std::uint32_t number() const noexcept { return number_; }
    /// Paths have changed: what was added may have to be added again.
    void renumber() noexcept { ++number_; }

private:
    struct Root {
        FilePath path;
        std::unordered_set<std::string> changed;  ///< relative
        bool isWhole = false;                     ///< too many to tell apart
        bool isIncomplete = false;
    };

    std::vector<Root> roots_;
    const std::chrono::milliseconds latency_;
    std::optional<Instant> lastTaken_;
    std::uint32_t number_ = 1;
    bool isEmpty_ = true;
};

}  // namespace cairnfield
