#include "Features/MenuBar/MenuBarViewModel.h"

#include "Features/Presentation/QtText.h"
#include "Features/Presentation/Tints.h"
#include "Persistence/StoredFileNames.h"
#include "Services/Updates/UpdateChecking.h"
#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::string_view itemTitle = "Cairnfield storage status";

QString bytesText(std::int64_t bytes) {
    return shown(ByteFormatting::string(std::max<std::int64_t>(bytes, 0)));
}

}  // namespace

MenuBarViewModel::MenuBarViewModel(AppModel& model, Application& application, QObject* parent)
    : QObject(parent), model_(model), application_(application) {
    updateTimer_.setSingleShot(true);
    updateTimer_.setInterval(0);
    connect(&updateTimer_, &QTimer::timeout, this, &MenuBarViewModel::flush);
    const auto observer = [this] { updateTimer_.start(); };
    const AppState& state = model_.state();
    subscriptions_.push_back(state.storage.observe(observer));
    subscriptions_.push_back(state.isMonitoring.observe(observer));
    subscriptions_.push_back(state.worktrees.observe(observer));
    subscriptions_.push_back(state.watchedFolders.observe(observer));
    subscriptions_.push_back(state.storedFileNotices.observe(observer));
    SettingsStore& settings = model_.settings();
    subscriptions_.push_back(settings.thresholdMode.observe(observer));
    subscriptions_.push_back(settings.warningPercentage.observe(observer));
    subscriptions_.push_back(settings.criticalPercentage.observe(observer));
    subscriptions_.push_back(settings.warningAbsoluteBytes.observe(observer));
    subscriptions_.push_back(settings.criticalAbsoluteBytes.observe(observer));
    subscriptions_.push_back(model_.updates().observe(observer));
    flush();
}

QString MenuBarViewModel::availableText() const {
    const std::optional<StorageSnapshot>& snapshot = model_.state().storage.get();
    return snapshot ? bytesText(snapshot->availableCapacity) : QStringLiteral("—");
}

QString MenuBarViewModel::totalText() const {
    const std::optional<StorageSnapshot>& snapshot = model_.state().storage.get();
    return QStringLiteral("free of %1")
        .arg(snapshot ? bytesText(snapshot->totalCapacity) : QStringLiteral("—"));
}

QString MenuBarViewModel::levelText() const {
    return shown(cairnfield::title(model_.storageLevel()));
}

QString MenuBarViewModel::levelSymbolName() const {
    return shown(cairnfield::symbolName(model_.storageLevel()));
}

QString MenuBarViewModel::levelTint() const {
    return shown(tintName(model_.storageLevel()));
}

QString MenuBarViewModel::fileNotice() const {
    return shown(model_.state().storedFileNotice(StoredFileNames::storageHistory));
}

QString MenuBarViewModel::reclaimableText() const {
    return bytesText(model_.estimatedReclaimableBytes());
}

QString MenuBarViewModel::attentionText() const {
    return QString::number(model_.worktreesNeedingAttention().size());
}

QString MenuBarViewModel::folderName() const {
    const std::optional<WatchedFolder> folder = model_.largestWatchedFolder();
    return folder ? shown(visibleText(folder->displayName)) : QString();
}

QString MenuBarViewModel::folderSizeText() const {
    const std::optional<WatchedFolder> folder = model_.largestWatchedFolder();
    return folder ? bytesText(folder->lastKnownSizeBytes.value_or(0)) : QString();
}

void MenuBarViewModel::perform(int row) {
    if (row < 0 || row >= actions_.rowCount()) return;
    perform(actions_.actions().at(static_cast<std::size_t>(row)));
}

void MenuBarViewModel::perform(MenuBarAction action) {
    switch (action) {
        case MenuBarAction::scanNow:
            model_.run(model_.scanNow());
            break;
        case MenuBarAction::reviewCleanup:
        case MenuBarAction::openCairnfield:
            openWindow();
            break;
        case MenuBarAction::checkForUpdates:
            model_.updates().checkForUpdates();
            break;
        case MenuBarAction::pauseMonitoring:
            model_.setMonitoring(false);
            break;
        case MenuBarAction::resumeMonitoring:
            model_.setMonitoring(true);
            break;
        case MenuBarAction::quit:
            emit quitRequested();
            break;
    }
}

void MenuBarViewModel::openWindow() {
    emit leftForWindow();
    const std::vector<ApplicationWindow*> windows = application_.windows();
    const auto main = std::ranges::find_if(windows, &ApplicationWindow::canBecomeMain);
    if (main != windows.end()) (*main)->bringForward();
    application_.activate();
}

StatusItemState MenuBarViewModel::itemState() const {
    return {.title = std::string(itemTitle),
            .symbolName = model_.menuBarSymbolName(),
            .accessibilityValue = model_.menuBarAccessibilityValue(),
            .needsAttention = model_.storageLevel() != StorageLevel::normal};
}

std::vector<StatusMenuItem> MenuBarViewModel::menu() {
    std::vector<StatusMenuItem> items;
    for (const MenuBarAction action : actions_.actions()) {
        if (action == MenuBarAction::quit) items.emplace_back();
        items.push_back({std::string(cairnfield::title(action)), std::string(cairnfield::symbolName(action)),
                         [this, action] { perform(action); }});
    }
    return items;
}

void MenuBarViewModel::flush() {
    updateTimer_.stop();
    const bool hasOtherActions = actions_.update(
        menuBarActions(model_.updates().canCheckForUpdates(), model_.state().isMonitoring.get()));
    emit changed();
    if (hasOtherActions) emit actionsChanged();
}

}  // namespace cairnfield
