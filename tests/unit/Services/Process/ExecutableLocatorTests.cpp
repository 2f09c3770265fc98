#include "Services/Process/ExecutableLocator.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace cairnfield;

namespace {

namespace fs = std::filesystem;

/// A machine with nothing installed, to be furnished.
class ExecutableLocatorTest : public testing::Test {
protected:
    [[nodiscard]] FilePath install(std::string_view place, std::string_view script = "#!/bin/sh\n") const {
        FilePath program = machine_.write(place, script);
        fs::permissions(program.bytes(), fs::perms::owner_all);
        return program;
    }
    /// An xcrun that notes that it was started before it does what the script says.
    void installFinder(std::string_view script) const {
        const FilePath finder = install(
            "usr/bin/xcrun", "#!/bin/sh\necho \"$*\" >> '" + started().bytes() + "'\n" + std::string(script));
        ASSERT_TRUE(fs::exists(finder.bytes()));
    }
    [[nodiscard]] FilePath started() const { return machine_.path().appending("started"); }

    [[nodiscard]] ExecutableLocator locator(std::optional<std::string> git = {},
                                            std::optional<std::string> gitHub = {}) const {
        return {std::move(git), std::move(gitHub), machine_.path()};
    }
    [[nodiscard]] std::string nameOfFailure(const auto& locate) const {
        try {
            return "found " + locate().bytes();
        } catch (const CairnfieldError& error) {
            return std::string(error.caseName());
        }
    }
    [[nodiscard]] std::string failureForGit() const {
        return nameOfFailure([this] { return locator().locateGit(); });
    }

    TemporaryDirectory machine_;
};

}  // namespace

TEST_F(ExecutableLocatorTest, SearchesForGitInItsOrder) {
    EXPECT_EQ(failureForGit(), "gitNotInstalled");
    for (const char* place : {"usr/local/bin/git", "opt/homebrew/bin/git", "usr/bin/git"}) {
        const FilePath program = install(place);
        EXPECT_EQ(locator().locateGit(), program);
    }
}

TEST_F(ExecutableLocatorTest, SearchesForTheGitHubCLIInItsOrder) {
    EXPECT_EQ(nameOfFailure([this] { return locator().locateGitHubCLI(); }), "gitHubCLINotInstalled");
    for (const char* place : {"home/linuxbrew/.linuxbrew/bin/gh", "snap/bin/gh", "usr/bin/gh",
                              "opt/local/bin/gh", "usr/local/bin/gh", "opt/homebrew/bin/gh"}) {
        const FilePath program = install(place);
        EXPECT_EQ(locator().locateGitHubCLI(), program);
    }
}

TEST_F(ExecutableLocatorTest, LooksOnTheRealMachineByDefault) {
    EXPECT_EQ(ExecutableLocator({}, {}).locateGit(), FilePath("/usr/bin/git"));
}

TEST_F(ExecutableLocatorTest, PrefersThePersonsChoice) {
    const FilePath listed = install("usr/bin/git");
    const FilePath chosen = install("home/me/my git");
    EXPECT_EQ(locator(chosen.bytes()).locateGit(), chosen);
    const FilePath listedCLI = install("opt/homebrew/bin/gh");
    const FilePath chosenCLI = install("home/me/gh");
    EXPECT_EQ(locator({}, chosenCLI.bytes()).locateGitHubCLI(), chosenCLI);
    EXPECT_NE(listed, chosen);
    EXPECT_NE(listedCLI, chosenCLI);
}

TEST_F(ExecutableLocatorTest, PassesOverAChoiceThatIsNoExecutableFile) {
    const FilePath listed = install("usr/bin/git");
    const FilePath plain = machine_.write("plain");
    const FilePath directory = machine_.makeDirectory("directory");
    for (const std::string& choice :
         {plain.bytes(), directory.bytes(), std::string("/missing/git"), std::string()}) {
        EXPECT_EQ(locator(choice).locateGit(), listed) << choice;
    }
}

TEST_F(ExecutableLocatorTest, PassesOverDirectoriesAndPlainFilesInTheList) {
    (void)machine_.makeDirectory("usr/bin/git");
    (void)machine_.write("opt/homebrew/bin/git");
    const FilePath program = install("usr/local/bin/git");
    EXPECT_EQ(locator().locateGit(), program);
}

TEST_F(ExecutableLocatorTest, FollowsLinks) {
    const FilePath real = install("usr/bin/snap");
    const FilePath link = machine_ / "snap/bin/gh";
    fs::create_symlink(real.bytes(), link.bytes());
    EXPECT_EQ(locator().locateGitHubCLI(), link);
}

TEST_F(ExecutableLocatorTest, MakesARelativeChoiceAbsolute) {
    const FilePath chosen = install("tools/git");
    const fs::path before = fs::current_path();
    fs::current_path(machine_.path().bytes());
    const FilePath found = locator("tools/git").locateGit();
    fs::current_path(before);
    EXPECT_EQ(found, chosen);
}

TEST_F(ExecutableLocatorTest, AsksTheFinderLastAndTakesItsPathWithoutTheNewline) {
    const FilePath hidden = install("Developer Tools/git");
    installFinder("echo '" + hidden.bytes() + "'; echo noise >&2\n");
    EXPECT_EQ(locator().locateGit(), hidden);
    EXPECT_EQ(contentOf(started()), "--find git\n");
}

TEST_F(ExecutableLocatorTest, StartsNoFinderWhenGitIsFoundOtherwise) {
    installFinder("exit 1\n");
    const FilePath chosen = install("home/me/git");
    EXPECT_EQ(locator(chosen.bytes()).locateGit(), chosen);
    const FilePath listed = install("usr/bin/git");
    EXPECT_EQ(locator().locateGit(), listed);
    EXPECT_FALSE(fs::exists(started().bytes()));
}

TEST_F(ExecutableLocatorTest, HasNoFinderForTheGitHubCLI) {
    const FilePath hidden = install("Developer Tools/gh");
    installFinder("echo '" + hidden.bytes() + "'\n");
    EXPECT_EQ(nameOfFailure([this] { return locator().locateGitHubCLI(); }), "gitHubCLINotInstalled");
    EXPECT_FALSE(fs::exists(started().bytes()));
}

TEST_F(ExecutableLocatorTest, TakesNoAnswerOfTheFinderThatIsNoExecutable) {
    installFinder("");
    EXPECT_EQ(failureForGit(), "gitNotInstalled");
    installFinder("echo /missing/git\n");
    EXPECT_EQ(failureForGit(), "gitNotInstalled");
    installFinder("echo '" + machine_.write("plain").bytes() + "'\n");
    EXPECT_EQ(failureForGit(), "gitNotInstalled");
}

TEST_F(ExecutableLocatorTest, TakesNoAnswerOfAFinderThatFails) {
    const FilePath hidden = install("Developer Tools/git");
    installFinder("echo '" + hidden.bytes() + "'; exit 1\n");
    EXPECT_EQ(failureForGit(), "gitNotInstalled");
    installFinder("echo '" + hidden.bytes() + "'; kill -TERM $$\n");
    EXPECT_EQ(failureForGit(), "gitNotInstalled");
    ASSERT_EQ(install("usr/bin/xcrun", "not a program\n").lastComponent(), "xcrun");
    EXPECT_EQ(failureForGit(), "gitNotInstalled");
}

TEST_F(ExecutableLocatorTest, IsNotHeldUpByAFinderThatComplainsAtLength) {
    const FilePath hidden = install("Developer Tools/git");
    installFinder("head -c 1000000 /dev/zero >&2; echo '" + hidden.bytes() + "'\n");
    EXPECT_EQ(locator().locateGit(), hidden);
}
