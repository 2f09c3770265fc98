#include "Platform/Linux/Desktop/PendingNotifications.h"
#include "support/SteppedClock.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class PendingNotificationsTest : public testing::Test {
protected:
    ~PendingNotificationsTest() override { waitFor(loop, pending.stop()); }

    void add(std::string identifier, Seconds delay, std::string body = "") {
        pending.add({.identifier = std::move(identifier), .body = std::move(body), .delay = delay});
    }
    /// Lets the timers fall asleep, or run on to their end.
    void settle(std::size_t sleepers) {
        loop.runUntil([this, sleepers] { return clock.sleepers() == sleepers; });
        waitFor(loop, relayedTurn());
    }
    static Task<> relayedTurn() {
        for (int turn = 0; turn < 5; ++turn) co_await yieldNow();
    }
    Task<> post(NotificationRequest request) {
        if (request.body == "fails") throw std::runtime_error("nobody took it");
        posted.push_back(request.identifier + request.body);
        co_return;
    }

    RunLoop loop;
    SteppedClock clock;
    std::vector<std::string> posted;
    PendingNotifications pending{loop, clock,
                                 [this](NotificationRequest request) { return post(std::move(request)); }};
};

TEST_F(PendingNotificationsTest, PostWhenTheirTimeHasComeAndNotBefore) {
    add("a", 1s);
    settle(1);
    EXPECT_EQ(clock.nextWakeIn(), 1s);
    clock.advance(999ms);
    settle(1);
    EXPECT_THAT(posted, IsEmpty());
    EXPECT_THAT(pending.identifiers(), ElementsAre("a"));
    clock.advance(1ms);
    settle(0);
    EXPECT_THAT(posted, ElementsAre("a"));
    EXPECT_THAT(pending.identifiers(), IsEmpty());
}

TEST_F(PendingNotificationsTest, AreListedInTheOrderTheyCame) {
    add("late", 9s);
    add("soon", 2s);
    EXPECT_THAT(pending.identifiers(), ElementsAre("late", "soon"));
    settle(2);
    clock.advance(9s);
    settle(0);
    EXPECT_THAT(posted, ElementsAre("soon", "late"));
}

TEST_F(PendingNotificationsTest, TakeTheEarlierOnesPlaceUnderTheSameIdentifier) {
    add("a", 5s, " old");
    settle(1);
    add("a", 7s, " new");
    EXPECT_THAT(pending.identifiers(), ElementsAre("a"));
    settle(1);
    clock.advance(7s);
    settle(0);
    EXPECT_THAT(posted, ElementsAre("a new"));
}

TEST_F(PendingNotificationsTest, AreNotPostedOnceTheyWereRemoved) {
    add("a", 1s);
    add("b", 1s);
    settle(2);
    pending.remove("a");
    pending.remove("unknown");
    settle(1);
    clock.advance(1s);
    settle(0);
    EXPECT_THAT(posted, ElementsAre("b"));
}

TEST_F(PendingNotificationsTest, AreNotPostedWhenRemovedInTheMomentTheirTimeComes) {
    add("a", 1s);
    settle(1);
    clock.advance(1s);  // awake, but not yet at its turn
    pending.removeAll();
    settle(0);
    EXPECT_THAT(posted, IsEmpty());
}

TEST_F(PendingNotificationsTest, GoOnAfterAFailure) {
    add("a", 1s, "fails");
    add("b", 2s);
    settle(2);
    clock.advance(2s);
    settle(0);
    EXPECT_THAT(posted, ElementsAre("b"));
    EXPECT_THAT(pending.identifiers(), IsEmpty());
}

TEST_F(PendingNotificationsTest, WaitVeryLongWhenToldToWaitForEver) {
    add("a", Seconds(1e300));
    add("b", Seconds(std::numeric_limits<double>::infinity()));
    settle(2);
    EXPECT_GT(*clock.nextWakeIn(), std::chrono::years(29));
}

TEST_F(PendingNotificationsTest, EndWithTheProgram) {
    add("a", 1s);
    settle(1);
    waitFor(loop, pending.stop());
    EXPECT_EQ(clock.sleepers(), 0U);
    EXPECT_THAT(pending.identifiers(), IsEmpty());
    EXPECT_THAT(posted, IsEmpty());
}

}  // namespace
}  // namespace cairnfield
