#include "Main/Screens.h"

namespace cairnfield {

Screens::Screens(AppModel& model, const TaskHandle<>& started, Machine& machine, Desktop& desktop,
                 Application& application, const FilePath& home)
    : appearance(desktop.appearance),
      root(model, started),
      cleanupReview(model, desktop.pasteboard),
      worktrees(model, desktop.workspace, machine.wallClock, cleanupReview),
      watchedFolders(model, desktop.workspace, machine.wallClock, home),
      savePanel(home),
      recovery(model, desktop.workspace, savePanel, machine.wallClock),
      history(model, desktop.workspace, desktop.pasteboard),
      preferences(model, machine.wallClock),
      menuBar(model, application) {}

QVariantMap Screens::windowContent() {
    return {{QStringLiteral("viewModel"), QVariant::fromValue(&root)},
            {QStringLiteral("appearance"), QVariant::fromValue(&appearance)},
            {QStringLiteral("worktrees"), QVariant::fromValue(&worktrees)},
            {QStringLiteral("cleanupReview"), QVariant::fromValue(&cleanupReview)},
            {QStringLiteral("watchedFolders"), QVariant::fromValue(&watchedFolders)},
            {QStringLiteral("recovery"), QVariant::fromValue(&recovery)},
            {QStringLiteral("history"), QVariant::fromValue(&history)},
            {QStringLiteral("preferences"), QVariant::fromValue(&preferences)},
            {QStringLiteral("savePanel"), QVariant::fromValue(&savePanel)}};
}

QVariantMap Screens::panelContent() {
    return {{QStringLiteral("viewModel"), QVariant::fromValue(&menuBar)},
            {QStringLiteral("appearance"), QVariant::fromValue(&appearance)}};
}

}  // namespace cairnfield
