#include "Main/MenuBarExtra.h"

namespace cairnfield {

MenuBarExtra::MenuBarExtra(MenuBarViewModel& viewModel, StatusItem& item, PanelWindow& panel)
    : viewModel_(viewModel), item_(item) {
    const auto showState = [this] { item_.setState(viewModel_.itemState()); };
    const auto showMenu = [this] { item_.setMenu(viewModel_.menu()); };
    connect(&viewModel_, &MenuBarViewModel::changed, this, showState);
    connect(&viewModel_, &MenuBarViewModel::actionsChanged, this, showMenu);
    connect(&viewModel_, &MenuBarViewModel::leftForWindow, &panel, &PanelWindow::close, Qt::QueuedConnection);
    item_.onActivate([&panel](const StatusItemActivation& activation) { panel.toggle(activation); });
    showState();
    showMenu();
}

MenuBarExtra::~MenuBarExtra() {
    item_.onActivate({});
    item_.setMenu({});
}

}  // namespace cairnfield
