#include "ui/screenshots/Scenes.h"

#include "ui/screenshots/SampleState.h"

#include <cstdint>
#include <optional>

namespace cairnfield {

namespace {

constexpr QSize smallest{760, 520};
constexpr QSize tall{1280, 1400};

using Act = std::function<void(Stage&)>;

// The worktree screen over these worktrees, and then whatever else is done there.
Act list(std::vector<Worktree> worktrees, Act then = [](Stage&) {}) {
    return [worktrees = std::move(worktrees), then = std::move(then)](Stage& stage) {
        stage.root.setSelection(SidebarSection::worktrees);
        stage.state.watchedFolders.set(sampleFolders());
        stage.state.worktrees.set(worktrees);
        stage.state.githubStatus.set({.isInstalled = true, .authenticatedHosts = {"git.example.org"}});
        stage.worktrees.flush();
        then(stage);
        stage.worktrees.flush();
    };
}

Act selecting(const std::string& branch) {
    return [branch](Stage& stage) {
        for (int row = 0; row < stage.worktrees.rows()->rowCount(); ++row) {
            const ListedWorktree* listed = stage.worktrees.rows()->worktreeAt(row);
            if (listed && listed->worktree.displayBranch() == branch) return stage.worktrees.select(row);
        }
    };
}

Act empty(const Act& set) {
    return [set](Stage& stage) {
        stage.root.setSelection(SidebarSection::worktrees);
        set(stage);
        stage.worktrees.flush();
    };
}

void measuring(Stage& stage) {
    std::vector<Worktree> worktrees = sampleWorktrees();
    for (std::size_t position = 4; position < worktrees.size(); ++position) worktrees[position].sizeBytes = 0;
    stage.state.sizingProgress.set(SizingProgress{4, static_cast<std::int64_t>(worktrees.size())});
    stage.state.worktrees.set(std::move(worktrees));
}

Act folders(Act then = [](Stage&) {}) {
    return [then = std::move(then)](Stage& stage) {
        stage.root.setSelection(SidebarSection::watchedFolders);
        const std::vector<WatchedFolder> all = sampleFolders();
        stage.state.watchedFolders.set(all);
        DirectoryScanResult result;
        for (const char* name :
             {"lighthouse", "pantry", "weather-station", "a b", "notes", "old", "seventh"}) {
            result.largestChildren.push_back(
                {all[0].path.appending(name),
                 12'000'000'000 - std::int64_t(result.largestChildren.size()) * 1'700'000'000, true});
        }
        stage.state.folderScanResults.set({{all[0].id, result}});
        stage.state.scanningFolderIDs.set({all[3].id});
        stage.folders.flush();
        then(stage);
        stage.folders.flush();
    };
}

Act preferences(Act then = [](Stage&) {}) {
    return [then = std::move(then)](Stage& stage) {
        stage.root.setSelection(SidebarSection::preferences);
        stage.state.isMonitoring.set(true);
        stage.state.storage.set(StorageSnapshot{.volumeURL = FilePath("/"),
                                                .volumeName = "root",
                                                .totalCapacity = 500'000'000'000,
                                                .availableCapacity = 131'000'000'000});
        then(stage);
    };
}

Scene panel(std::string name, std::optional<std::int64_t> available, Act then = [](Stage&) {}) {
    const Act set = [available, then = std::move(then)](Stage& stage) {
        if (available)
            stage.state.storage.set(StorageSnapshot{.volumeURL = FilePath("/"),
                                                    .volumeName = "root",
                                                    .totalCapacity = 500'000'000'000,
                                                    .availableCapacity = *available});
        then(stage);
    };
    return {.name = std::move(name), .set = set, .surface = Surface::panel};
}

void fullPanel(Stage& stage) {
    stage.state.isMonitoring.set(true);
    stage.state.worktrees.set(sampleWorktrees());
    stage.state.watchedFolders.set(sampleFolders());
}

void longFolderName(Stage& stage) {
    fullPanel(stage);
    std::vector<WatchedFolder> folders = sampleFolders();
    folders[0].displayName = "a-folder-with-a-very-long-name-that-does-not-fit-beside-its-size";
    folders[0].lastKnownSizeBytes = 1'234'500'000'000;
    stage.state.watchedFolders.set(folders);
}

}  // namespace

std::vector<Scene> scenes() {
    const auto watched = [](Stage& stage) { stage.state.watchedFolders.set(sampleFolders()); };
    return {
        {"worktrees-no-folders", empty([](Stage&) {})},
        {"worktrees-looking", empty([=](Stage& stage) {
             watched(stage);
             stage.state.isRefreshingWorktrees.set(true);
         })},
        {"worktrees-none", empty(watched)},
        {"worktrees-error", empty([=](Stage& stage) {
             watched(stage);
             stage.state.worktreeRefreshError.set("Git was not found on this Mac.");
         })},
        {"worktrees-list", list(sampleWorktrees())},
        {"worktrees-unfinished", list(sampleWorktrees(), selecting("tariff-tables")), tall},
        {"worktrees-pull-request", list(sampleWorktrees(), selecting("harbour-map"))},
        {"worktrees-main", list(sampleWorktrees(), selecting("main"))},
        {"worktrees-active", list(sampleWorktrees(), selecting("fog-signal")), tall},
        {"worktrees-pinned", list(sampleWorktrees(), selecting("try-sqlite")), tall},
        {"worktrees-conflicts", list(sampleWorktrees(), selecting("units"))},
        {"worktrees-unreadable", list(sampleWorktrees(), selecting("old-sensor")), tall},
        {"worktrees-measuring", list(sampleWorktrees(), measuring)},
        {"worktrees-by-safety",
         list(sampleWorktrees(), [](Stage& stage) { stage.worktrees.setGroupingIndex(1); })},
        {"worktrees-filtered-away",
         list(sampleWorktrees(), [](Stage& stage) { stage.worktrees.setSearchText("nowhere"); })},
        {"worktrees-notice",
         list(sampleWorktrees(),
              [](Stage& stage) { stage.state.worktreeRefreshError.set("Git was not found on this Mac."); })},
        {"worktrees-one", list({sampleWorktrees()[0]})},
        {"worktrees-5000", list(manyWorktrees(5000), [](Stage& stage) { stage.worktrees.select(3); })},
        {"worktrees-odd-names", list(oddWorktrees(), [](Stage& stage) { stage.worktrees.select(2); })},
        {"worktrees-smallest", list(sampleWorktrees(), selecting("harbour-map")), smallest},
        {"worktrees-low-space", list(sampleWorktrees(),
                                     [](Stage& stage) {
                                         stage.state.storage.set(
                                             StorageSnapshot{.volumeURL = FilePath("/"),
                                                             .volumeName = "root",
                                                             .totalCapacity = 500'000'000'000,
                                                             .availableCapacity = 3'000'000'000});
                                     })},
        {"folders-none", [](Stage& stage) { stage.root.setSelection(SidebarSection::watchedFolders); }},
        {"folders-list", folders()},
        {"folders-selected", folders([](Stage& stage) { stage.folders.select(1); }), tall},
        {"folders-notice", folders([](Stage& stage) {
             stage.state.folderError.set(
                 "The file \"watched-folders.json\" could not be written: No space left on device.");
         })},
        {"folders-smallest", folders(), smallest},
        {"folders-add", folders([](Stage& stage) { stage.folders.setImporting(true); })},
        {"preferences-smart", preferences(), tall},
        {"preferences-percentage",
         preferences([](Stage& stage) { stage.preferences.chooseThresholdMode(1); })},
        {"preferences-absolute", preferences([](Stage& stage) {
             stage.preferences.chooseThresholdMode(2);
             stage.state.notificationAuthorizationDenied.set(true);
         }),
         tall},
        {"preferences-first", [](Stage& stage) { stage.root.setSelection(SidebarSection::preferences); }},
        {"preferences-smallest", preferences(), smallest},
        {"folders-add-wrong", folders([](Stage& stage) {
             stage.folders.setImporting(true);
             stage.folders.addTyped("code");
         }),
         smallest},
        panel("panel-first", std::nullopt),
        panel("panel-healthy", 123'400'000'000, fullPanel),
        panel("panel-low", 43'700'000'000, fullPanel),
        panel("panel-critical", 930'000'000, fullPanel),
        panel("panel-long-name", 123'400'000'000, longFolderName),
    };
}

}  // namespace cairnfield
