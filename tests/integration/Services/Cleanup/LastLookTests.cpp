// The last look at real worktrees in states that git would remove without a word.

#include "integration/Services/Cleanup/LastLookStage.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST_F(LastLook, HasNothingAgainstAnOrdinaryWorktree) {
    feature.write("node_modules/a/index.js");
    feature.write(".env");
    feature.write("deep/er/file.txt");
    feature.commit("Work");
    EXPECT_EQ(look(), "");
}

TEST_F(LastLook, HasNothingAgainstAWorktreeOfEveryKindOfIndex) {
    for (const char* version : {"2", "3", "4"}) {
        feature.git({"update-index", "--index-version", version});
        EXPECT_EQ(look(), "") << version;
    }
    feature.git({"update-index", "--split-index"});
    feature.commitFile("one.txt");
    feature.git({"rm", "--quiet", "second.txt"});
    feature.commitFile("kept.txt", "replaced\n");
    EXPECT_EQ(look(), "");
}

TEST_F(LastLook, HasNothingAgainstPackedReferences) {
    project.git({"pack-refs", "--all"});
    EXPECT_EQ(look(), "");
}

TEST_F(LastLook, RefusesAHeadThatMoved) {
    const Worktree reviewed = review();
    feature.commitFile("later.txt");
    EXPECT_EQ(look(reviewed), "Its HEAD is not where it was left.");
    project.git({"pack-refs", "--all"});
    EXPECT_EQ(look(reviewed), "Its HEAD is not where it was left.");
    feature.git({"checkout", "--quiet", "--detach", "HEAD~1"});
    EXPECT_EQ(look(reviewed), "");
}

TEST_F(LastLook, RefusesAFileThatIsAssumedUnchangedAndIsNot) {
    feature.git({"update-index", "--assume-unchanged", "kept.txt"});
    EXPECT_EQ(look(), "");
    feature.write("kept.txt", "work that git overlooks\n");
    EXPECT_THAT(look(), HasSubstr("kept.txt differs from what Git holds"));
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(LastLook, RefusesASkippedFileThatDiffersInAnyKindOfIndex) {
    feature.git({"update-index", "--skip-worktree", "second.txt"});
    for (const char* version : {"3", "4"}) {
        feature.git({"update-index", "--index-version", version});
        feature.write("second.txt", "as reviewed\n");
        EXPECT_EQ(look(), "") << version;
        feature.write("second.txt", "work that git overlooks\n");
        EXPECT_THAT(look(), HasSubstr("second.txt differs from what Git holds")) << version;
    }
    feature.git({"update-index", "--split-index"});
    feature.git({"update-index", "--no-skip-worktree", "second.txt"});
    feature.git({"update-index", "--skip-worktree", "kept.txt"});
    feature.write("second.txt", "as reviewed\n");
    EXPECT_EQ(look(), "");
    feature.write("kept.txt", "work that git overlooks\n");
    EXPECT_THAT(look(), HasSubstr("kept.txt differs from what Git holds"));
}

TEST_F(LastLook, HasNothingAgainstAHiddenFileThatIsGone) {
    feature.git({"update-index", "--skip-worktree", "second.txt"});
    fs::remove((feature / "second.txt").bytes());
    EXPECT_EQ(look(), "");
}

TEST_F(LastLook, HasNothingAgainstAHiddenFileWhoseLineEndsGitConverts) {
    feature.write(".gitattributes", "crlf.txt text eol=crlf\n");
    feature.write("crlf.txt", "one\r\ntwo\r\n");
    feature.commit("Lines");
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    fs::last_write_time((feature / "crlf.txt").bytes(), longAgo);
    feature.git({"update-index", "--refresh"});
    feature.git({"update-index", "--assume-unchanged", "crlf.txt"});
    EXPECT_EQ(look(), "");
    feature.write("crlf.txt", "one\r\nthree\r\n");
    EXPECT_THAT(look(), HasSubstr("crlf.txt differs"));
}

TEST_F(LastLook, ComparesAHiddenLinkByItsTarget) {
    fs::create_symlink("kept.txt", (feature / "link").bytes());
    feature.commit("A link");
    feature.git({"update-index", "--assume-unchanged", "link"});
    EXPECT_EQ(look(), "");
    fs::remove((feature / "link").bytes());
    fs::create_symlink("second.txt", (feature / "link").bytes());
    EXPECT_THAT(look(), HasSubstr("link differs"));
}

TEST_F(LastLook, RefusesFilesInAFolderThatASparseCheckoutLeftOut) {
    feature.write("left/out.txt");
    feature.write("stays/in.txt");
    feature.commit("Folders");
    feature.git({"sparse-checkout", "init", "--cone", "--sparse-index"});
    feature.git({"sparse-checkout", "set", "stays"});
    ASSERT_FALSE(isThere(feature / "left"));
    EXPECT_EQ(look(), "");
    const Worktree reviewed = review();
    feature.write("left/out.txt", "work\n");
    EXPECT_THAT(look(reviewed), HasSubstr("left"));
}

TEST_F(LastLook, RefusesAnInnerRepositoryThatIsIgnored) {
    const GitRepository inner = GitRepository::create(feature / "logs/inner");
    inner.commitFile("only-here.txt");
    EXPECT_EQ(look(), "Another repository lies inside it: logs/inner/.git.");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(LastLook, RefusesABareRepositoryThatIsIgnored) {
    (void)GitRepository::createBare(feature / "logs/bare.git");
    EXPECT_EQ(look(), "Another repository lies inside it: logs/bare.git.");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(LastLook, HasNothingAgainstATrackedFolderThatOnlyLooksLikeARepository) {
    feature.write("fixtures/bare/HEAD", "ref: refs/heads/main\n");
    feature.write("fixtures/bare/objects/pack/keep");
    feature.write("fixtures/bare/refs/heads/keep");
    feature.commit("Fixtures");
    EXPECT_EQ(look(), "");
}

TEST_F(LastLook, RefusesAnotherWorktreeInside) {
    const GitRepository inner = project.addWorktree(feature / "logs/inner", "inner");
    EXPECT_EQ(look(), "Another worktree lies inside it: " + inner.path().bytes() + ".");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(LastLook, RefusesARemoteInside) {
    const Worktree before = review();
    fs::create_directories((feature / "logs").bytes());
    fs::rename(hub.path().bytes(), (feature / "logs/hub.git").bytes());
    for (const std::string& url :
         {(feature / "logs/hub.git").bytes(), "file://" + (feature / "logs/hub.git").bytes(),
          std::string("logs/hub.git"), std::string("./logs/hub%2egit")}) {
        Worktree reviewed = before;
        reviewed.remotes.front().pushURL = url;
        const bool isThePlace = url.find('%') == std::string::npos;
        EXPECT_EQ(look(reviewed), isThePlace ? "The remote origin lies inside it."
                                             : "Another repository lies inside it: logs/hub.git.");
    }
}

TEST_F(LastLook, HasNothingAgainstARemoteWhosePathCannotBeFollowed) {
    Worktree reviewed = review();
    reviewed.remotes.front().pushURL = "/" + std::string(5000, 'a');
    EXPECT_EQ(look(reviewed), "");
    reviewed.remotes.front().pushURL = (feature / std::string(5000, 'a')).bytes();
    EXPECT_EQ(look(reviewed), "The remote origin lies inside it.");
}

TEST_F(LastLook, RefusesTheVaultInside) {
    const Worktree reviewed = review();
    fs::create_directories((feature / "logs/ours").bytes());
    EXPECT_EQ(look(reviewed, {feature / "logs/ours"}), "Cairnfield's own files lie inside it.");
    EXPECT_EQ(look(reviewed, {home / "data"}), "");
}

TEST_F(LastLook, RefusesObjectsOfTheRepositoryInside) {
    fs::create_directories((feature / "logs/objects").bytes());
    std::ofstream((project / ".git/objects/info/alternates").bytes())
        << (feature / "logs/objects").bytes() << '\n';
    EXPECT_EQ(look(), "Objects of the repository lie inside it.");
}

TEST_F(LastLook, RefusesFilesInASubmoduleThatIsNotInitialised) {
    project.addSubmodule(GitRepository::at(home / "seed"), "module");
    const GitRepository other = project.addWorktree(home / "other", "other");
    EXPECT_EQ(look(review(other)), "");
    other.write("module/notes.txt", "work\n");
    EXPECT_EQ(other.git({"status", "--porcelain"}), "") << "git overlooks it";
    EXPECT_EQ(look(review(other)), "The submodule module is not initialised and holds files.");
    fs::remove((other / "module/notes.txt").bytes());
    other.git({"-c", "protocol.file.allow=always", "submodule", "--quiet", "update", "--init"});
    EXPECT_EQ(look(review(other)), "") << "left to git, which refuses it";
    EXPECT_FALSE(project.tryGit({"worktree", "remove", other.path().bytes()}));
}

TEST_F(LastLook, RefusesASecretThatAppearedSinceTheReview) {
    feature.write(".env");
    const Worktree reviewed = review();
    EXPECT_EQ(look(reviewed), "");
    feature.write("late.key");
    EXPECT_EQ(look(reviewed), "late.key looks sensitive and appeared after the review.");
}

TEST_F(LastLook, RefusesAPathThatLeadsElsewhereByNow) {
    const std::string words = "Its path no longer leads to the worktree that was reviewed.";
    const Worktree reviewed = review();
    fs::rename(feature.path().bytes(), (home / "moved").bytes());
    EXPECT_EQ(look(reviewed), words);
    fs::create_directory_symlink((home / "moved").bytes(), feature.path().bytes());
    EXPECT_EQ(look(reviewed), words);
    fs::remove(feature.path().bytes());
    const GitRepository other = project.addWorktree(home / "other", "other");
    fs::create_directories(feature.path().bytes());
    fs::copy((other / ".git").bytes(), (feature / ".git").bytes());
    EXPECT_EQ(look(reviewed), words) << "the Git file of another worktree";
    fs::remove((feature / ".git").bytes());
    (void)GitRepository::create(feature.path());
    EXPECT_EQ(look(reviewed), words) << "a repository of its own";
}

TEST_F(LastLook, RefusesAnIndexThatItDoesNotUnderstand) {
    const Worktree reviewed = review();
    const fs::path index = project.path().bytes() + "/.git/worktrees/feature/index";
    fs::resize_file(index, fs::file_size(index) / 2);
    EXPECT_EQ(look(reviewed), "Its index could not be understood.");
}

TEST_F(LastLook, FollowsNoLink) {
    const GitRepository elsewhere = GitRepository::create(home / "elsewhere");
    fs::create_directories((feature / "logs").bytes());
    fs::create_directory_symlink(elsewhere.path().bytes(), (feature / "logs/elsewhere").bytes());
    EXPECT_EQ(look(), "");
}

TEST_F(LastLook, RunsNoProcess) {
    const Worktree reviewed = review();
    EXPECT_EQ(look(reviewed), "");
    EXPECT_TRUE(services.commands.take().empty());
}

}  // namespace
}  // namespace cairnfield
