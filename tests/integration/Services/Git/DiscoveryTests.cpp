#include "GitServices.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// The walk does not ask git, so a directory named ".git" makes a repository here.
class Discovery : public testing::Test {
protected:
    FilePath repository(const std::string& relative) {
        home.makeDirectory(relative + "/.git");
        return home / relative;
    }

    std::vector<FilePath> discover(std::vector<FilePath> roots, int maxDepth = 4) {
        ThreadPool blocking(1);
        RepositoryDiscoveryService service(blocking);
        return runBlocking(service.discoverRepositories(std::move(roots), maxDepth));
    }

    TemporaryDirectory home;
};

TEST_F(Discovery, FindsARootThatIsItselfARepository) {
    const FilePath found = repository("project");
    EXPECT_THAT(discover({found}, 0), ElementsAre(found));
}

TEST_F(Discovery, TakesAFileNamedGitForARepositoryToo) {
    home.write("linked/.git", "gitdir: /somewhere\n");
    EXPECT_THAT(discover({home.path()}), ElementsAre(home / "linked"));
}

TEST_F(Discovery, TakesADanglingLinkNamedGitForNothing) {
    home.makeDirectory("broken");
    fs::create_symlink("/nowhere/at/all", (home / "broken/.git").bytes());
    EXPECT_THAT(discover({home.path()}), IsEmpty());
}

TEST_F(Discovery, ReachesFourLevelsAndNoFurther) {
    const FilePath fourth = repository("1/2/3/4");
    repository("a/b/c/d/e");
    EXPECT_THAT(discover({home.path()}), ElementsAre(fourth));
    EXPECT_THAT(discover({home.path()}, 5), ElementsAre(fourth, home / "a/b/c/d/e"));
    EXPECT_THAT(discover({home.path()}, 0), IsEmpty());
}

TEST_F(Discovery, GivesNearRepositoriesBeforeDeepOnes) {
    repository("a/b/deep");
    repository("z");
    repository("m/near");
    EXPECT_THAT(discover({home.path()}), ElementsAre(home / "z", home / "m/near", home / "a/b/deep"));
}

TEST_F(Discovery, NeverDescendsIntoARepository) {
    const FilePath outer = repository("outer");
    repository("outer/inner");
    EXPECT_THAT(discover({home.path()}), ElementsAre(outer));
}

TEST_F(Discovery, PassesOverBuildOutputAndSystemFoldersAsTheyAreWritten) {
    for (const char* name :
         {"node_modules", ".build", "DerivedData", "Pods", ".venv", "venv", "__pycache__", ".next", ".nuxt",
          "dist", "build", "target", ".turbo", "Library", "Applications", ".Trash"}) {
        repository(std::string(name) + "/project");
        repository(std::string("deeper/") + name);
    }
    const FilePath written = repository("Build/project");
    EXPECT_THAT(discover({home.path()}), ElementsAre(written));
}

TEST_F(Discovery, EntersARootWhateverItsName) {
    const FilePath inside = repository("build/project");
    EXPECT_THAT(discover({home / "build"}), ElementsAre(inside));
}

TEST_F(Discovery, PassesOverHiddenDirectories) {
    repository(".hidden/project");
    EXPECT_THAT(discover({home.path()}), IsEmpty());
    EXPECT_THAT(discover({home / ".hidden"}), ElementsAre(home / ".hidden/project"));
}

TEST_F(Discovery, FollowsNoLinkBelowARoot) {
    const FilePath real = repository("outside/project");
    home.makeDirectory("root");
    fs::create_directory_symlink(real.bytes(), (home / "root/link").bytes());
    fs::create_directory_symlink(home.path().bytes(), (home / "root/cycle").bytes());
    EXPECT_THAT(discover({home / "root"}), IsEmpty());
}

TEST_F(Discovery, WalksARootThatIsALink) {
    repository("outside/project");
    fs::create_directory_symlink((home / "outside").bytes(), (home / "link").bytes());
    EXPECT_THAT(discover({home / "link"}), ElementsAre(home / "link/project"));
}

TEST_F(Discovery, StandardizesRoots) {
    const FilePath found = repository("a/project");
    EXPECT_THAT(discover({FilePath(home.path().bytes() + "/x/..//a/./")}), ElementsAre(found));
}

TEST_F(Discovery, GivesARepositoryUnderOverlappingRootsOnce) {
    const FilePath one = repository("a/one");
    const FilePath two = repository("two");
    EXPECT_THAT(discover({home / "a", home.path(), home / "a/one"}), ElementsAre(one, two));
}

TEST_F(Discovery, PassesOverRootsThatAreMissingFilesOrEmpty) {
    const FilePath file = home.write("file");
    const FilePath found = repository("project");
    EXPECT_THAT(discover({home / "missing", file, FilePath(), found}), ElementsAre(found));
    EXPECT_THAT(discover({}), IsEmpty());
}

TEST_F(Discovery, CarriesOddNamesByteForByte) {
    const std::vector<std::string> names{"a blank",  "new\nline",   "\"quoted\"", "-rf", "\xc3\xa9t\xc3\xa9",
                                         "\xff\xfe", "back\\slash", "tab\there",  "'",   "$(x)"};
    std::vector<FilePath> expected;
    for (const std::string& name : names) expected.push_back(repository(name + "/" + name));
    EXPECT_THAT(discover({home.path()}), testing::UnorderedElementsAreArray(expected));
}

TEST_F(Discovery, StopsWhenItsTaskIsCancelled) {
    repository("project");
    ThreadPool pool(1);
    ThreadPool blocking(1);
    RepositoryDiscoveryService service(blocking);
    const std::vector<FilePath> roots{home.path()};
    const auto asked = [](RepositoryDiscovering& discovering,
                          std::vector<FilePath> under) -> Task<std::size_t> {
        const std::stop_token stop = co_await currentStopToken();
        while (!stop.stop_requested()) co_await yieldNow();
        const std::vector<FilePath> found = co_await discovering.discoverRepositories(std::move(under), 4);
        co_return found.size();
    };
    const auto handle = spawn(pool, asked(service, roots));
    handle.cancel();
    EXPECT_EQ(waitFor(handle), 0U);
}

TEST_F(Discovery, PassesOverDirectoriesItMayNotRead) {
    const FilePath open = repository("open/project");
    repository("closed/project");
    giveToUnprivilegedUser(home.path());
    fs::permissions((home / "closed").bytes(), fs::perms::none);
    const std::string found = asUnprivilegedUser([this] {
        std::string text;
        for (const FilePath& path : discover({home / "closed", home.path()})) text += path.bytes() + "\n";
        return text;
    });
    EXPECT_EQ(found, open.bytes() + "\n");
}

TEST_F(Discovery, LeavesNoDescriptorOpen) {
    for (int number = 0; number < 50; ++number) repository("d" + std::to_string(number) + "/e/project");
    const auto openDescriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    discover({home.path()});
    const auto before = openDescriptors();
    EXPECT_EQ(discover({home.path()}).size(), 50U);
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
}  // namespace cairnfield
