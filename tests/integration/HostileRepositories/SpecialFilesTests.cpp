// Files of the kinds that no repository should have where git reads: what waits for them is ended by its
// limit, and nothing else has to wait for long.

#include "integration/HostileRepositories/HostileGallery.h"
#include "integration/HostileRepositories/Onlooker.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class SpecialFiles : public testing::Test {
protected:
    void putPipe(const FilePath& place) const {
        fs::remove_all(place.bytes());
        ASSERT_EQ(mkfifo(place.c_str(), 0600), 0) << place.bytes();
    }
    std::vector<Worktree> addFolder() {
        Onlooker onlooker;
        onlooker.commands.patience = std::chrono::seconds(2);
        return onlooker.addFolder(ground.home / "root");
    }
    static void expectHealthy(const std::vector<Worktree>& worktrees, const FilePath& path) {
        EXPECT_EQ(recordOf(worktrees, path).inspectionError, std::nullopt);
    }
    static bool holds(const std::vector<Worktree>& worktrees, const FilePath& path) {
        return std::ranges::find(worktrees, path, &Worktree::path) != worktrees.end();
    }

    HostileGround ground;
    const GitRepository neighbour = [this] {
        const GitRepository made = GitRepository::create(ground.home / "root/neighbour");
        made.commitFile("readme.txt");
        return made;
    }();
};

TEST_F(SpecialFiles, APipeInPlaceOfTheGitDirectoryIsNoRepository) {
    ASSERT_NO_FATAL_FAILURE(putPipe(ground.home.makeDirectory("root/odd").appending(".git")));
    const std::vector<Worktree> worktrees = addFolder();
    EXPECT_FALSE(holds(worktrees, ground.home / "root/odd"));
    expectHealthy(worktrees, neighbour.path());
    expectHealthy(worktrees, ground.feature.path());
}

TEST_F(SpecialFiles, ARepositoryWithAPipeForItsHeadOrSettingsDropsOut) {
    for (const char* name : {"HEAD", "config"}) {
        const GitRepository odd = GitRepository::create(ground.home / (std::string("root/odd-") + name));
        odd.commitFile("readme.txt");
        ASSERT_NO_FATAL_FAILURE(putPipe(odd / (std::string(".git/") + name)));
        const std::vector<Worktree> worktrees = addFolder();
        EXPECT_FALSE(holds(worktrees, odd.path())) << name;
        expectHealthy(worktrees, neighbour.path());
        fs::remove_all(odd.path().bytes());
    }
}

TEST_F(SpecialFiles, AWorktreeWithAPipeWhereGitReadsSaysThatItTookTooLong) {
    for (const char* place : {".git/worktrees/feature/index", "../feature/.gitignore"}) {
        ASSERT_NO_FATAL_FAILURE(putPipe(ground.project / place));
        const std::vector<Worktree> worktrees = addFolder();
        const Worktree record = recordOf(worktrees, ground.feature.path());
        EXPECT_EQ(rawValue(record.safety), "inaccessible") << place;
        EXPECT_THAT(record.inspectionError.value_or(""), HasSubstr("git status")) << place;
        expectHealthy(worktrees, neighbour.path());
        fs::remove((ground.project / place).bytes());
        ground.feature.git({"reset", "--quiet"});
    }
}

TEST_F(SpecialFiles, LinksInCirclesDeepFoldersAndHugeFilesAreSeenThrough) {
    fs::create_directory_symlink("..", (ground.feature / "up").bytes());
    fs::create_directory_symlink("loop", (ground.feature / "loop").bytes());
    fs::path deep = ground.feature.path().bytes();
    for (int level = 0; level < 300; ++level) deep /= "deep";
    fs::create_directories(deep);
    std::ofstream(deep / "file.txt") << "content\n";
    std::ofstream(ground.feature.path().bytes() + "/huge.bin").put('x');
    fs::resize_file(ground.feature.path().bytes() + "/huge.bin", std::uintmax_t(1) << 40U);
    ASSERT_NO_FATAL_FAILURE(putPipe(ground.feature / "pipe"));

    Onlooker onlooker;
    const std::vector<Worktree> worktrees = onlooker.addFolder(ground.home / "root");
    const Worktree record = recordOf(worktrees, ground.feature.path());
    EXPECT_EQ(record.inspectionError, std::nullopt);
    EXPECT_THAT(record.status.untrackedPaths, testing::IsSupersetOf({"up", "loop", "huge.bin"}));
    const DirectoryScanResult size =
        waitFor(onlooker.services.pool, onlooker.scanner.size(ground.feature.path(), true));
    EXPECT_LT(size.totalBytes, 10'000'000) << "what a file takes on the disk, not how long it says it is";
}

}  // namespace
}  // namespace cairnfield
