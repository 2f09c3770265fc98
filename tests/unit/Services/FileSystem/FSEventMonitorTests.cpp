#include "Services/FileSystem/FSEventMonitor.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Logging/Log.h"
#include "support/CapturedLog.h"
#include "support/FakeFileEventStreams.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace cairnfield;
using namespace std::chrono_literals;
using testing::ElementsAre;

namespace {

using Paths = std::vector<FilePath>;

const FilePath a("/home/ada/a");
const FilePath b("/home/ada/b");

/// Streams that keep on telling when they should be gone.
class LateStreams final : public FileEventStreamCreating {
public:
    std::unique_ptr<FileEventStream> create(std::vector<FilePath> /*roots*/,
                                            std::chrono::milliseconds /*latency*/,
                                            OnChange onChange) override {
        told.push_back(std::move(onChange));
        return std::make_unique<FileEventStream>();
    }
    std::vector<OnChange> told;
};

class FSEventMonitorTest : public testing::Test {
protected:
    std::shared_ptr<FSEventMonitor> monitor(FileEventStreamCreating& over) {
        return std::make_shared<FSEventMonitor>(pool, over, 3s,
                                                [this](Paths paths) { changes.push_back(std::move(paths)); });
    }
    void drain(FSEventMonitor& drained) { waitFor(pool, drained.finished()); }

    ThreadPool pool{2};
    FakeFileEventStreams streams;
    std::vector<Paths> changes;  ///< written on the monitor's queue; read once that is drained
};

TEST_F(FSEventMonitorTest, WatchesTheFoldersWithItsLatencyAndSaysHowMany) {
    const CapturedLog log(Log::events());
    const auto tested = monitor(streams);
    tested->start({a, b});
    drain(*tested);
    EXPECT_EQ(streams.roots(), (Paths{a, b}));
    EXPECT_EQ(streams.latency(), 3s);
    EXPECT_EQ(log.text(), "info: Watching 2 path(s)\n");
}

TEST_F(FSEventMonitorTest, PassesChangesOn) {
    const auto tested = monitor(streams);
    tested->start({a});
    drain(*tested);
    streams.report({a, FilePath("/home/ada/a/sub")});
    streams.report({a});
    drain(*tested);
    EXPECT_THAT(changes, ElementsAre(Paths{a, FilePath("/home/ada/a/sub")}, Paths{a}));
}

TEST_F(FSEventMonitorTest, StartedTwiceItHasOneStream) {
    const auto tested = monitor(streams);
    tested->start({a});
    tested->start({b});
    drain(*tested);
    EXPECT_EQ(streams.running(), 1u);
    EXPECT_EQ(streams.roots(), Paths{b});
    streams.report({b});
    drain(*tested);
    EXPECT_EQ(changes.size(), 1u);
}

TEST_F(FSEventMonitorTest, StartedWithNothingItStopsAndRunsNothing) {
    const CapturedLog log(Log::events());
    const auto tested = monitor(streams);
    tested->start({});
    drain(*tested);
    EXPECT_EQ(streams.running(), 0u);
    tested->start({a});
    tested->start({});
    drain(*tested);
    EXPECT_EQ(streams.running(), 0u);
    EXPECT_EQ(log.text(), "info: Watching 1 path(s)\n");
}

TEST_F(FSEventMonitorTest, StopsAndMayBeStartedAgain) {
    const auto tested = monitor(streams);
    tested->stop();
    tested->start({a});
    tested->stop();
    drain(*tested);
    EXPECT_EQ(streams.running(), 0u);
    tested->start({b});
    drain(*tested);
    EXPECT_EQ(streams.roots(), Paths{b});
}

TEST_F(FSEventMonitorTest, AStreamThatCannotBeCreatedIsLoggedAndNothingElseHappens) {
    const CapturedLog log(Log::events());
    const auto tested = monitor(streams);
    tested->start({a});
    drain(*tested);
    streams.refuses = true;
    tested->start({b});
    drain(*tested);
    EXPECT_EQ(streams.running(), 0u) << "the older stream still runs";
    streams.refuses = false;
    tested->start({b});
    drain(*tested);
    EXPECT_EQ(streams.roots(), Paths{b});
    EXPECT_EQ(log.text(),
              "info: Watching 1 path(s)\nerror: Failed to create FSEvent stream\ninfo: Watching 1 path(s)\n");
}

TEST_F(FSEventMonitorTest, AnEventWithoutPathsCallsNothing) {
    const auto tested = monitor(streams);
    tested->start({a});
    drain(*tested);
    streams.report({});
    drain(*tested);
    EXPECT_TRUE(changes.empty());
}

TEST_F(FSEventMonitorTest, WhatAReplacedOrStoppedStreamStillTellsIsDropped) {
    LateStreams late;
    const auto tested = monitor(late);
    tested->start({a});
    tested->start({b});
    drain(*tested);
    ASSERT_EQ(late.told.size(), 2u);
    late.told[0]({a});
    late.told[1]({b});
    drain(*tested);
    EXPECT_THAT(changes, ElementsAre(Paths{b}));
    tested->stop();
    late.told[1]({b});
    drain(*tested);
    EXPECT_EQ(changes.size(), 1u);
}

TEST_F(FSEventMonitorTest, ReleasingItStopsTheStreamAndDropsWhatWasAskedOfIt) {
    LateStreams late;
    auto tested = monitor(late);
    tested->start({a});
    drain(*tested);
    tested.reset();
    late.told[0]({a});

    auto released = monitor(streams);
    released->start({a});
    drain(*released);
    EXPECT_EQ(streams.running(), 1u);
    released->start({b});
    released.reset();
    // Whether the second start still found its monitor or not, nothing is left of it.
    const auto other = monitor(streams);
    for (int round = 0; round < 10'000 && streams.running() > 0; ++round) drain(*other);
    EXPECT_EQ(streams.running(), 0u);
    EXPECT_TRUE(changes.empty());
}

}  // namespace
