// The main function of every test program: the surroundings that the tests rely on, then the tests.

#include "Shared/Environment/Environment.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    // The tests' repositories must not see the settings of whoever runs them.
    setenv("GIT_CONFIG_NOSYSTEM", "1", 1);
    setenv("GIT_CONFIG_GLOBAL", "/dev/null", 1);
    for (const char* name : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE"}) unsetenv(name);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("TZ", "UTC", 1);
    cairnfield::detail::readEnvironmentAgain();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
