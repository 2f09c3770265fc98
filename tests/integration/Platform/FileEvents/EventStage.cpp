#include "EventStage.h"

#include "Shared/Concurrency/TaskHandle.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace cairnfield {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr auto limit = 30s;
constexpr unsigned modifications = 2;  // of the bits, the one that only a watch of contents asks for

void addInode(InodeNumbers& all, const fs::path& path) {
    struct stat facts{};
    if (lstat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode)) all.insert(facts.st_ino);
}

}  // namespace

bool eventually(const std::function<bool()>& condition) {
    std::mutex mutex;
    std::condition_variable never;
    std::unique_lock lock(mutex);
    const auto end = std::chrono::steady_clock::now() + limit;
    for (auto pause = 2ms; !condition(); pause = std::min(pause * 2, 500ms)) {
        if (std::chrono::steady_clock::now() > end) return false;
        never.wait_for(lock, pause);  // asking must not hold up what is asked for
    }
    return true;
}

std::string inChild(const std::function<std::string()>& body) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        std::string answer;
        try {
            answer = body();
        } catch (const std::exception& failure) {
            answer = std::string("threw: ") + failure.what();
        }
        const ssize_t written = write(ends[1], answer.data(), answer.size());
        _exit(written == static_cast<ssize_t>(answer.size()) ? 0 : 1);
    }
    close(ends[1]);
    std::array<char, 4096> answer{};
    const ssize_t length = read(ends[0], answer.data(), answer.size());
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "the child did not end well";
    return {answer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

void ToldChanges::add(std::vector<FilePath> paths) {
    const std::lock_guard lock(mutex_);
    paths_.insert(paths.begin(), paths.end());
    batches_.push_back(std::move(paths));
    times_.push_back(std::chrono::steady_clock::now());
    changed_.notify_all();
}

bool ToldChanges::waitForPath(const FilePath& path) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, limit, [&] { return paths_.contains(path); });
}

ToldChanges::Instant ToldChanges::timeOf(std::size_t batch) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, limit, [&] { return times_.size() > batch; })) return {};
    return times_[batch];
}

std::set<FilePath> ToldChanges::paths() const {
    const std::lock_guard lock(mutex_);
    return paths_;
}

std::vector<std::vector<FilePath>> ToldChanges::batches() const {
    const std::lock_guard lock(mutex_);
    return batches_;
}

void ToldChanges::forget() {
    const std::lock_guard lock(mutex_);
    paths_.clear();
}

InodeNumbers watchedDirectories() {
    InodeNumbers all;
    for (const auto& entry : fs::directory_iterator("/proc/self/fdinfo")) {
        std::ifstream lines(entry.path());
        for (std::string line; std::getline(lines, line);) {
            unsigned long inode = 0;
            unsigned mask = 0;
            if (std::sscanf(line.c_str(), "inotify wd:%*s ino:%lx sdev:%*s mask:%x", &inode, &mask) == 2 &&
                (mask & modifications) != 0)
                all.insert(inode);
        }
    }
    return all;
}

InodeNumbers directoriesOf(const std::vector<FilePath>& roots) {
    InodeNumbers all;
    for (const FilePath& root : roots) {
        std::error_code error;
        const fs::path top = fs::canonical(root.bytes(), error);
        if (error) continue;
        addInode(all, top);
        for (const auto& entry : fs::recursive_directory_iterator(top)) addInode(all, entry.path());
    }
    return all;
}

struct HeldThread::Gate {
    std::mutex mutex;
    std::condition_variable changed;
    bool isHeld = false;  // guarded by mutex, as the other
    bool isOpen = false;

    void set(bool& flag) {
        const std::lock_guard lock(mutex);
        flag = true;
        changed.notify_all();
    }
    void wait(const bool& flag) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&flag] { return flag; });
    }
    static Task<> hold(std::shared_ptr<Gate> gate) {
        gate->set(gate->isHeld);
        gate->wait(gate->isOpen);
        co_return;
    }
};

HeldThread::HeldThread(ThreadPool& pool) : gate_(std::make_shared<Gate>()) {
    spawn(pool, Gate::hold(gate_));
    gate_->wait(gate_->isHeld);
}

HeldThread::~HeldThread() {
    gate_->set(gate_->isOpen);
}

void EventStage::watch(std::vector<FilePath> roots, std::chrono::milliseconds delay) {
    stream.reset();
    ASSERT_TRUE(eventually([] { return watchedDirectories().empty(); }));
    stream = streams.create(std::move(roots), delay,
                            [this](std::vector<FilePath> paths) { told.add(std::move(paths)); });
}

bool EventStage::watchesExactly(const std::vector<FilePath>& roots) {
    return eventually([&roots] { return watchedDirectories() == directoriesOf(roots); });
}

bool EventStage::notices(const FilePath& directory, const FilePath& toldAs) {
    told.forget();
    std::ofstream(directory.appending("noticed").bytes()) << "content\n";
    return told.waitForPath(toldAs);
}

}  // namespace cairnfield
