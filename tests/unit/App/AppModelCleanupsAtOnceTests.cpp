// Cleanups beside each other, beside a look at the tools, and at the end of the program.

#include "support/Waiting.h"
#include "unit/App/CleanupModel.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CleanupsAtOnce : CleanupModel {
    GitRepository other = workIn(alpha, "alpha-other");

    /// One of `feature` that has come to its push and waits there.
    TaskHandle<std::optional<CleanupReceipt>> firstAtItsPush() {
        commands.hold("push");
        auto first = begin(feature);
        app.waitUntil([&] { return commands.isHolding(); });
        return first;
    }
};

constexpr const char* busy = "Another cleanup is already running for this repository.";

TEST_F(CleanupsAtOnce, ASecondOneOfTheSameRepositoryIsRefusedAndTheFirstGoesOn) {
    start();
    const auto first = firstAtItsPush();
    EXPECT_EQ(state().cleanupsUnderWay.get(), 1);
    const CleanupReceipt refused = clean(other);
    EXPECT_EQ(refused.outcome, CleanupOutcome::failed);
    EXPECT_EQ(refused.errorSummary, busy);
    EXPECT_TRUE(exists(other));
    EXPECT_EQ(other.git({"symbolic-ref", "--short", "HEAD"}), "alpha-other");
    EXPECT_FALSE(first.done());
    EXPECT_EQ(state().cleanupsUnderWay.get(), 1);
    EXPECT_THAT(state().receipts.get(), IsEmpty()) << "nothing was tried";

    commands.letGo();
    const std::optional<CleanupReceipt> receipt = waitFor(app.loop, first);
    ASSERT_TRUE(receipt.has_value());
    EXPECT_EQ(receipt->outcome, CleanupOutcome::succeeded) << receipt->errorSummary.value_or("");
    EXPECT_EQ(state().cleanupsUnderWay.get(), 0);
    EXPECT_THAT(state().receipts.get(), ElementsAre(*receipt));
    app.wallClock.advance(std::chrono::seconds(1));  // a recovery branch is named for its second
    EXPECT_EQ(clean(other).outcome, CleanupOutcome::succeeded);
}

TEST_F(CleanupsAtOnce, ThoseOfDifferentRepositoriesGoOnBesideEachOther) {
    const GitRepository beta = project("beta");
    const GitRepository betaWork = workIn(beta, "beta-work");
    start();
    const auto first = begin(feature);
    const auto second = begin(betaWork);
    app.waitUntil([&] { return state().cleanupsUnderWay.get() == 2; });
    const std::optional<CleanupReceipt> firstReceipt = waitFor(app.loop, first);
    const std::optional<CleanupReceipt> secondReceipt = waitFor(app.loop, second);
    EXPECT_EQ(firstReceipt.value_or(CleanupReceipt{}).outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(secondReceipt.value_or(CleanupReceipt{}).outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(state().cleanupsUnderWay.get(), 0);
    EXPECT_EQ(state().receipts.get().size(), 2U);
}

TEST_F(CleanupsAtOnce, ALookAtTheToolsDoesNotLetASecondOneBegin) {
    start();
    const auto first = firstAtItsPush();
    app.run(app.model->refreshIntegrations());
    EXPECT_EQ(clean(other).errorSummary, busy);
    commands.letGo();
    EXPECT_EQ(waitFor(app.loop, first).value_or(CleanupReceipt{}).outcome, CleanupOutcome::succeeded);
    app.wallClock.advance(std::chrono::seconds(1));
    EXPECT_EQ(clean(other).outcome, CleanupOutcome::succeeded);
}

TEST_F(CleanupsAtOnce, ToolsThatWereFoundMeanwhileAreUsedAfterwards) {
    start();
    const auto first = firstAtItsPush();
    const FilePath chosen =
        app.home.write("chosen git", "#!/bin/sh\necho used >> \"$0.log\"\nexec git \"$@\"\n");
    std::filesystem::permissions(chosen.bytes(), std::filesystem::perms(0755));
    const FilePath log(chosen.bytes() + ".log");
    app.settings.gitPathOverride.set(chosen.bytes());
    app.run(app.model->refreshIntegrations());
    ASSERT_EQ(state().gitPath.get(), chosen);
    const CleanupPlan next = plan(other);

    std::filesystem::remove(log.bytes());
    static_cast<void>(app.run(app.model->preflight(next.worktree)));
    EXPECT_FALSE(std::filesystem::exists(log.bytes())) << "the crew was changed under a cleanup";
    commands.letGo();
    static_cast<void>(waitFor(app.loop, first));
    std::filesystem::remove(log.bytes());
    static_cast<void>(app.run(app.model->preflight(next.worktree)));
    EXPECT_TRUE(std::filesystem::exists(log.bytes()));
}

TEST_F(CleanupsAtOnce, TheEndOfTheProgramWaitsForOneAndItsReceiptIsKept) {
    start();
    const auto execute = [](AppModel& model, CleanupPlan plan) -> Task<> {
        static_cast<void>(co_await model.execute(std::move(plan)));
    };
    commands.hold("push");
    app.model->run(execute(*app.model, plan(feature)));
    app.waitUntil([&] { return commands.isHolding(); });
    const TaskHandle<> ending = spawn(app.loop, app.model->stop());
    const auto turn = []() -> Task<> { co_return; };
    for (int turns = 0; turns < 100; ++turns) app.run(turn());
    EXPECT_FALSE(ending.done()) << "the program ended in the middle of a cleanup";
    EXPECT_TRUE(exists(feature));
    commands.letGo();
    waitFor(app.loop, ending);
    EXPECT_FALSE(exists(feature));
    EXPECT_EQ(state().cleanupsUnderWay.get(), 0);
    app.restart();
    app.run(app.model->start());
    ASSERT_EQ(state().receipts.get().size(), 1U);
    EXPECT_EQ(state().receipts.get()[0].outcome, CleanupOutcome::succeeded);
}

}  // namespace
}  // namespace cairnfield
