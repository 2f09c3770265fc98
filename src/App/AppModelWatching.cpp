#include "App/AppModel.h"
#include "Services/FileSystem/ChangeDebouncer.h"
#include "Services/FileSystem/FSEventMonitor.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::chrono::seconds eventLatency{3};
constexpr std::chrono::seconds settleInterval{10};

Task<> mark(std::shared_ptr<ChangeDebouncer> debouncer, std::vector<FilePath> paths) {
    co_await debouncer->markDirty(std::move(paths));
}

/// The two ends of a watch that was replaced, for as long as something of them runs.
Task<> retire(std::shared_ptr<FileSystemEventMonitoring> monitor,
              std::shared_ptr<ChangeDebouncer> debouncer) {
    if (monitor) co_await monitor->finished();
    if (debouncer) co_await debouncer->finished();
}

}  // namespace

void AppModel::restartFileSystemWatching() {
    assertIsolated();
    if (eventMonitor_) eventMonitor_->stop();
    std::vector<FilePath> paths;
    for (const WatchedFolder& folder : state_.watchedFolders.get()) {
        if (folder.isEnabled) paths.push_back(folder.path);
    }
    if (paths.empty() || !settings_.monitoringEnabled.get() || isEnding_) return;

    operations_.add(environment_.mainThread, retire(eventMonitor_, debouncer_));
    debouncer_ = std::make_shared<ChangeDebouncer>(
        environment_.pool, environment_.continuousClock, environment_.wallClock, settleInterval,
        [this](std::set<FilePath> changed) { return invalidate(std::move(changed)); });
    const auto changed = [this, debouncer = std::weak_ptr(debouncer_)](std::vector<FilePath> reported) {
        if (const auto held = debouncer.lock())
            operations_.add(environment_.pool, mark(held, std::move(reported)));
    };
    eventMonitor_ = std::make_shared<FSEventMonitor>(environment_.pool, environment_.fileEventStreams,
                                                     eventLatency, changed);
    eventMonitor_->start(std::move(paths));
}

Task<> AppModel::invalidate(std::set<FilePath> paths) {
    for (const FilePath& path : paths) co_await scanner_.invalidate(path.standardized());
    // The debouncer does not wait for the walks that follow, so neither its end nor its replacement cuts them
    // short.
    run(handleInvalidatedPaths(std::move(paths)));
}

Task<> AppModel::handleInvalidatedPaths(std::set<FilePath> paths) {
    const double interval = double(settings_.rescanIntervalMinutes.get()) * 60;
    const std::vector<WatchedFolder> folders = state_.watchedFolders.get();
    for (const WatchedFolder& folder : folders) {
        const Date now = environment_.wallClock.now();
        if (!folder.isEnabled || folder.isSnoozed(now)) continue;
        // A prefix of the text, not of the path's components: a sibling that is named alike counts.
        const bool isTouched = std::ranges::any_of(
            paths, [&](const FilePath& path) { return path.bytes().starts_with(folder.path.bytes()); });
        if (!isTouched) continue;
        const bool isDue = !folder.lastScanAt || secondsBetween(*folder.lastScanAt, now) >= interval;
        if (isDue) co_await scan(folder, true);
    }
}

}  // namespace cairnfield
