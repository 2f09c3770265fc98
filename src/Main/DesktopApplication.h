#pragma once
// The program's windows as the rest of the program sees them. Main thread only.

#include "Main/MainWindow.h"
#include "Main/PanelWindow.h"
#include "Platform/Application.h"

namespace cairnfield {

class DesktopApplication final : public Application {
public:
    /// Both outlive this.
    DesktopApplication(MainWindow& main, PanelWindow& panel) : main_(main), panel_(panel) {}

    /// On these desktops a program comes forward with its windows and not otherwise.
    void activate() override {}
    /// The main window counts while it is closed, too: bringing it forward opens it again.
    [[nodiscard]] std::vector<ApplicationWindow*> windows() override {
        if (isEnding_) return {};
        if (panel_.isOpen()) return {&panel_, &main_};
        return {&main_};
    }

    /// From now on no window comes forward.
    void end() { isEnding_ = true; }

private:
    MainWindow& main_;
    PanelWindow& panel_;
    bool isEnding_ = false;
};

}  // namespace cairnfield
