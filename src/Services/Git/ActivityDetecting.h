#pragma once
// Whether somebody has touched a worktree very recently, so that hands are kept off a checkout that is in
// use.

#include "Shared/Concurrency/Task.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <optional>
#include <string>

namespace cairnfield {

struct ActivitySignal {
    bool isActive = false;              ///< activity within the window
    std::optional<Date> lastActivity;   ///< the newest modification found
    std::optional<std::string> reason;  ///< only when active

    friend bool operator==(const ActivitySignal&, const ActivitySignal&) = default;
};

class ActivityDetecting {
public:
    virtual ~ActivityDetecting() = default;

    /// Cannot fail: what cannot be read counts as absent. `window` in seconds.
    virtual Task<ActivitySignal> activity(FilePath path, double window) = 0;
};

/// Looks at the root directory and the Git control files only; a change deep in the tree goes unseen, which
/// keeps it cheap enough for every worktree at every refresh.
class FileSystemActivityDetector final : public ActivityDetecting {
public:
    explicit FileSystemActivityDetector(const WallClock& clock) : clock_(clock) {}
    Task<ActivitySignal> activity(FilePath path, double window) override;

private:
    const WallClock& clock_;
};

}  // namespace cairnfield
