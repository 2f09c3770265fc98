#include "Features/MenuBar/MenuBarActionModel.h"

#include "Features/Presentation/QtText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace cairnfield {

namespace {

struct Presentation {
    std::string_view title;
    std::string_view symbolName;
};

constexpr std::array presentations{
    Presentation{"Scan now", "arrow.clockwise"},      Presentation{"Review cleanup", "checklist"},
    Presentation{"Open Cairnfield", "macwindow"},     Presentation{"Check for updates…", "arrow.down.circle"},
    Presentation{"Pause monitoring", "pause.circle"}, Presentation{"Resume monitoring", "play.circle"},
    Presentation{"Quit Cairnfield", "power"},
};

/// The two states of one switch are one row.
MenuBarAction row(MenuBarAction action) {
    return action == MenuBarAction::resumeMonitoring ? MenuBarAction::pauseMonitoring : action;
}

}  // namespace

std::string_view title(MenuBarAction action) {
    return presentations.at(static_cast<std::size_t>(action)).title;
}

std::string_view symbolName(MenuBarAction action) {
    return presentations.at(static_cast<std::size_t>(action)).symbolName;
}

std::vector<MenuBarAction> menuBarActions(bool canCheckForUpdates, bool isMonitoring) {
    std::vector actions{MenuBarAction::scanNow, MenuBarAction::reviewCleanup, MenuBarAction::openCairnfield};
    if (canCheckForUpdates) actions.push_back(MenuBarAction::checkForUpdates);
    actions.push_back(isMonitoring ? MenuBarAction::pauseMonitoring : MenuBarAction::resumeMonitoring);
    actions.push_back(MenuBarAction::quit);
    return actions;
}

bool MenuBarActionModel::update(std::vector<MenuBarAction> actions) {
    if (actions == actions_) return false;
    if (std::ranges::equal(actions, actions_, {}, row, row)) {
        actions_ = std::move(actions);
        emit dataChanged(index(0), index(rowCount() - 1));
        return true;
    }
    beginResetModel();
    actions_ = std::move(actions);
    endResetModel();
    return true;
}

int MenuBarActionModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(actions_.size());
}

QVariant MenuBarActionModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const MenuBarAction action = actions_.at(static_cast<std::size_t>(index.row()));
    switch (role) {
        case Qt::DisplayRole:
        case titleRole:
            return shown(title(action));
        case symbolNameRole:
            return shown(symbolName(action));
        case startsGroupRole:
            return action == MenuBarAction::scanNow || action == MenuBarAction::quit;
        default:
            return {};
    }
}

QHash<int, QByteArray> MenuBarActionModel::roleNames() const {
    return {{titleRole, "title"}, {symbolNameRole, "symbolName"}, {startsGroupRole, "startsGroup"}};
}

}  // namespace cairnfield
