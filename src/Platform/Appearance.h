#pragma once
// What the desktop says about how its windows should look. Main thread only; observers are told after each
// change.

#include <cstdint>
#include <functional>
#include <optional>

namespace cairnfield {

struct AppearanceSettings {
    bool isDark = false;
    bool prefersHighContrast = false;
    bool prefersReducedMotion = false;
    std::optional<std::uint32_t> accentColor;  ///< 0xRRGGBB; absent when the desktop names none

    friend bool operator==(const AppearanceSettings&, const AppearanceSettings&) = default;
};

class Appearance {
public:
    virtual ~Appearance() = default;

    [[nodiscard]] virtual AppearanceSettings settings() const = 0;
    /// At most one observer; a new one replaces the old.
    virtual void onChange(std::function<void()> observer) = 0;
};

}  // namespace cairnfield
