#include "driver/ModelCommands.h"

#include "driver/Records.h"

#include <chrono>
#include <string>
#include <utility>

namespace cairnfield {

namespace {

Json foldersOf(const AppModel& model) {
    return Json(model.state().watchedFolders.get());
}

/// A pin of a worktree that no list holds yet; the next refresh applies it.
Task<> pinEach(AppModel& model, std::vector<FilePath> paths) {
    for (const FilePath& path : paths) {
        Worktree worktree;
        worktree.path = path;
        co_await model.togglePin(std::move(worktree));
    }
}

}  // namespace

Task<> addRoots(AppModel& model, JsonLines& lines, std::vector<FilePath> roots) {
    for (const FilePath& root : roots) {
        co_await model.addWatchedFolder(root);
        lines.printIfFailed("folderError", model.state().folderError.get());
    }
}

Task<> addFolders(AppModel& model, JsonLines& lines, std::vector<FilePath> roots) {
    co_await addRoots(model, lines, std::move(roots));
    lines.print("result", {{"folders", foldersOf(model)}});
}

Task<> listFolders(AppModel& model, JsonLines& lines) {
    lines.print("result", {{"folders", foldersOf(model)}});
    co_return;
}

Task<> removeFolder(AppModel& model, JsonLines& lines, UUID id) {
    WatchedFolder folder;
    folder.id = id;
    co_await model.removeWatchedFolder(std::move(folder));
    lines.printIfFailed("folderError", model.state().folderError.get());
    lines.print("result", {{"folders", foldersOf(model)}});
}

Task<> scanDirectory(AppModel& model, JsonLines& lines, FilePath path, bool fresh) {
    try {
        const DirectoryScanResult result = co_await model.directorySize(std::move(path), !fresh);
        lines.print("result", Json(result));
    } catch (...) {
        lines.printCurrentError();
    }
}

Task<> inspectWorktrees(AppModel& model, JsonLines& lines, InspectWords words) {
    co_await addRoots(model, lines, std::move(words.roots));
    co_await pinEach(model, std::move(words.pins));

    const auto start = std::chrono::steady_clock::now();
    co_await model.refreshWorktrees(words.sizes);
    if (words.sizes) co_await model.sizingFinished();
    if (words.pullRequests) co_await model.refreshRemoteState();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;

    lines.printIfFailed("worktreeRefreshError", model.state().worktreeRefreshError.get());
    Json projects = Json::array();
    for (const ProjectUsage& project : model.projects()) projects.push_back(jsonOf(project));
    lines.print("result", {{"worktrees", jsonOf(model.state().worktrees.get())},
                           {"projects", std::move(projects)},
                           {"reclaimable", model.estimatedReclaimableBytes()},
                           {"seconds", elapsed.count()}});
}

Task<> showIntegrations(AppModel& model, JsonLines& lines) {
    co_await model.refreshIntegrations();
    const AppState& state = model.state();
    Json fields{{"githubStatus", jsonOf(state.githubStatus.get())}};
    if (state.gitStatusMessage.get()) fields["gitStatusMessage"] = *state.gitStatusMessage.get();
    if (state.gitPath.get()) fields["gitPath"] = *state.gitPath.get();
    lines.print("result", std::move(fields));
}

}  // namespace cairnfield
