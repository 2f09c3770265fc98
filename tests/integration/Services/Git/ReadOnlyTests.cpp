// An inspection is read-only: everything under the home, the repositories' own files included, is afterwards
// what it was before, to the byte and the nanosecond.

#include "GitServices.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;

/// All of an item that an inspection could change. Not the time of the last access, which reading may move.
struct ItemState {
    mode_t mode = 0;
    ino_t inode = 0;
    nlink_t links = 0;
    off_t length = 0;
    std::int64_t modified = 0;  ///< nanoseconds
    std::int64_t changed = 0;  ///< nanoseconds; moves with every write, also with one that sets the date back
    std::string content;       ///< of a file, or the target of a link

    friend bool operator==(const ItemState&, const ItemState&) = default;
};

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

ItemState stateOf(const fs::path& item) {
    struct stat facts{};
    EXPECT_EQ(lstat(item.c_str(), &facts), 0) << item;
    ItemState state{facts.st_mode,
                    facts.st_ino,
                    facts.st_nlink,
                    facts.st_size,
                    nanoseconds(facts.st_mtim),
                    nanoseconds(facts.st_ctim),
                    ""};
    if (S_ISREG(facts.st_mode)) state.content = contentOf(FilePath(item.native()));
    if (S_ISLNK(facts.st_mode)) state.content = fs::read_symlink(item).native();
    return state;
}

std::map<std::string, ItemState> stateOfTree(const FilePath& root) {
    std::map<std::string, ItemState> states{{root.bytes(), stateOf(root.bytes())}};
    for (const auto& entry : fs::recursive_directory_iterator(root.bytes())) {
        states.emplace(entry.path().native(), stateOf(entry.path()));
    }
    return states;
}

void expectSame(const std::map<std::string, ItemState>& before,
                const std::map<std::string, ItemState>& after) {
    for (const auto& [item, state] : after) EXPECT_TRUE(before.contains(item)) << "new: " << item;
    for (const auto& [item, state] : before) {
        ASSERT_TRUE(after.contains(item)) << "gone: " << item;
        EXPECT_TRUE(after.at(item) == state) << "changed: " << item;
    }
}

class ReadOnly : public testing::Test {
protected:
    /// A project with worktrees in every state that makes git look closely.
    void makeProject() {
        const GitRepository library = GitRepository::create(home / "library");
        library.commitFile("library.txt");
        const GitRepository seed = GitRepository::create(home / "seed");
        for (int number = 0; number < 50; ++number) seed.write("src/file" + std::to_string(number) + ".txt");
        seed.commit("Begin");
        seed.addSubmodule(library, "library");
        seed.git({"clone", "--quiet", "--bare", seed.path().bytes(), (home / "hub.git").bytes()});
        const GitRepository project = GitRepository::at(home / "hub.git").cloneTo(home / "root/project");
        project.ignore("*.log");
        project.write("build.log");

        const GitRepository dirty = project.addWorktree(home / "root/dirty", "dirty");
        dirty.git({"-c", "protocol.file.allow=always", "submodule", "--quiet", "update", "--init"});
        GitRepository::at(dirty / "library").write("untracked.txt");
        dirty.write("src/file1.txt", "edited\n");
        dirty.write("notes/new.txt");
        dirty.write("dirty.log");
        dirty.git({"mv", "src/file2.txt", "src/renamed.txt"});
        project.addWorktree(home / "root/conflict", "conflict").stopAtConflict();
        project.addWorktree(home / "root/bisect", "bisect").stopIn(GitOperationInProgress::bisect);
        project.addWorktree(home / "root/locked", "locked").lock("kept");
        const GitRepository gone = project.addWorktree(home / "root/gone", "gone");
        fs::remove_all(gone.path().bytes());
        const GitRepository broken = project.addWorktree(home / "root/broken", "broken");
        project.write(".git/worktrees/broken/index", "this is no index");
    }

    /// Every entry of the index is older than the index and newer than its file's recorded time, so that any
    /// command which may refresh the index would write it.
    void makeIndexesStale() {
        for (const auto& entry : fs::recursive_directory_iterator((home / "root").bytes())) {
            if (!entry.is_regular_file() || entry.path().native().find("/.git") != std::string::npos)
                continue;
            fs::last_write_time(entry.path(), fs::last_write_time(entry.path()) + std::chrono::seconds(1));
        }
    }

    void expectARefreshToChangeNothing() {
        GitServices services;
        const auto before = stateOfTree(home.path());
        const std::vector<Worktree> worktrees = services.refresh({home.path()}, {.includeSizes = true});
        EXPECT_EQ(worktrees.size(), 9U);
        expectSame(before, stateOfTree(home.path()));
    }

    TemporaryDirectory home;
};

TEST_F(ReadOnly, ARefreshChangesNothingOnDisk) {
    makeProject();
    expectARefreshToChangeNothing();
}

TEST_F(ReadOnly, ARefreshWritesNoIndexThatGitWouldLikeToRefresh) {
    makeProject();
    makeIndexesStale();
    expectARefreshToChangeNothing();
}

TEST_F(ReadOnly, TheComparisonSeesWhatAPlainStatusWouldWrite) {
    makeProject();
    makeIndexesStale();
    const auto before = stateOfTree(home.path());
    GitRepository::at(home / "root/project").git({"status"});
    EXPECT_FALSE(stateOfTree(home.path()) == before);
}

}  // namespace
}  // namespace cairnfield
