#pragma once
// This program among those that the desktop starts when the person logs in. Main thread only; every answer is
// read anew, since the person and other programs change it too.

namespace cairnfield {

enum class LoginItemStatus {
    notRegistered,     ///< the desktop knows nothing of it
    enabled,           ///< it will be started
    requiresApproval,  ///< somebody switched it off in the desktop's own settings
    notFound,          ///< registered, but what would be started is not this program
};

class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// Cannot fail.
    [[nodiscard]] virtual LoginItemStatus status() const = 0;
    /// Throws std::system_error; then the desktop's state is as before.
    virtual void registerItem() = 0;
    /// Not being registered is success. Throws as registerItem does.
    virtual void unregisterItem() = 0;
};

}  // namespace cairnfield
