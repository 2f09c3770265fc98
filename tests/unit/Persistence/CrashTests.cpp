// What is on disk when the program is killed in the middle of a write: a child process writes, this one stops
// it at every system call and kills it there.

#include "Persistence/JSONFile.h"
#include "Shared/Files/AtomicFile.h"
#include "support/SteppedChild.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/syscall.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;
namespace fs = std::filesystem;

const Json oldValue{{"value", "old"}};
const Json newValue{{"value", std::string(100'000, 'n')}};

/// The name of a call that decides what a crash or a power cut leaves behind; empty for the others.
std::string nameOf(std::int64_t call) {
    static const std::map<std::int64_t, std::string> names{
        {SYS_write, "write"}, {SYS_fsync, "fsync"}, {SYS_rename, "rename"}, {SYS_unlink, "unlink"}};
    const auto place = names.find(call);
    return place == names.end() ? "" : place->second;
}

void writeTo(const FilePath& file, const Json& value) {
    StoredFile stored(file);
    JSONFile::write(stored, value);
}

/// A child process in the middle of writing the new value.
class SteppedWrite : public SteppedChild {
public:
    explicit SteppedWrite(const FilePath& file) : SteppedChild([&file] { writeTo(file, newValue); }) {}
};

std::set<std::string> namesIn(const FilePath& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.bytes()))
        names.insert(entry.path().filename());
    return names;
}

std::optional<Json> contentIn(const FilePath& file) {
    Json content = Json::parse(contentOf(file), nullptr, false);
    if (content.is_discarded()) return std::nullopt;
    return content;
}

TEST(Crash, AtEveryStepOfAWriteLeavesTheOldOrTheNewFileWhole) {
    int kept = 0;
    int replaced = 0;
    int leftovers = 0;
    for (int steps = 0; steps < 1000; ++steps) {
        const TemporaryDirectory home;
        const FilePath file = home / "note.json";
        writeTo(file, oldValue);
        SteppedWrite child(file);
        const bool running = child.step(steps);
        child.kill();

        const std::optional<Json> content = contentIn(file);
        ASSERT_TRUE(content == oldValue || content == newValue) << "killed after " << steps << " steps";
        (content == oldValue ? kept : replaced) += 1;
        leftovers += namesIn(home.path()).size() > 1 ? 1 : 0;
        AtomicFile::removeLeftovers(file);
        EXPECT_THAT(namesIn(home.path()), ElementsAre("note.json")) << "killed after " << steps << " steps";
        if (running) continue;

        EXPECT_EQ(child.exitStatus(), 0);
        EXPECT_EQ(content, newValue);
        // How many steps there are depends on the C library and on what instruments it, and a child that is
        // killed before a call may still carry it out. What counts is that kills fell on every side.
        EXPECT_GE(kept, 3) << "steps before the replacement";
        EXPECT_GE(replaced, 1) << "steps after the replacement";
        EXPECT_GE(leftovers, 2) << "steps with a temporary file on disk";
        return;
    }
    FAIL() << "the write never ended";
}

TEST(Crash, InTheFirstWriteLeavesNoFileOrAWholeOne) {
    int missing = 0;
    for (int steps = 0; steps < 1000; ++steps) {
        const TemporaryDirectory home;
        const FilePath file = home.path().appending("new/folder/note.json");
        SteppedWrite child(file);
        const bool running = child.step(steps);
        child.kill();
        missing += fs::exists(file.bytes()) ? 0 : 1;
        if (fs::exists(file.bytes()))
            ASSERT_EQ(contentIn(file), newValue) << "killed after " << steps << " steps";
        if (running) continue;
        EXPECT_GE(missing, 3);
        return;
    }
    FAIL() << "the write never ended";
}

TEST(PowerCut, FindsTheBytesOnDiskBeforeTheNameAndTheNameBeforeTheEnd) {
    const TemporaryDirectory home;
    const FilePath file = home / "note.json";
    writeTo(file, oldValue);
    SteppedWrite child(file);
    std::vector<std::string> calls;
    while (child.step()) {
        const std::string call = nameOf(child.call());
        if (!call.empty() && (calls.empty() || calls.back() != call)) calls.push_back(call);
    }
    EXPECT_THAT(calls, ElementsAre("write", "fsync", "rename", "fsync"));
    EXPECT_EQ(contentIn(file), newValue);
}

TEST(Crash, WhileADamagedFileIsReplacedLosesNothingOfIt) {
    const std::string damaged = "{\"value\": \"o";
    int kept = 0;
    int replaced = 0;
    for (int steps = 0; steps < 1000; ++steps) {
        const TemporaryDirectory home;
        const FilePath file = home.write("note.json", damaged);
        SteppedChild child([&file] {
            StoredFile stored(file);
            JSONFile::read(stored, [](const Json&) {});
            JSONFile::write(stored, newValue);
        });
        const bool running = child.step(steps);
        child.kill();

        const FilePath keptFile = home / "note.json.damaged";
        const bool isKept = fs::exists(keptFile.bytes());
        if (isKept) ASSERT_EQ(contentOf(keptFile), damaged) << "killed after " << steps << " steps";
        const bool isReplaced = contentIn(file) == newValue;
        ASSERT_TRUE(isReplaced ? isKept : contentOf(file) == damaged) << "killed after " << steps << " steps";
        kept += isKept && !isReplaced ? 1 : 0;
        replaced += isReplaced ? 1 : 0;
        if (running) continue;

        EXPECT_EQ(child.exitStatus(), 0);
        EXPECT_TRUE(isReplaced);
        EXPECT_GE(kept, 1) << "steps between the two";
        EXPECT_GE(replaced, 1);
        return;
    }
    FAIL() << "the write never ended";
}

}  // namespace
}  // namespace cairnfield
