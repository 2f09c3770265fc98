// When and in which order settings reach the disk.

#include "Platform/Linux/SettingsWriter.h"
#include "Shared/Concurrency/RunLoop.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/SteppedClock.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <mutex>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// Holds work back until it is let go.
class HeldExecutor final : public Executor {
public:
    void post(Work* work) override {
        const std::lock_guard lock(mutex_);
        queue_.push(work);
    }
    /// Runs what is there, and what that posts.
    void runAll() {
        while (Work* work = next()) runNow(work);
    }

private:
    Work* next() {
        const std::lock_guard lock(mutex_);
        return queue_.pop();
    }
    std::mutex mutex_;
    WorkQueue queue_;
};

class SettingsOnDisk : public testing::Test {
protected:
    SettingsOnDisk() {
        file.read([](const std::string&) {});
    }
    [[nodiscard]] std::string onDisk() const {
        return fs::exists(path.bytes()) ? contentOf(path) : "nothing";
    }

    TemporaryDirectory home;
    const FilePath path = home.path().appending("config/settings.json");
    StoredFile file{path};
    SteppedClock clock;
};

class HeldSettings : public SettingsOnDisk {
protected:
    HeldExecutor background;
};

TEST_F(HeldSettings, AreNotWrittenByTheThreadThatChangesThem) {
    SettingsWriter writer(file, background, clock);
    writer.write("one");
    EXPECT_EQ(onDisk(), "nothing");
    background.runAll();
    EXPECT_EQ(onDisk(), "one");
}

TEST_F(HeldSettings, AreWrittenInTheirNewestFormAlone) {
    SettingsWriter writer(file, background, clock);
    writer.write("one");
    writer.write("two");
    writer.write("three");
    background.runAll();
    EXPECT_EQ(onDisk(), "three");
}

TEST_F(HeldSettings, AreOnDiskBeforeTheProcessGoesWithoutItsThreads) {
    SettingsWriter writer(file, background, clock);
    writer.write("one");
    writer.writeAfterPause("one, and more");
    writer.flushBlocking();
    EXPECT_EQ(onDisk(), "one, and more");
    background.runAll();
    clock.advance(1s);
    background.runAll();
    EXPECT_EQ(onDisk(), "one, and more");
}

TEST_F(HeldSettings, ThatAreTypedAreWrittenWhenTheTypingPauses) {
    SettingsWriter writer(file, background, clock);
    for (const char* typed : {"m", "mi", "min"}) {
        writer.writeAfterPause(typed);
        background.runAll();
        clock.advance(900ms);
        background.runAll();
        EXPECT_EQ(onDisk(), "nothing") << typed;
    }
    clock.advance(99ms);
    background.runAll();
    EXPECT_EQ(onDisk(), "nothing") << "a pause is a whole second";
    clock.advance(1ms);
    background.runAll();
    EXPECT_EQ(onDisk(), "min");
}

TEST_F(HeldSettings, ThatAreTypedAreWrittenWhenTheTypingIsDone) {
    SettingsWriter writer(file, background, clock);
    writer.writeAfterPause("mine");
    background.runAll();
    writer.writeHeld();
    background.runAll();
    EXPECT_EQ(onDisk(), "mine");
    writer.writeHeld();
    clock.advance(1s);
    background.runAll();
    EXPECT_EQ(onDisk(), "mine");
}

TEST_F(HeldSettings, ThatAreTypedGoWithTheNextChange) {
    SettingsWriter writer(file, background, clock);
    writer.writeAfterPause("typed");
    background.runAll();
    writer.write("typed, and switched");
    background.runAll();
    EXPECT_EQ(onDisk(), "typed, and switched");
    clock.advance(1s);
    background.runAll();
    EXPECT_EQ(onDisk(), "typed, and switched") << "the newer one stays";
}

TEST_F(SettingsOnDisk, AreThereWhenTheFlushReturns) {
    RunLoop loop;
    ThreadPool pool(2);
    SettingsWriter writer(file, pool, clock);
    for (int round = 0; round < 50; ++round) {
        writer.write(std::to_string(round));
        writer.writeAfterPause(std::to_string(round) + " typed");
        waitFor(loop, writer.flush());
        ASSERT_EQ(onDisk(), std::to_string(round) + " typed");
    }
}

TEST_F(SettingsOnDisk, AreThereWhenTheWriterIsGone) {
    ThreadPool pool(2);
    {
        SettingsWriter writer(file, pool, clock);
        for (int round = 0; round < 20; ++round) writer.write(std::to_string(round));
        writer.writeAfterPause("last");
    }
    EXPECT_EQ(onDisk(), "last");
}

TEST_F(HeldSettings, ThatCouldNotBeWrittenAreWrittenWithTheNextChange) {
    SettingsWriter writer(file, background, clock);
    fs::create_directories(path.bytes());
    writer.write("one");
    background.runAll();
    EXPECT_TRUE(fs::is_directory(path.bytes()));
    fs::remove(path.bytes());
    writer.write("two");
    background.runAll();
    EXPECT_EQ(onDisk(), "two");
}

}  // namespace
}  // namespace cairnfield
