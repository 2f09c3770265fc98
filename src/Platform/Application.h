#pragma once
// The program as the desktop sees it: something that can be brought forward, with windows. Main thread only;
// never fails.

#include <vector>

namespace cairnfield {

class ApplicationWindow {
public:
    virtual ~ApplicationWindow() = default;

    /// False for panels, menus and the like, which a person does not work in.
    [[nodiscard]] virtual bool canBecomeMain() const = 0;
    /// Shows the window above the others and gives it the keyboard, as far as the desktop lets us.
    virtual void bringForward() = 0;
};

class Application {
public:
    virtual ~Application() = default;

    /// Makes this the program that the person works with, whatever is in front now. Makes no window.
    virtual void activate() = 0;
    /// Those that exist now, in the desktop's order. Good until control returns to the event loop.
    [[nodiscard]] virtual std::vector<ApplicationWindow*> windows() = 0;
};

}  // namespace cairnfield
