#include "Services/Process/CommandEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace cairnfield;

namespace {

/// Sets a variable of this process for as long as it lives.
class Variable {
public:
    Variable(std::string name, const char* value) : name_(std::move(name)) {
        if (const char* old = std::getenv(name_.c_str())) before_ = old;
        setenv(name_.c_str(), value, 1);
    }
    ~Variable() {
        if (before_) {
            setenv(name_.c_str(), before_->c_str(), 1);
        } else {
            unsetenv(name_.c_str());
        }
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    std::string name_;
    std::optional<std::string> before_;
};

}  // namespace

TEST(CommandEnvironment, PassesOnWhatTheApplicationHas) {
    const Variable variable("CAIRNFIELD_TEST", "a=b c");
    EXPECT_EQ(CommandEnvironment::noninteractive().at("CAIRNFIELD_TEST"), "a=b c");
}

TEST(CommandEnvironment, IsBuiltAfreshOnEveryCall) {
    {
        const Variable variable("CAIRNFIELD_TEST", "first");
        ASSERT_EQ(CommandEnvironment::noninteractive().count("CAIRNFIELD_TEST"), 1U);
    }
    EXPECT_EQ(CommandEnvironment::noninteractive().count("CAIRNFIELD_TEST"), 0U);
}

TEST(CommandEnvironment, KeepsProgramsFromAskingPagingAndColouring) {
    const Variable locale("LC_ALL", "de_DE.UTF-8");
    const Variable pager("PAGER", "less");
    const Variable prompt("GIT_TERMINAL_PROMPT", "1");
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

TEST(CommandEnvironment, DropsWhatRedirectsGit) {
    const Variable directory("GIT_DIR", "/elsewhere/.git");
    const Variable worktree("GIT_WORK_TREE", "/elsewhere");
    const Variable index("GIT_INDEX_FILE", "/elsewhere/index");
    for (const Environment& environment :
         {CommandEnvironment::noninteractive(), CommandEnvironment::network()}) {
        for (const char* key : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE"})
            EXPECT_EQ(environment.count(key), 0U);
    }
}

TEST(CommandEnvironment, RefusesCredentialsOnlyForTheNetwork) {
    const Variable inherited("GIT_ASKPASS", "/usr/bin/ask");
    EXPECT_EQ(CommandEnvironment::noninteractive().at("GIT_ASKPASS"), "/usr/bin/ask");
    Environment network = CommandEnvironment::network();
    EXPECT_EQ(network.at("GIT_ASKPASS"), "/usr/bin/false");
    EXPECT_EQ(network.at("SSH_ASKPASS"), "/usr/bin/false");
    EXPECT_EQ(network.at("GIT_TERMINAL_PROMPT"), "0");
}
