#include "driver/StorageCommands.h"

#include "Services/Storage/StorageIncidentTracker.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Text/Text.h"
#include "driver/PrintedDesktop.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

namespace {

Json jsonOf(const StorageIncidentTracker& incident) {
    Json json{{"activeLevel", rawValue(incident.activeLevel)}};
    if (incident.lastNotifiedAt) json["lastNotifiedAt"] = jsonFromDate(*incident.lastNotifiedAt);
    if (incident.snoozedUntil) json["snoozedUntil"] = jsonFromDate(*incident.snoozedUntil);
    return json;
}

/// Keeps the observers of every published field.
std::vector<Subscription> observeAll(const AppState& state, JsonLines& lines) {
    std::vector<Subscription> subscriptions;
    const auto observe = [&](const auto& field, const char* name) {
        subscriptions.push_back(field.observe([&lines, name] { lines.print("changed", {{"field", name}}); }));
    };
    observe(state.storage, "storage");
    observe(state.incident, "incident");
    observe(state.storageHistory, "storageHistory");
    observe(state.isMonitoring, "isMonitoring");
    observe(state.lastStorageError, "lastStorageError");
    observe(state.watchedFolders, "watchedFolders");
    observe(state.folderScanResults, "folderScanResults");
    observe(state.scanningFolderIDs, "scanningFolderIDs");
    observe(state.worktrees, "worktrees");
    observe(state.isRefreshingWorktrees, "isRefreshingWorktrees");
    observe(state.lastWorktreeRefresh, "lastWorktreeRefresh");
    observe(state.worktreeRefreshError, "worktreeRefreshError");
    observe(state.sizingProgress, "sizingProgress");
    observe(state.gitStatusMessage, "gitStatusMessage");
    observe(state.gitPath, "gitPath");
    observe(state.githubStatus, "githubStatus");
    observe(state.receipts, "receipts");
    observe(state.vaultEntries, "vaultEntries");
    observe(state.activeCleanup, "activeCleanup");
    observe(state.cleanupsUnderWay, "cleanupsUnderWay");
    observe(state.lastReceipt, "lastReceipt");
    observe(state.notificationAuthorizationDenied, "notificationAuthorizationDenied");
    observe(state.lastNotificationError, "lastNotificationError");
    return subscriptions;
}

void respond(const PrintedNotificationCenter& center, const AppModel& model, JsonLines& lines,
             std::string_view line) {
    std::vector<std::string> words;
    for (const std::string_view word : splitDroppingEmpty(line, ' ')) words.emplace_back(word);
    const bool hasPath = words.size() == 4 && words[2] == "--path";
    if (words.empty() || words[0] != "respond" || (words.size() != 2 && !hasPath)) {
        lines.print("error", {{"case", "wrongWords"}, {"description", jsonFromText(line)}});
        return;
    }
    NotificationResponse response{.actionIdentifier = words[1]};
    if (hasPath) response.userInfo["path"] = words[3];
    center.respond(std::move(response));
    lines.print("result", {{"incident", jsonOf(model.state().incident.get())}});
}

/// The answers on standard input, until it ends or the time is over.
Task<> listen(Program& program, const AppModel& model, JsonLines& lines, BootClock::time_point end) {
    std::string text;
    for (;;) {
        const Wake wake = co_await program.reactor().readable(STDIN_FILENO, end);
        if (wake != Wake::ready) co_return;
        std::array<char, 4096> buffer{};
        const ssize_t got = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (got < 0) throw std::system_error(errno, std::generic_category(), "reading the answers");
        if (got == 0) co_return;
        text.append(buffer.data(), std::size_t(got));
        for (std::size_t line = text.find('\n'); line != std::string::npos; line = text.find('\n')) {
            respond(program.notificationCenter(), model, lines, std::string_view(text).substr(0, line));
            text.erase(0, line + 1);
        }
    }
}

}  // namespace

Task<> showStorage(AppModel& model, JsonLines& lines) {
    co_await model.refreshStorage();
    const AppState& state = model.state();
    if (!state.storage.get()) {
        lines.printPublishedError("lastStorageError", state.lastStorageError.get().value_or(""));
        co_return;
    }
    const StorageThresholds limits = model.thresholds();
    lines.print("result", {{"snapshot", *state.storage.get()},
                           {"thresholds",
                            {{"warningBytes", limits.warningBytes}, {"criticalBytes", limits.criticalBytes}}},
                           {"level", rawValue(model.storageLevel())},
                           {"history", state.storageHistory.get()}});
}

Task<> monitorFolders(Program& program, AppModel& model, JsonLines& lines, MonitorWords words) {
    const std::vector<Subscription> subscriptions = observeAll(model.state(), lines);
    const BootClock::time_point end = program.continuousClock().now() + words.duration;
    for (const FilePath& root : words.roots) co_await model.addWatchedFolder(root);
    model.setMonitoring(true);
    co_await listen(program, model, lines, end);
    co_await program.continuousClock().sleepUntil(end);
    lines.print("result", {{"incident", jsonOf(model.state().incident.get())}});
}

}  // namespace cairnfield
