#include "support/App/AppHarness.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace cairnfield {

AppHarness::AppHarness(Replacements replacements) {
    TreeMeasuring* const measurer = replacements.treeMeasurer;
    ProcessRunning* const runner = replacements.processRunner;
    model = std::make_unique<AppModel>(
        settings, AppEnvironment{.mainThread = loop,
                                 .pool = pool,
                                 .blocking = blocking,
                                 .walking = walking,
                                 .continuousClock = continuousClock,
                                 .wallClock = wallClock,
                                 .processRunner = runner != nullptr ? *runner : processRunner,
                                 .treeMeasurer = measurer != nullptr ? *measurer : treeMeasurer,
                                 .authorization = authorization,
                                 .support = support});
}

AppHarness::~AppHarness() {
    run(model->stop());
    model.reset();
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
