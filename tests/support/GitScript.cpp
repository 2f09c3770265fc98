#include "support/GitScript.h"

#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

void require(int error, const char* what) {
    if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

std::string inherited(const char* name, const char* otherwise) {
    const char* value = std::getenv(name);
    return std::string(name) + "=" + (value ? value : otherwise);
}

std::vector<std::string> scriptEnvironment() {
    return {
        inherited("PATH", "/usr/bin:/bin"),
        inherited("TMPDIR", "/tmp"),
        "HOME=/nonexistent",
        "LC_ALL=C.UTF-8",
        "GIT_CONFIG_NOSYSTEM=1",
        "GIT_CONFIG_GLOBAL=/dev/null",
        "GIT_CONFIG_COUNT=4",
        "GIT_CONFIG_KEY_0=init.defaultBranch",
        "GIT_CONFIG_VALUE_0=main",
        "GIT_CONFIG_KEY_1=gc.auto",
        "GIT_CONFIG_VALUE_1=0",
        "GIT_CONFIG_KEY_2=core.fsync",
        "GIT_CONFIG_VALUE_2=none",
        "GIT_CONFIG_KEY_3=safe.directory",
        "GIT_CONFIG_VALUE_3=*",
        "GIT_AUTHOR_NAME=Robin Example",
        "GIT_AUTHOR_EMAIL=robin@example.invalid",
        std::string("GIT_AUTHOR_DATE=") + scriptedCommitDate,
        "GIT_COMMITTER_NAME=Robin Example",
        "GIT_COMMITTER_EMAIL=robin@example.invalid",
        std::string("GIT_COMMITTER_DATE=") + scriptedCommitDate,
        "GIT_EDITOR=true",
        "GIT_TERMINAL_PROMPT=0",
    };
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::string readToEnd(int descriptor) {
    std::string output;
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return output;
        output.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

GitOutcome runGit(const FilePath& directory, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"git"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<std::string> environment = scriptEnvironment();

    std::array<int, 2> ends{};
    require(pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    pid_t child = 0;
    const int error = posix_spawnp(&child, "git", &actions, nullptr, pointersTo(command).data(),
                                   pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    GitOutcome outcome;
    if (error == 0) outcome.output = readToEnd(ends[0]);
    close(ends[0]);
    require(error, "git");

    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

}  // namespace cairnfield
