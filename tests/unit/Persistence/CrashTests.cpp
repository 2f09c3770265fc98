// What is on disk when the program is killed in the middle of a write: a child process writes, this one stops
// it at every system call and kills it there.

#include "Persistence/JSONFile.h"
#include "Shared/Files/AtomicFile.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;
namespace fs = std::filesystem;

const Json oldValue{{"value", "old"}};
const Json newValue{{"value", std::string(100'000, 'n')}};

/// The calls that decide what a crash or a power cut leaves behind.
const std::map<std::uint64_t, std::string>& watchedCalls() {
    static const std::map<std::uint64_t, std::string> calls{
        {SYS_write, "write"}, {SYS_fsync, "fsync"}, {SYS_rename, "rename"}, {SYS_unlink, "unlink"}};
    return calls;
}

/// A child process that stands still before and after each of its system calls.
class SteppedChild {
public:
    explicit SteppedChild(const FilePath& file) : pid_(fork()) {
        if (pid_ == 0) {
            // From here to the end nothing of the test program runs but the write.
            if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(2);
            raise(SIGSTOP);
            try {
                JSONFile::write(file, newValue);
            } catch (...) {
                _exit(3);
            }
            _exit(0);
        }
        EXPECT_TRUE(waitForStop());
        ptrace(PTRACE_SETOPTIONS, pid_, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    }
    ~SteppedChild() { kill(); }
    SteppedChild(const SteppedChild&) = delete;
    SteppedChild& operator=(const SteppedChild&) = delete;

    /// Runs to the next system call, or to the end of the present one; false when the child has ended.
    bool step() {
        if (ptrace(PTRACE_SYSCALL, pid_, nullptr, nullptr) != 0) return false;
        return waitForStop();
    }

    /// The name of the watched call that is about to begin, or nothing.
    [[nodiscard]] std::string call() const {
        __ptrace_syscall_info info{};
        ptrace(PTRACE_GET_SYSCALL_INFO, pid_, sizeof info, &info);
        if (info.op != PTRACE_SYSCALL_INFO_ENTRY) return {};
        const auto place = watchedCalls().find(info.entry.nr);
        return place == watchedCalls().end() ? "" : place->second;
    }

    void kill() {
        if (ended_) return;
        ::kill(pid_, SIGKILL);
        waitpid(pid_, &status_, 0);
        ended_ = true;
    }

    /// After it has ended by itself.
    [[nodiscard]] int exitStatus() const { return WIFEXITED(status_) ? WEXITSTATUS(status_) : -1; }

private:
    bool waitForStop() {
        waitpid(pid_, &status_, 0);
        ended_ = !WIFSTOPPED(status_);
        return !ended_;
    }

    const pid_t pid_;
    int status_ = 0;
    bool ended_ = false;
};

std::set<std::string> namesIn(const FilePath& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.bytes()))
        names.insert(entry.path().filename());
    return names;
}

std::optional<Json> contentIn(const FilePath& file) {
    std::optional<Json> content;
    JSONFile::read(file, [&](const Json& json) { content = json; });
    return content;
}

TEST(Crash, AtEveryStepOfAWriteLeavesTheOldOrTheNewFileWhole) {
    int kept = 0;
    int replaced = 0;
    int leftovers = 0;
    for (int steps = 0; steps < 1000; ++steps) {
        const TemporaryDirectory home;
        const FilePath file = home / "note.json";
        JSONFile::write(file, oldValue);
        SteppedChild child(file);
        bool running = true;
        for (int step = 0; step < steps && running; ++step) running = child.step();
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
        // How many steps there are depends on the C library and on what instruments it, and a child that is killed before a
        // call may still carry it out. What counts is that kills fell on every side.
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
        SteppedChild child(file);
        bool running = true;
        for (int step = 0; step < steps && running; ++step) running = child.step();
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
    JSONFile::write(file, oldValue);
    SteppedChild child(file);
    std::vector<std::string> calls;
    while (child.step()) {
        const std::string call = child.call();
        if (!call.empty() && (calls.empty() || calls.back() != call)) calls.push_back(call);
    }
    EXPECT_THAT(calls, ElementsAre("write", "fsync", "rename", "fsync"));
    EXPECT_EQ(contentIn(file), newValue);
}

}  // namespace
}  // namespace cairnfield
