#pragma once
// The review sheet's view model over the real model, a real repository with a real remote, and a linked
// worktree "feature" that nobody has touched for long.

#include "Features/CleanupReview/CleanupReviewViewModel.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/CleanupReviewStaging.h"
#include "support/FakePasteboard.h"
#include "support/GitRepository.h"
#include "support/QtApplication.h"
#include "support/SafeSurroundings.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <list>

namespace cairnfield {

class CleanupReviewFixture : public testing::Test {
protected:
    using Phase = CleanupReviewViewModel::Phase;

    AppState& state() { return AppModelStaging::state(*app.model); }

    [[nodiscard]] static GitRepository publishedProject(const FilePath& path, const GitRepository& hub) {
        const GitRepository project = GitRepository::create(path);
        for (const auto& [key, value] : {std::pair{"core.fsync", "none"},
                                         {"user.name", "Robin Example"},
                                         {"user.email", "robin@example.invalid"}})
            project.git({"config", key, value});
        project.write(".gitignore", ".env\nnode_modules/\n");
        project.commitFile("kept.txt");
        project.addRemote("origin", hub.path());
        project.publish();
        return project;
    }

    [[nodiscard]] GitRepository addFeature(const std::string& name) const {
        return project.addWorktree(app.home / ("code/" + name), name);
    }

    /// Lets git be found, and every worktree be listed as long untouched.
    void list() {
        feature.setLastTouched(app.wallClock.now() - std::chrono::hours(48));
        app.run(app.model->refreshIntegrations());
        app.watch(code);
    }

    void open() { review.open(app.worktreeAt(feature.path())); }

    /// Reads the review and stops there.
    void openToReview() {
        list();
        open();
        waitWhile(Phase::checking);
        ASSERT_EQ(review.phase(), Phase::review) << review.blockedMessage().toStdString();
    }

    void startToEnd() {
        review.start();
        waitWhile(Phase::running);
        ASSERT_EQ(review.phase(), Phase::finished);
    }

    void waitWhile(Phase phase) {
        app.waitUntil([&] { return review.phase() != phase; });
    }

    [[nodiscard]] bool isThere(const FilePath& path) const {
        return std::filesystem::exists(std::filesystem::symlink_status(path.bytes()));
    }

    /// In the hooks of the whole repository.
    void hook(const std::string& name, const std::string& script) const {
        project.write(".git/hooks/" + name, "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions((project / (".git/hooks/" + name)).bytes(),
                                     std::filesystem::perms(0755));
    }

    [[nodiscard]] std::string recoveryBranch() const { return review.receipt()->recoveryBranch.value_or(""); }

    std::list<ScopedEnvironment> environment = surroundingsAtTheStart();
    QtApplication qt;
    AppHarness app;
    GitRepository hub = GitRepository::createBare(app.home / "hub.git");
    FilePath code = app.home.makeDirectory("code");
    GitRepository project = publishedProject(code.appending("project"), hub);
    GitRepository feature = addFeature("feature");
    FakePasteboard pasteboard;
    CleanupReviewViewModel review{*app.model, pasteboard};
};

}  // namespace cairnfield
