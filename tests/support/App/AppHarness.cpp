#include "support/App/AppHarness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace cairnfield {

AppHarness::AppHarness(Replacements replacements) : replacements_(replacements) {
    model = makeModel();
}

AppHarness::~AppHarness() {
    run(model->stop());
    model.reset();
}

void AppHarness::restart() {
    run(model->stop());
    model.reset();
    model = makeModel();
}

std::unique_ptr<AppModel> AppHarness::makeModel() {
    const auto orOurs = [](auto* given, auto& ours) -> decltype(*given)& {
        return given != nullptr ? *given : ours;
    };
    return std::make_unique<AppModel>(
        settings, AppEnvironment{.mainThread = loop,
                                 .pool = pool,
                                 .blocking = blocking,
                                 .walking = walking,
                                 .continuousClock = continuousClock,
                                 .wallClock = wallClock,
                                 .processRunner = orOurs(replacements_.processRunner, processRunner),
                                 .treeMeasurer = orOurs(replacements_.treeMeasurer, treeMeasurer),
                                 .authorization = authorization,
                                 .capacityReader = volume,
                                 .volumes = mounts,
                                 .fileEventStreams = fileEventStreams,
                                 .notifications = notifications,
                                 .notificationCenter = notificationCenter,
                                 .launchAtLogin = orOurs(replacements_.launchAtLogin, launchAtLogin),
                                 .updates = orOurs(replacements_.updates, updates),
                                 .application = application,
                                 .workspace = workspace,
                                 .support = support,
                                 .home = home.path()});
}

void AppHarness::waitUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    const auto turn = []() -> Task<> { co_return; };
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) {
            ADD_FAILURE() << "waited in vain";
            return;
        }
        run(turn());
        std::this_thread::yield();
    }
}

void AppHarness::watch(const FilePath& folder) {
    run(model->addWatchedFolder(folder));
    run(model->refreshWorktrees(true));
    run(model->sizingFinished());
}

Worktree AppHarness::worktreeAt(const FilePath& path) const {
    const std::vector<Worktree>& worktrees = model->state().worktrees.get();
    const auto found = std::ranges::find(worktrees, path.standardized(), &Worktree::id);
    if (found != worktrees.end()) return *found;
    ADD_FAILURE() << "no worktree at " << path.display();
    return {};
}

}  // namespace cairnfield
