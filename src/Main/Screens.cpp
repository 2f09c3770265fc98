#include "Main/Screens.h"

namespace cairnfield {

Screens::Screens(AppModel& model, const TaskHandle<>& started, Machine& machine, Desktop& desktop,
                 Application& application, const FilePath& home)
    : appearance(desktop.appearance),
      root(model, started),
      worktrees(model, desktop.workspace, machine.wallClock),
      watchedFolders(model, desktop.workspace, machine.wallClock, home),
      preferences(model, machine.wallClock),
      menuBar(model, application) {}

QVariantMap Screens::windowContent() {
    return {{QStringLiteral("viewModel"), QVariant::fromValue(&root)},
            {QStringLiteral("appearance"), QVariant::fromValue(&appearance)},
            {QStringLiteral("worktrees"), QVariant::fromValue(&worktrees)},
            {QStringLiteral("watchedFolders"), QVariant::fromValue(&watchedFolders)},
            {QStringLiteral("preferences"), QVariant::fromValue(&preferences)}};
}

QVariantMap Screens::panelContent() {
    return {{QStringLiteral("viewModel"), QVariant::fromValue(&menuBar)},
            {QStringLiteral("appearance"), QVariant::fromValue(&appearance)}};
}

}  // namespace cairnfield
