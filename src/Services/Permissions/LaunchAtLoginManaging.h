#pragma once

namespace cairnfield {

/// Whether the program starts at login. Main thread only.
class LaunchAtLoginManaging {
public:
    virtual ~LaunchAtLoginManaging() = default;
    /// Asks anew. Cannot fail.
    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// Goes to the desktop also when nothing would change. Throws std::system_error.
    virtual void setEnabled(bool enabled) = 0;
};

}  // namespace cairnfield
