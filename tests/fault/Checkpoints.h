#pragma once
// The moments of a run at which a driver can step in. Each is printed with its number and name; at the chosen
// ones the run stands still until the driver says how to go on. The driver may also kill the process there.
//
// Also the run's clock for dates, since it is at checkpoints that it jumps. Any thread.

#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Time/Date.h"
#include "driver/JsonLines.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {

class Checkpoints final : public WallClock {
public:
    /// Stands still at the numbers of `numbers`, and at the first checkpoint whose name begins with each of
    /// `names`. Answers come line by line through `answers`: "go", or "jump SECONDS" before it. Its end means
    /// "go" for ever. `ahead` is how far the clock is ahead of the real one; with `at` it stands still there,
    /// but for its jumps.
    Checkpoints(JsonLines& lines, FileDescriptor answers, std::set<std::size_t> numbers,
                std::vector<std::string> names, std::chrono::seconds ahead,
                std::optional<std::chrono::seconds> at);

    void reach(const std::string& name);

    [[nodiscard]] Date now() const override;

private:
    [[nodiscard]] bool standsStillAt(std::size_t number, const std::string& name);
    void waitForGo();
    [[nodiscard]] std::string answerLine();

    JsonLines& lines_;
    const FileDescriptor answers_;
    const std::set<std::size_t> numbers_;
    const bool standsStill_;
    std::atomic<std::int64_t> seconds_;  ///< ahead of the real clock, or since 1970 where it stands still

    std::mutex mutex_;
    std::vector<std::string> names_;  // guarded by mutex_
    std::size_t reached_ = 0;         // guarded by mutex_
};

}  // namespace cairnfield
