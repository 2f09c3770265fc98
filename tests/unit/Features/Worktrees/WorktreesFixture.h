#pragma once
// The worktree screen's view model over a model whose state the test sets.

#include "Features/Worktrees/WorktreesViewModel.h"
#include "SampleWorktrees.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/FakePasteboard.h"
#include "support/FakeWorkspace.h"
#include "support/QtApplication.h"

#include <gtest/gtest.h>

#include <map>

namespace cairnfield {

class WorktreesFixture : public testing::Test {
protected:
    WorktreesFixture() { app.wallClock.set(sampleNow); }

    AppState& state() { return AppModelStaging::state(*app.model); }

    void watch() { state().watchedFolders.set({WatchedFolder::make(FilePath("/code"))}); }

    /// Folders and worktrees, already on screen.
    void stage(std::vector<Worktree> worktrees) {
        watch();
        state().worktrees.set(std::move(worktrees));
        screen.flush();
    }

    [[nodiscard]] std::vector<std::string> titles() {
        std::vector<std::string> result;
        for (int row = 0; row < screen.rows()->rowCount(); ++row)
            result.push_back(screen.rows()->item(row).title.toStdString());
        return result;
    }

    [[nodiscard]] std::string selected() {
        return screen.detail()->isPresent() ? screen.detail()->branch().toStdString() : "";
    }

    QtApplication qt;
    AppHarness app;
    FakeWorkspace workspace;
    FakePasteboard pasteboard;
    CleanupReviewViewModel review{*app.model, pasteboard};
    WorktreesViewModel screen{*app.model, workspace, app.wallClock, review};
};

}  // namespace cairnfield
