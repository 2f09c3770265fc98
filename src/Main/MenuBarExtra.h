#pragma once
// The item in the desktop's panel brought together: it shows what the view model says, opens the panel, and
// gives its actions to desktops that draw a menu. Main thread only.

#include "Features/MenuBar/MenuBarViewModel.h"
#include "Main/PanelWindow.h"
#include "Platform/StatusItem.h"

#include <QObject>

namespace cairnfield {

class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    /// All three outlive this.
    MenuBarExtra(MenuBarViewModel& viewModel, StatusItem& item, PanelWindow& panel);
    ~MenuBarExtra() override;

private:
    MenuBarViewModel& viewModel_;
    StatusItem& item_;
};

}  // namespace cairnfield
