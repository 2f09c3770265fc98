// The last look at worktrees whose files, index and references are kept in the less usual ways.

#include "integration/Services/Cleanup/LastLookStage.h"
#include "support/SmallDisk.h"

#include <gmock/gmock.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>

#include <fcntl.h>
#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// An item that nobody can change or delete, for as long as the object lives.
class Immutable {
public:
    explicit Immutable(const FilePath& item)
        : descriptor_(open(item.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)), isInForce_(put(true)) {}
    ~Immutable() { (void)put(false); }
    Immutable(const Immutable&) = delete;
    Immutable& operator=(const Immutable&) = delete;

    /// Not every file system, and not every user, can.
    [[nodiscard]] bool isInForce() const { return isInForce_; }

private:
    [[nodiscard]] bool put(bool isImmutable) const {
        int flags = 0;
        if (ioctl(descriptor_.get(), FS_IOC_GETFLAGS, &flags) != 0) return false;
        flags = isImmutable ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        return ioctl(descriptor_.get(), FS_IOC_SETFLAGS, &flags) == 0;
    }

    const FileDescriptor descriptor_;
    const bool isInForce_;
};

TEST_F(LastLook, RefusesAFolderThatNobodyCanChange) {
    feature.write("logs/today/kept.log");
    const Immutable kept(feature / "logs/today");
    if (!kept.isInForce()) GTEST_SKIP() << "nothing can be made immutable here";
    EXPECT_EQ(look(), "logs/today cannot be deleted.");
    EXPECT_FALSE(gitWouldRemove());
    EXPECT_FALSE(isThere(feature / "kept.txt")) << "git would have stopped half-way";
}

TEST_F(LastLook, KeepsACleanupFromStoppingHalfWay) {
    feature.write("logs/kept.log");
    feature.write("kept.txt", "changed\n");
    const Immutable kept(feature / "logs/kept.log");
    if (!kept.isInForce()) GTEST_SKIP() << "nothing can be made immutable here";
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("logs/kept.log cannot be deleted."));
    EXPECT_TRUE(isThere(feature / "second.txt"));
    EXPECT_FALSE(remoteHasBranch());
    expectIntact(receipt);
}

/// The stage as an object, for a process of its own.
class Staged : public LastLook {
public:
    /// What the last look says when the folder is to be seen inside the worktree too.
    std::string lookWithMounted(const FilePath& folder) {
        const FilePath place = feature / "logs/elsewhere";
        fs::create_directories(place.bytes());
        const Worktree reviewed = review();
        if (mount(folder.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) != 0) return "could not mount";
        std::string words = look(reviewed);
        umount(place.c_str());
        return words.starts_with("Something is mounted inside it: ") ? "refused" : words;
    }
    /// Of the same file system, so that only the mount table tells.
    std::string lookWithOwnFolderMounted() { return lookWithMounted(home.makeDirectory("archive")); }

private:
    void TestBody() override {}
};

TEST(LastLookAtMounts, RefusesAFolderThatIsMountedInsideFromTheSameFileSystem) {
    const auto look = [](const FilePath&) { return Staged().lookWithOwnFolderMounted(); };
    const std::optional<std::string> seen = onSmallDisk(1 << 20, look);
    if (!seen) GTEST_SKIP() << "nothing may be mounted here";
    EXPECT_EQ(*seen, "refused");
}

TEST_F(LastLook, RefusesAHeadThatIsNoReference) {
    const Worktree reviewed = review();
    for (const char* content : {"", "ref: refs/heads/.invalid\n", "nonsense\n"}) {
        project.write(".git/worktrees/feature/HEAD", content);
        EXPECT_THAT(look(reviewed), HasSubstr("Its HEAD ")) << content;
    }
    fs::remove((project / ".git/worktrees/feature/HEAD").bytes());
    EXPECT_NE(look(reviewed), "");
}

TEST_F(LastLook, ComparesAHiddenFileWithoutRunningItsFilter) {
    const FilePath mark = home / "mark";
    feature.write(".gitattributes", "kept.txt filter=odd\n");
    feature.commit("Attributes");
    fs::last_write_time((feature / "kept.txt").bytes(),
                        fs::file_time_type::clock::now() - std::chrono::hours(1));
    feature.git({"update-index", "--refresh"});
    feature.git({"update-index", "--assume-unchanged", "kept.txt"});
    project.git({"config", "filter.odd.clean", ": > '" + mark.bytes() + "'; tr a-z A-Z"});
    EXPECT_EQ(look(), "") << "untouched since git looked at it";
    feature.write("kept.txt", "work that git overlooks\n");
    EXPECT_THAT(look(), HasSubstr("kept.txt differs from what Git holds"));
    EXPECT_FALSE(isThere(mark));
}

TEST_F(LastLook, ReadsAnIndexWithEveryExtensionThatGitWrites) {
    const FilePath monitor = home.write("monitor", "#!/bin/sh\nprintf 'token\\0'\n");
    fs::permissions(monitor.bytes(), fs::perms(0755));
    feature.write("folder/file.txt");
    feature.commit("A folder");
    feature.git({"-c", "index.threads=2", "-c", "core.fsmonitor=" + monitor.bytes(), "update-index",
                 "--untracked-cache", "--fsmonitor", "--force-write-index"});
    const std::string index = contentOf(project / ".git/worktrees/feature/index");
    for (const char* extension : {"TREE", "UNTR", "FSMN"}) EXPECT_THAT(index, HasSubstr(extension));
    EXPECT_EQ(look(), "");
    feature.git({"update-index", "--skip-worktree", "folder/file.txt"});
    EXPECT_EQ(look(), "");
    feature.write("folder/file.txt", "work that git overlooks\n");
    EXPECT_THAT(look(), HasSubstr("folder/file.txt differs from what Git holds"));
}

TEST_F(LastLook, ReadsAnIndexWithResolvedConflicts) {
    feature.stopAtConflict();
    feature.write("conflict.txt", "resolved\n");
    feature.commit("Resolved");
    EXPECT_EQ(look(), "");
}

TEST_F(LastLook, ComparesHiddenFilesWithLongObjectNamesToo) {
    const GitRepository main = GitRepository::at(home.makeDirectory("long"));
    main.git({"init", "--quiet", "--object-format=sha256"});
    main.commitFile("kept.txt");
    const GitRepository worktree = main.addWorktree(home / "long-work", "work");
    worktree.git({"update-index", "--skip-worktree", "kept.txt"});
    EXPECT_EQ(look(review(worktree)), "");
    worktree.write("kept.txt", "CONTENT\n");
    EXPECT_THAT(look(review(worktree)), HasSubstr("kept.txt differs from what Git holds"));
}

TEST_F(LastLook, RefusesARemoteThatALinkLeadsTo) {
    Worktree reviewed = review();
    fs::create_directories((feature / "logs").bytes());
    fs::rename(hub.path().bytes(), (feature / "logs/hub.git").bytes());
    fs::create_directory_symlink((feature / "logs").bytes(), (home / "link").bytes());
    for (const std::string& url : {(home / "link/hub.git").bytes(), std::string("../link/hub.git"),
                                   "file://" + (home / "link/hub.git").bytes()}) {
        reviewed.remotes.front().fetchURL = url;
        EXPECT_EQ(look(reviewed), "The remote origin lies inside it.") << url;
    }
}

}  // namespace
}  // namespace cairnfield
