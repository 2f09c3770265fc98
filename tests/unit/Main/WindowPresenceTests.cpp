#include "Main/WindowPresence.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/RunLoop.h"
#include "support/FakeStatusItem.h"
#include "support/SteppedClock.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

class Presence : public testing::Test {
protected:
    ~Presence() override { runToEnd(loop, presence.end()); }

    // Lets so much time pass once the wait for a host is under way.
    void pass(ContinuousClock::Duration duration) {
        settle();
        clock.advance(duration);
        settle();
    }
    // Until nothing is queued: whoever was cancelled has ended, whoever is to wait waits.
    void settle() {
        for (int turn = 0; turn < 5; ++turn) runToEnd(loop, nothing());
    }
    static Task<> nothing() { co_await yieldNow(); }

    RunLoop loop;
    SteppedClock clock;
    FakeStatusItem item;
    bool isOpen = false;
    int timesShown = 0;
    int timesQuit = 0;
    WindowPresence presence{loop,
                            item,
                            clock,
                            {.isWindowOpen = [this] { return isOpen; },
                             .showWindow =
                                 [this] {
                                     isOpen = true;
                                     ++timesShown;
                                 },
                             .quit = [this] { ++timesQuit; }}};

    void close() {
        isOpen = false;
        presence.windowClosed();
    }
};

TEST_F(Presence, OpensTheWindowAtOnceForAPerson) {
    item.setHost(true);
    presence.begin(Launch::byPerson);
    EXPECT_EQ(timesShown, 1);
    pass(WindowPresence::patience);
    EXPECT_EQ(timesShown, 1);
}

TEST_F(Presence, OpensNoWindowAtLoginWhereAHostShowsTheItem) {
    item.setHost(true);
    presence.begin(Launch::atLogin);
    pass(WindowPresence::patience * 10);
    EXPECT_EQ(timesShown, 0);
}

TEST_F(Presence, WaitsAtLoginForAHostThatIsLate) {
    presence.begin(Launch::atLogin);
    pass(WindowPresence::patience - std::chrono::milliseconds(1));
    EXPECT_EQ(timesShown, 0);
    item.setHost(true);
    pass(WindowPresence::patience * 10);
    EXPECT_EQ(timesShown, 0);
    EXPECT_EQ(clock.sleepers(), 0U) << "nothing wakes for a host that is there";
}

TEST_F(Presence, OpensTheWindowAtLoginWhenNoHostComes) {
    presence.begin(Launch::atLogin);
    pass(WindowPresence::patience);
    EXPECT_EQ(timesShown, 1);
    EXPECT_EQ(clock.sleepers(), 0U) << "nothing is polled";
}

TEST_F(Presence, RunsOnWithoutAWindowWhileAHostShowsTheItem) {
    item.setHost(true);
    presence.begin(Launch::byPerson);
    close();
    EXPECT_EQ(timesQuit, 0);
    pass(WindowPresence::patience * 10);
    EXPECT_EQ(timesShown, 1);
}

TEST_F(Presence, EndsWithTheWindowWhereNothingElseLeadsBack) {
    presence.begin(Launch::byPerson);
    close();
    EXPECT_EQ(timesQuit, 1);
}

TEST_F(Presence, OpensTheWindowAgainWhenTheLastHostGoes) {
    item.setHost(true);
    presence.begin(Launch::byPerson);
    close();
    item.setHost(false);
    EXPECT_EQ(timesShown, 1);
    pass(WindowPresence::patience);
    EXPECT_EQ(timesShown, 2);
}

TEST_F(Presence, LeavesAnOpenWindowAloneWhenTheLastHostGoes) {
    item.setHost(true);
    presence.begin(Launch::byPerson);
    item.setHost(false);
    pass(WindowPresence::patience);
    EXPECT_EQ(timesShown, 1);
}

TEST_F(Presence, DoesNotMindAHostThatRestarts) {
    item.setHost(true);
    presence.begin(Launch::atLogin);
    for (int restart = 0; restart < 3; ++restart) {
        item.setHost(false);
        pass(WindowPresence::patience / 2);
        item.setHost(true);
        pass(WindowPresence::patience / 2);
    }
    pass(WindowPresence::patience);
    EXPECT_EQ(timesShown, 0);
}

TEST_F(Presence, CountsEachAbsenceFromItsBeginning) {
    item.setHost(true);
    presence.begin(Launch::atLogin);
    item.setHost(false);
    pass(WindowPresence::patience - std::chrono::milliseconds(1));
    item.setHost(true);
    item.setHost(false);
    pass(std::chrono::milliseconds(1));
    EXPECT_EQ(timesShown, 0);
    pass(WindowPresence::patience);
    EXPECT_EQ(timesShown, 1);
}

TEST_F(Presence, DecidesNothingOnceItHasEnded) {
    item.setHost(true);
    presence.begin(Launch::byPerson);
    item.setHost(false);
    settle();
    runToEnd(loop, presence.end());
    EXPECT_EQ(clock.sleepers(), 0U);
    close();
    EXPECT_EQ(timesQuit, 0);
}

}  // namespace
}  // namespace cairnfield
