#pragma once
// The program's place in the desktop's panel: a symbol with a text, which can be pressed and has a menu. Main
// thread only. Nothing here fails: where no desktop shows such things, nothing is seen, and `hasHost` says
// so.

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// In pixels of the display, from the corner of all screens together.
struct ScreenPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

struct StatusItemState {
    std::string title;               ///< what it is, always the same
    std::string symbolName;          ///< of the program's own set
    std::string accessibilityValue;  ///< what it says now
    bool needsAttention = false;     ///< the person ought to look

    friend bool operator==(const StatusItemState&, const StatusItemState&) = default;
};

struct StatusMenuItem {
    std::string title;
    std::string symbolName;
    std::function<void()> action;  ///< none: a separator
};

struct StatusItemActivation {
    std::optional<ScreenPoint> place;  ///< where the item was pressed, where the desktop tells
    std::string activationToken;       ///< the leave to bring a window forward; empty for none
};

class StatusItem {
public:
    virtual ~StatusItem() = default;

    virtual void setState(StatusItemState state) = 0;
    /// For desktops that show a menu. Its actions are called from the event loop.
    virtual void setMenu(std::vector<StatusMenuItem> items) = 0;
    /// The item was pressed. One observer; a new one replaces the old.
    virtual void onActivate(std::function<void(StatusItemActivation)> observer) = 0;

    /// Something shows the item. False until the desktop has said so.
    [[nodiscard]] virtual bool hasHost() const = 0;
    /// Told after `hasHost` changed. One observer; a new one replaces the old.
    virtual void onHostChange(std::function<void()> observer) = 0;
};

}  // namespace cairnfield
