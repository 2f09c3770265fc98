// The rules of sharing, waiting and remembering, over walks that the test begins and ends.

#include "Services/FileSystem/DirectorySizeScanner.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/FakeTreeMeasurer.h"
#include "support/SettableWallClock.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <system_error>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;
using namespace std::chrono_literals;

struct DirectorySizeScannerTest : testing::Test {
    using Handle = TaskHandle<DirectoryScanResult>;

    SettableWallClock clock{Date(24h * 365 * 56)};
    FakeTreeMeasurer measurer{clock};
    ThreadPool pool{2};
    ThreadPool walking{4};
    DirectorySizeScanner scanner{pool, walking, measurer, clock};
    const FilePath a{"/tree/a"}, b{"/tree/b"}, c{"/tree/c"}, d{"/tree/d"};

    void TearDown() override { waitFor(pool, scanner.stop()); }

    /// Calls arrive in the order in which this is called.
    Handle ask(const FilePath& path, bool useCache = true) {
        return spawn(scanner.executor(), scanner.size(path, useCache));
    }
    /// Until every call that was made has gone as far as it gets by itself: a round for the call and one for
    /// its walk.
    void settle() {
        for (int round = 0; round < 4; ++round) static_cast<void>(cached(FilePath("/nothing")));
    }
    std::optional<DirectoryScanResult> cached(const FilePath& path) {
        return waitFor(pool, scanner.cachedResult(path));
    }
    DirectoryScanResult walkOnce(const FilePath& path, std::int64_t bytes) {
        measurer.finish(path, bytes);
        return waitFor(ask(path, false));
    }
};

TEST_F(DirectorySizeScannerTest, TwoCallsForOnePathShareOneWalk) {
    const Handle first = ask(a), second = ask(a);
    measurer.waitForStarts(1);
    settle();
    measurer.finish(a, 4096);
    const DirectoryScanResult one = waitFor(first);
    EXPECT_EQ(one, waitFor(second));
    EXPECT_EQ(one.totalBytes, 4096);
    EXPECT_THAT(measurer.started(), ElementsAre(a));
}

TEST_F(DirectorySizeScannerTest, SpellingsOfOnePathAreOnePath) {
    const Handle first = ask(a), second = ask(FilePath("/tree//x/../a/"));
    measurer.waitForStarts(1);
    settle();
    measurer.finish(a, 1);
    EXPECT_EQ(waitFor(first), waitFor(second));
    EXPECT_THAT(measurer.started(), ElementsAre(a));
    EXPECT_TRUE(cached(FilePath("/tree/./a")));
}

TEST_F(DirectorySizeScannerTest, AForcedCallWalksAgainThoughTheEntryIsFresh) {
    EXPECT_EQ(walkOnce(a, 1).totalBytes, 1);
    EXPECT_EQ(walkOnce(a, 2).totalBytes, 2);
    EXPECT_EQ(measurer.started().size(), 2U);
    EXPECT_EQ(waitFor(ask(a)).totalBytes, 2);
    EXPECT_EQ(measurer.started().size(), 2U);
}

TEST_F(DirectorySizeScannerTest, AForcedCallJoinsAWalkUnderWay) {
    const Handle first = ask(a, true), forced = ask(a, false);
    measurer.waitForStarts(1);
    settle();
    measurer.finish(a, 7);
    EXPECT_EQ(waitFor(forced), waitFor(first));
    EXPECT_EQ(measurer.started().size(), 1U);
}

TEST_F(DirectorySizeScannerTest, AFreshEntryAnswersWhileAForcedWalkIsUnderWay) {
    walkOnce(a, 1);
    const Handle forced = ask(a, false);
    measurer.waitForStarts(2);
    EXPECT_EQ(waitFor(ask(a, true)).totalBytes, 1);
    measurer.finish(a, 2);
    EXPECT_EQ(waitFor(forced).totalBytes, 2);
}

TEST_F(DirectorySizeScannerTest, TheThirdAndFourthWalkWaitAndTheThirdGoesFirst) {
    const Handle first = ask(a), second = ask(b), third = ask(c), fourth = ask(d);
    measurer.waitForStarts(2);
    settle();
    EXPECT_THAT(measurer.started(), UnorderedElementsAre(a, b));
    measurer.finish(b, 2);
    measurer.waitForStarts(3);
    EXPECT_EQ(measurer.started().back(), c);
    settle();
    EXPECT_EQ(measurer.started().size(), 3U);
    measurer.finish(c, 3);
    measurer.waitForStarts(4);
    EXPECT_EQ(measurer.started().back(), d);
    measurer.finish(a, 1);
    measurer.finish(d, 4);
    EXPECT_EQ(waitFor(first).totalBytes, 1);
    EXPECT_EQ(waitFor(fourth).totalBytes, 4);
    EXPECT_EQ(measurer.mostAtOnce(), 2U);
}

TEST_F(DirectorySizeScannerTest, AFailedWalkGivesItsSlotBack) {
    const Handle first = ask(a), second = ask(b), third = ask(c);
    measurer.waitForStarts(2);
    measurer.fail(a, CairnfieldError(CairnfieldError::PathMissing{a.bytes()}));
    EXPECT_THROW(waitFor(first), CairnfieldError);
    measurer.waitForStarts(3);
    measurer.finish(b, 2);
    measurer.finish(c, 3);
    EXPECT_EQ(waitFor(third).totalBytes, 3);
    static_cast<void>(waitFor(second));
}

TEST_F(DirectorySizeScannerTest, ManyWalksAtOnceNeverExceedTheSlots) {
    std::vector<Handle> handles;
    for (int i = 0; i < 100; ++i) {
        const FilePath path("/many/" + std::to_string(i));
        measurer.finish(path, i);
        handles.push_back(ask(path));
    }
    for (int i = 0; i < 100; ++i) EXPECT_EQ(waitFor(handles[static_cast<std::size_t>(i)]).totalBytes, i);
    EXPECT_LE(measurer.mostAtOnce(), 2U);
}

TEST_F(DirectorySizeScannerTest, AnEntryIsStaleAtExactlyTheEndOfItsLifetime) {
    walkOnce(a, 1);
    clock.advance(1800s - 1ns);
    EXPECT_TRUE(cached(a));
    EXPECT_EQ(waitFor(ask(a)).totalBytes, 1);
    clock.advance(1ns);
    EXPECT_FALSE(cached(a));
    measurer.finish(a, 2);
    EXPECT_EQ(waitFor(ask(a)).totalBytes, 2);
    EXPECT_EQ(measurer.started().size(), 2U);
}

TEST_F(DirectorySizeScannerTest, AskingForTheCachedResultNeverWalks) {
    EXPECT_FALSE(cached(a));
    EXPECT_TRUE(measurer.started().empty());
}

TEST_F(DirectorySizeScannerTest, AFailureIsSharedAndLeavesAnOlderEntry) {
    walkOnce(a, 5);
    const Handle first = ask(a, false), joined = ask(a, false);
    measurer.waitForStarts(2);
    settle();
    const CairnfieldError denied(CairnfieldError::PermissionDenied{a.bytes()});
    measurer.fail(a, denied);
    for (const Handle& handle : {first, joined}) {
        try {
            static_cast<void>(waitFor(handle));
            ADD_FAILURE() << "no failure";
        } catch (const CairnfieldError& error) {
            EXPECT_EQ(error, denied);
        }
    }
    ASSERT_TRUE(cached(a));
    EXPECT_EQ(cached(a)->totalBytes, 5);
    EXPECT_EQ(walkOnce(a, 6).totalBytes, 6) << "the failed walk is forgotten";
}

TEST_F(DirectorySizeScannerTest, ASystemFailureComesThroughAsItIs) {
    const Handle call = ask(a);
    measurer.fail(a, std::system_error(EMFILE, std::generic_category()));
    try {
        static_cast<void>(waitFor(call));
        ADD_FAILURE() << "no failure";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EMFILE);
    }
    EXPECT_FALSE(cached(a));
}

TEST_F(DirectorySizeScannerTest, InvalidateDropsOneFolderAndLeavesThoseInsideAndAbove) {
    const FilePath above("/tree"), inside("/tree/a/inside");
    for (const FilePath& path : {above, a, inside}) walkOnce(path, 1);
    waitFor(pool, scanner.invalidate(FilePath("/tree/a/")));
    EXPECT_FALSE(cached(a));
    EXPECT_TRUE(cached(above));
    EXPECT_TRUE(cached(inside));
}

TEST_F(DirectorySizeScannerTest, InvalidateAllEmptiesTheCache) {
    for (const FilePath& path : {a, b}) walkOnce(path, 1);
    waitFor(pool, scanner.invalidateAll());
    EXPECT_FALSE(cached(a));
    EXPECT_FALSE(cached(b));
}

TEST_F(DirectorySizeScannerTest, CancellingACallerDoesNotStopTheWalk) {
    const Handle starter = ask(a), joiner = ask(a);
    measurer.waitForStarts(1);
    settle();
    starter.cancel();
    joiner.cancel();
    settle();
    EXPECT_EQ(measurer.running(), 1U);
    measurer.finish(a, 9);
    EXPECT_EQ(waitFor(starter).totalBytes, 9);
    EXPECT_EQ(waitFor(joiner).totalBytes, 9);
    EXPECT_TRUE(cached(a));
}

TEST_F(DirectorySizeScannerTest, StopEndsWalksUnderWayAndThoseThatWait) {
    const Handle first = ask(a), second = ask(b), waiting = ask(c);
    measurer.waitForStarts(2);
    settle();
    waitFor(pool, scanner.stop());
    EXPECT_EQ(measurer.running(), 0U);
    for (const Handle& handle : {first, second, waiting}) EXPECT_THROW(waitFor(handle), Cancelled);
    EXPECT_EQ(measurer.started().size(), 2U) << "the one that waited never began";
    EXPECT_THROW(waitFor(ask(d)), Cancelled);
    EXPECT_EQ(measurer.started().size(), 2U);
}

TEST_F(DirectorySizeScannerTest, TheSizeOfOneItemIsTheMeasurers) {
    EXPECT_EQ(scanner.allocatedSize(a), static_cast<std::int64_t>(a.bytes().size()));
}

}  // namespace
}  // namespace cairnfield
