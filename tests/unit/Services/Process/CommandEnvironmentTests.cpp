#include "Services/Process/CommandEnvironment.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace cairnfield;

TEST(CommandEnvironment, PassesOnWhatTheApplicationHas) {
    const ScopedEnvironment variable("CAIRNFIELD_TEST", "a=b c");
    EXPECT_EQ(CommandEnvironment::noninteractive().at("CAIRNFIELD_TEST"), "a=b c");
}

TEST(CommandEnvironment, IsBuiltAfreshOnEveryCall) {
    {
        const ScopedEnvironment variable("CAIRNFIELD_TEST", "first");
        ASSERT_EQ(CommandEnvironment::noninteractive().count("CAIRNFIELD_TEST"), 1U);
    }
    EXPECT_EQ(CommandEnvironment::noninteractive().count("CAIRNFIELD_TEST"), 0U);
}

TEST(CommandEnvironment, KeepsProgramsFromAskingPagingAndColouring) {
    const ScopedEnvironment locale("LC_ALL", "de_DE.UTF-8");
    const ScopedEnvironment pager("PAGER", "less");
    const ScopedEnvironment prompt("GIT_TERMINAL_PROMPT", "1");
    const Environment environment = CommandEnvironment::noninteractive();
    const Environment expected{{"GIT_TERMINAL_PROMPT", "0"},
                               {"GIT_OPTIONAL_LOCKS", "0"},
                               {"GIT_PAGER", "cat"},
                               {"PAGER", "cat"},
                               {"LC_ALL", "C"},
                               {"CLICOLOR", "0"},
                               {"NO_COLOR", "1"}};
    for (const auto& [key, value] : expected) EXPECT_EQ(environment.at(key), value) << key;
}

TEST(CommandEnvironment, TellsEveryCommandWhatKeepsGitSafe) {
    const ScopedEnvironment count("GIT_CONFIG_COUNT", std::nullopt);
    const ScopedEnvironment elsewhere("GIT_NAMESPACE", "other");
    const ScopedEnvironment libraries("LD_LIBRARY_PATH", ":");
    for (const Environment& environment :
         {CommandEnvironment::noninteractive(), CommandEnvironment::network()}) {
        EXPECT_EQ(environment.at("GIT_CONFIG_COUNT"), "6");
        EXPECT_EQ(environment.at("GIT_CONFIG_KEY_1"), "core.fsmonitor");
        EXPECT_EQ(environment.at("GIT_NO_LAZY_FETCH"), "1");
        EXPECT_FALSE(environment.contains("GIT_NAMESPACE"));
        EXPECT_FALSE(environment.contains("LD_LIBRARY_PATH"));
    }
}

TEST(CommandEnvironment, LeavesTheProgramsOwnEnvironmentAsItIs) {
    const ScopedEnvironment count("GIT_CONFIG_COUNT", std::nullopt);
    const Environment before = environmentAtStart();
    static_cast<void>(CommandEnvironment::network());
    EXPECT_EQ(environmentAtStart(), before);
    EXPECT_EQ(std::getenv("GIT_CONFIG_COUNT"), nullptr);
}

TEST(CommandEnvironment, DropsWhatRedirectsGit) {
    const ScopedEnvironment directory("GIT_DIR", "/elsewhere/.git");
    const ScopedEnvironment worktree("GIT_WORK_TREE", "/elsewhere");
    const ScopedEnvironment index("GIT_INDEX_FILE", "/elsewhere/index");
    for (const Environment& environment :
         {CommandEnvironment::noninteractive(), CommandEnvironment::network()}) {
        for (const char* key : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE"})
            EXPECT_EQ(environment.count(key), 0U);
    }
}

TEST(CommandEnvironment, RefusesCredentialsOnlyForTheNetwork) {
    const ScopedEnvironment inherited("GIT_ASKPASS", "/usr/bin/ask");
    EXPECT_EQ(CommandEnvironment::noninteractive().at("GIT_ASKPASS"), "/usr/bin/ask");
    Environment network = CommandEnvironment::network();
    EXPECT_EQ(network.at("GIT_ASKPASS"), "/usr/bin/false");
    EXPECT_EQ(network.at("SSH_ASKPASS"), "/usr/bin/false");
    EXPECT_EQ(network.at("GIT_TERMINAL_PROMPT"), "0");
}
