// Whatever is wrong with one repository or worktree shows on that one and stops nothing else.

#include "GitServices.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAreArray;

const std::vector<std::string> oddNames{"a blank",
                                        "two  blanks ",
                                        "new\nline",
                                        "\"quoted\"",
                                        "it's",
                                        "-rf",
                                        "--help",
                                        "back\\slash",
                                        "tab\there",
                                        "$(touch x)",
                                        "*?[glob]",
                                        "\xc3\xa9t\xc3\xa9",
                                        "\xe6\x97\xa5\xe6\x9c\xac",
                                        "\xff\xfe\x80",
                                        "#hash"};

class HostileInput : public testing::Test {
protected:
    GitRepository projectAt(const std::string& relative) {
        const GitRepository project = GitRepository::create(home / relative);
        project.commitFile("readme.txt");
        return project;
    }

    /// The healthy neighbour, which must come out of every refresh as if it were alone.
    GitRepository neighbour() { return projectAt("root/neighbour"); }

    static void expectHealthy(const std::vector<Worktree>& worktrees, const FilePath& path) {
        const Worktree record = recordOf(worktrees, path);
        EXPECT_EQ(record.inspectionError, std::nullopt);
        EXPECT_EQ(rawValue(record.safety), "mainWorktree");
    }

    TemporaryDirectory home;
};

TEST_F(HostileInput, CarriesOddPathsOfRepositoriesAndWorktreesByteForByte) {
    std::vector<FilePath> expected;
    int number = 0;
    for (const std::string& name : oddNames) {
        const GitRepository project = projectAt("root/" + name);
        const std::string branch = "feature-" + std::to_string(++number);
        const GitRepository feature = project.addWorktree(home / ("trees/" + name), branch);
        expected.push_back(project.path());
        expected.push_back(feature.path());
    }
    GitServices services;
    std::vector<FilePath> found;
    for (const Worktree& worktree : services.refresh({home / "root"})) {
        found.push_back(worktree.path);
        EXPECT_EQ(worktree.inspectionError, std::nullopt) << worktree.path.display();
        EXPECT_EQ(worktree.repositoryName, worktree.path.lastComponent());
        EXPECT_EQ(worktree.gitCommonDir, worktree.repositoryRoot.appending(".git"))
            << worktree.path.display();
    }
    EXPECT_THAT(found, UnorderedElementsAreArray(expected));
}

TEST_F(HostileInput, CarriesOddNamesOfFilesByteForByte) {
    const GitRepository project = projectAt("project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    feature.ignore("ignored/");
    std::vector<std::string> untracked;
    std::vector<std::string> ignored;
    for (const std::string& name : oddNames) {
        feature.write("new/" + name);
        untracked.push_back("new/" + name);
        feature.write("ignored " + name + "/ignored/x");
        ignored.push_back("ignored " + name);
    }
    GitServices services;
    const Worktree record = services.inspect(feature);
    EXPECT_THAT(record.status.untrackedPaths, UnorderedElementsAreArray(untracked));
    std::vector<std::string> names;
    for (const IgnoredEntry& entry : record.ignoredEntries) {
        names.push_back(entry.name);
        EXPECT_TRUE(entry.isDirectory) << entry.name;
    }
    EXPECT_THAT(names, UnorderedElementsAreArray(ignored));
}

TEST_F(HostileInput, TellsARenameWithOddNamesFromTwoChanges) {
    const GitRepository feature = projectAt("project").addWorktree(home / "feature", "feature");
    feature.git({"mv", "readme.txt", "1 .M\nodd"});
    GitServices services;
    const GitStatusSummary status = services.inspect(feature).status;
    EXPECT_THAT(status.changedPaths, ElementsAre("1 .M\nodd"));
    EXPECT_EQ(status.stagedCount, 1);
    EXPECT_EQ(status.modifiedCount, 0);
}

TEST_F(HostileInput, DropsAGitFileThatPointsNowhere) {
    const GitRepository healthy = neighbour();
    home.write("root/lost/.git", "gitdir: /nowhere/at/all\n");
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    EXPECT_EQ(worktrees.size(), 1U);
    expectHealthy(worktrees, healthy.path());
}

TEST_F(HostileInput, ShowsACorruptedIndexOnItsWorktreeAlone) {
    const GitRepository healthy = neighbour();
    const GitRepository project = projectAt("root/project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    project.write(".git/worktrees/feature/index", "this is no index");
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    const Worktree record = recordOf(worktrees, feature.path());
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_THAT(record.inspectionError.value_or(""), HasSubstr("index file"));
    EXPECT_EQ(record.branch, "feature") << "what was learned before stays";
    expectHealthy(worktrees, project.path());
    expectHealthy(worktrees, healthy.path());
}

TEST_F(HostileInput, ShowsALostCommitOnItsWorktreeAlone) {
    const GitRepository healthy = neighbour();
    const GitRepository project = projectAt("root/project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    const std::string commit = feature.commitFile("work.txt");
    fs::remove((project / (".git/objects/" + commit.substr(0, 2) + "/" + commit.substr(2))).bytes());
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    EXPECT_EQ(rawValue(recordOf(worktrees, feature.path()).safety), "inaccessible");
    expectHealthy(worktrees, project.path());
    expectHealthy(worktrees, healthy.path());
}

TEST_F(HostileInput, ShowsAWorktreeWhoseGitFileWasOverwritten) {
    const GitRepository project = projectAt("root/project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    feature.write(".git", "gitdir: /nowhere/at/all\n");
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    EXPECT_EQ(rawValue(recordOf(worktrees, feature.path()).safety), "inaccessible");
    expectHealthy(worktrees, project.path());
}

TEST_F(HostileInput, ShowsAWorktreeThatBecameAFile) {
    const GitRepository project = projectAt("root/project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    fs::remove_all(feature.path().bytes());
    home.write("feature");
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    const Worktree record = recordOf(worktrees, feature.path());
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_FALSE(record.inspectionError->empty());
    expectHealthy(worktrees, project.path());
}

TEST_F(HostileInput, DropsARepositoryWhoseSettingsCannotBeParsed) {
    const GitRepository healthy = neighbour();
    const GitRepository project = projectAt("root/project");
    project.write(".git/config", "[core\nno section");
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    EXPECT_EQ(worktrees.size(), 1U);
    expectHealthy(worktrees, healthy.path());
}

TEST_F(HostileInput, PassesOverRootsThatAreMissingOrFiles) {
    const GitRepository healthy = neighbour();
    const FilePath file = home.write("file");
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "missing", file, home / "root"});
    EXPECT_EQ(worktrees.size(), 1U);
    expectHealthy(worktrees, healthy.path());
}

TEST_F(HostileInput, DropsARepositoryThatAnotherUserOwns) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a repository away";
    const GitRepository healthy = neighbour();
    const GitRepository foreign = projectAt("root/foreign");
    giveToUnprivilegedUser(foreign.path());
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    EXPECT_EQ(worktrees.size(), 1U) << "git refuses to look into it, and so it has no worktrees to show";
    expectHealthy(worktrees, healthy.path());
}

TEST_F(HostileInput, ShowsGitsRefusalOnTheOneWorktreeThatAnotherUserOwns) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a worktree away";
    const GitRepository project = projectAt("root/project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    giveToUnprivilegedUser(feature.path());
    GitServices services;
    const std::vector<Worktree> worktrees = services.refresh({home / "root"});
    const Worktree record = recordOf(worktrees, feature.path());
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_THAT(record.inspectionError.value_or(""), HasSubstr("dubious ownership"));
    expectHealthy(worktrees, project.path());
}

/// One line for each record: path, verdict and the reason why it could not be read.
std::string summaryOf(const std::vector<Worktree>& worktrees) {
    std::string text;
    for (const Worktree& worktree : worktrees) {
        text += worktree.path.lastComponent() + " " + std::string(rawValue(worktree.safety)) + "\n";
    }
    return text;
}

TEST_F(HostileInput, ShowsAWorktreeThatMayNotBeEntered) {
    const GitRepository project = projectAt("root/project");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    giveToUnprivilegedUser(home.path());
    fs::permissions(feature.path().bytes(), fs::perms::none);
    EXPECT_EQ(asUnprivilegedUser([this] { return summaryOf(GitServices().refresh({home / "root"})); }),
              "project mainWorktree\nfeature inaccessible\n");
}

TEST_F(HostileInput, DoesNotTakeAWorktreeOutOfReachForOneThatIsGone) {
    const GitRepository project = projectAt("root/project");
    const GitRepository feature = project.addWorktree(home / "closed/feature", "feature");
    giveToUnprivilegedUser(home.path());
    fs::permissions((home / "closed").bytes(), fs::perms::none);
    const std::string reason = asUnprivilegedUser([&] {
        return recordOf(GitServices().refresh({home / "root"}), feature.path())
            .inspectionError.value_or("none");
    });
    EXPECT_THAT(reason, testing::Not(HasSubstr("no longer exists")));
    EXPECT_NE(reason, "none");
}

TEST_F(HostileInput, DropsARepositoryWhoseGitDirectoryMayNotBeRead) {
    const GitRepository healthy = neighbour();
    const GitRepository project = projectAt("root/project");
    giveToUnprivilegedUser(home.path());
    fs::permissions((project / ".git").bytes(), fs::perms::none);
    EXPECT_EQ(asUnprivilegedUser([this] { return summaryOf(GitServices().refresh({home / "root"})); }),
              "neighbour mainWorktree\n");
}

}  // namespace
}  // namespace cairnfield
