// Adding a folder runs no program of the repositories in it.

#include "Services/GitHub/GitHubCLIService.h"
#include "integration/HostileRepositories/HostileGallery.h"
#include "integration/HostileRepositories/Onlooker.h"
#include "support/GitHubStandIn.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace cairnfield {
namespace {

using testing::IsEmpty;
using testing::Not;

class HostileRepository : public testing::TestWithParam<HostileExhibit> {};

std::vector<Worktree> addFolder(const HostileGround& ground, Onlooker::Surroundings surroundings) {
    Onlooker onlooker(surroundings);
    return onlooker.addFolder(ground.home / "root");
}

TEST_P(HostileRepository, RunsNothingWhenItsFolderIsAdded) {
    HostileGround ground;
    const GitRepository neighbour = GitRepository::create(ground.home / "root/neighbour");
    neighbour.commitFile("readme.txt");
    GetParam().lay(ground);
    (void)ground.takeMarks();

    const std::vector<Worktree> worktrees = addFolder(ground, Onlooker::Surroundings::asAtTheStart);
    EXPECT_THAT(ground.takeMarks(), IsEmpty());
    EXPECT_EQ(rawValue(recordOf(worktrees, neighbour.path()).safety), "mainWorktree");

    if (GetParam().spring) {
        GetParam().spring(ground);
    } else {
        (void)addFolder(ground, Onlooker::Surroundings::asTheyCome);
    }
    EXPECT_THAT(ground.takeMarks(), Not(IsEmpty())) << "the trap was never armed";
}

INSTANTIATE_TEST_SUITE_P(Gallery, HostileRepository, testing::ValuesIn(hostileExhibits()),
                         [](const auto& info) { return std::string(info.param.name); });

/// Where the folder that a command runs in is searched for programs, as "./node_modules/.bin" often is.
TEST(HostileRepositories, AreNoPlaceToLookForPrograms) {
    HostileGround ground;
    for (const char* name : {"sed", "basename", "uname", "sh", "git"})
        ground.project.write(std::string("bin/") + name, contentOf(FilePath(ground.program(name))));
    std::filesystem::permissions((ground.project / "bin/sed").bytes(), std::filesystem::perms(0755));
    std::filesystem::permissions((ground.project / "bin/basename").bytes(), std::filesystem::perms(0755));
    const ScopedEnvironment path("PATH", std::string("./bin:") + std::getenv("PATH"));
    (void)addFolder(ground, Onlooker::Surroundings::asAtTheStart);
    EXPECT_THAT(ground.takeMarks(), IsEmpty());
    (void)addFolder(ground, Onlooker::Surroundings::asTheyCome);
    EXPECT_THAT(ground.takeMarks(), Not(IsEmpty()));
}

/// An empty entry is that folder too, and comes from nothing but a forgotten value before a colon.
TEST(HostileRepositories, AreNoPlaceToLookForLibraries) {
    HostileGround ground;
    ground.project.write("libz.so.1", "no library");
    const ScopedEnvironment path("LD_LIBRARY_PATH", ":");
    const auto verdict = [&ground](Onlooker::Surroundings surroundings) {
        return rawValue(recordOf(addFolder(ground, surroundings), ground.project.path()).safety);
    };
    EXPECT_EQ(verdict(Onlooker::Surroundings::asAtTheStart), "mainWorktree");
    EXPECT_EQ(verdict(Onlooker::Surroundings::asTheyCome), "inaccessible") << "git did not even start";
}

TEST(HostileRepositories, RunNothingWhenPullRequestsAreAskedFor) {
    HostileGround ground;
    GitHubStandIn service(ground.home.path());
    service.addRepository("robin/project", "main");
    layEverySetting(ground);
    ground.project.pretendRemoteIsAt("https://github.com/robin/project.git");
    (void)ground.takeMarks();
    Onlooker onlooker;
    GitHubCLIService gh(onlooker.commands, GitHubStandIn::executable());
    const std::vector<Worktree> worktrees = onlooker.addFolder(ground.home / "root");
    (void)waitFor(onlooker.services.pool, onlooker.catalog.attachPullRequests(worktrees, gh));
    EXPECT_THAT(service.takeRequests(), Not(IsEmpty()));
    EXPECT_THAT(ground.takeMarks(), IsEmpty());
    EXPECT_FALSE(ground.project.tryGit({"commit", "--allow-empty", "--message", "Nothing"}));
    EXPECT_THAT(ground.takeMarks(), Not(IsEmpty()));
}

}  // namespace
}  // namespace cairnfield
