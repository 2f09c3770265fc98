// What a child starts with, and what happens when it cannot be started.

#include "ProcessRunnerFixture.h"

#include <sys/stat.h>

#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

using namespace cairnfield;

namespace {

namespace fs = std::filesystem;

using LaunchTest = ProcessRunnerFixture;

/// Puts other files in the place of this process's standard descriptors, or nothing at all, while it lives.
class StandardDescriptors {
public:
    explicit StandardDescriptors(int first, int last) : first_(first) {
        fflush(nullptr);
        for (int fd = first; fd <= last; ++fd) {
            saved_.emplace_back(fcntl(fd, F_DUPFD_CLOEXEC, 100));
            close(fd);
        }
    }
    ~StandardDescriptors() {
        for (std::size_t i = 0; i < saved_.size(); ++i) dup2(saved_[i].get(), first_ + static_cast<int>(i));
    }
    StandardDescriptors(const StandardDescriptors&) = delete;
    StandardDescriptors& operator=(const StandardDescriptors&) = delete;

private:
    int first_;
    std::vector<FileDescriptor> saved_;
};

const CairnfieldError::CommandFailed& launchFailure(const CairnfieldError& error) {
    const auto* failed = error.as<CairnfieldError::CommandFailed>();
    if (failed == nullptr) throw std::runtime_error("another error: " + error.errorDescription());
    EXPECT_EQ(failed->exitCode, -1);
    return *failed;
}

}  // namespace

TEST_F(LaunchTest, ReportsBothStreamsAndTheStatus) {
    const CommandResult result = run(shell("echo out; echo ' err ' >&2; exit 3"));
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.standardOutput, "out\n");
    EXPECT_EQ(result.standardError, "err");
}

TEST_F(LaunchTest, GivesTheChildExactlyItsEnvironment) {
    CommandInvocation invocation = command("/usr/bin/env", {"-0"});
    invocation.environment = {{"A", "1"}, {"B", "two words"}, {"C", "a=b\nc"}};
    EXPECT_EQ(run(invocation).standardOutput, std::string("A=1\0B=two words\0C=a=b\nc\0", 24));
    invocation.environment = {};
    EXPECT_EQ(run(invocation).standardOutput, "");
}

TEST_F(LaunchTest, PassesArgumentsOnByteForByte) {
    const std::vector<std::string> arguments{"",   " ",  "a b", "new\nline", "\"'$HOME`\\",
                                             "-n", "--", "*",   "\xFF\xFE",  "Zoë"};
    std::vector<std::string> all{"%s|"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::string expected;
    for (const std::string& argument : arguments) expected += argument + '|';
    EXPECT_EQ(run(command("/usr/bin/printf", all)).standardOutput, expected);
}

TEST_F(LaunchTest, RunsInTheGivenDirectory) {
    const FilePath directory = directory_.makeDirectory("odd \n\xFF name");
    CommandInvocation invocation = command("/bin/pwd");
    invocation.currentDirectory = directory;
    EXPECT_EQ(run(invocation).standardOutput, directory.bytes() + '\n');
}

TEST_F(LaunchTest, RunsInTheApplicationsDirectoryByDefault) {
    EXPECT_EQ(run(command("/bin/pwd")).standardOutput, fs::current_path().native() + '\n');
}

TEST_F(LaunchTest, ReportsAMissingProgram) {
    const CairnfieldError error = failureOf(command("/missing/tool", {"a", "b", "c", "d"}));
    EXPECT_EQ(launchFailure(error).command, "tool a b c");
    EXPECT_EQ(launchFailure(error).message, "/missing/tool: No such file or directory");
}

TEST_F(LaunchTest, SearchesForNoProgram) {
    CommandInvocation invocation = command("true");
    invocation.currentDirectory = directory_.path();
    EXPECT_EQ(launchFailure(failureOf(invocation)).message, "true: No such file or directory");
}

TEST_F(LaunchTest, ReportsAProgramThatIsNotExecutable) {
    const FilePath plain = directory_.write("plain", "#!/bin/sh\n");
    EXPECT_EQ(launchFailure(failureOf(command(plain.bytes()))).message,
              plain.bytes() + ": Permission denied");
    EXPECT_EQ(launchFailure(failureOf(command("/usr"))).message, "/usr: Permission denied");
}

TEST_F(LaunchTest, RunsNoTextThatNamesNoInterpreter) {
    const FilePath text = directory_.write("text", "echo ran\n");
    fs::permissions(text.bytes(), fs::perms::owner_all);
    EXPECT_EQ(launchFailure(failureOf(command(text.bytes()))).message, text.bytes() + ": Exec format error");
}

TEST_F(LaunchTest, TellsAMissingDirectoryFromAMissingProgram) {
    CommandInvocation invocation = command("/bin/true");
    invocation.currentDirectory = FilePath("/missing/directory");
    EXPECT_EQ(launchFailure(failureOf(invocation)).message, "/missing/directory: No such file or directory");
    invocation.currentDirectory = FilePath("/bin/true");
    EXPECT_EQ(launchFailure(failureOf(invocation)).message, "/bin/true: Not a directory");
}

TEST_F(LaunchTest, ReportsADirectoryThatItMayNotEnter) {
    const FilePath closed = directory_.makeDirectory("closed");
    CommandInvocation invocation = command("/bin/true");
    invocation.currentDirectory = closed;
    fs::permissions(closed.bytes(), fs::perms::none);
    // Root may enter everything; for everyone else the mode alone does it.
    constexpr uid_t nobody = 65534;
    const bool root = geteuid() == 0;
    if (root) {
        fs::permissions(directory_.path().bytes(), fs::perms::all);
        ASSERT_EQ(seteuid(nobody), 0);
    }
    const CairnfieldError error = failureOf(invocation);
    if (root) {
        ASSERT_EQ(seteuid(0), 0);
    }
    EXPECT_EQ(launchFailure(error).message, closed.bytes() + ": Permission denied");
}

TEST_F(LaunchTest, RefusesWhatTheChildWouldSeeCutShort) {
    const std::string cut("a\0b", 3);
    EXPECT_EQ(launchFailure(failureOf(command("/bin/echo", {cut}))).message, "/bin/echo: Invalid argument");
    CommandInvocation invocation = command("/bin/echo");
    invocation.environment = {{"KEY", cut}};
    EXPECT_EQ(launchFailure(failureOf(invocation)).message, "/bin/echo: Invalid argument");
    invocation.environment = {};
    invocation.currentDirectory = FilePath(std::string("/usr\0/bin", 9));
    EXPECT_EQ(launchFailure(failureOf(invocation)).message, "/bin/echo: Invalid argument");
}

TEST_F(LaunchTest, LeavesNothingBehindWhenALaunchFails) {
    failureOf(command("/missing"));
    const std::ptrdiff_t before = openDescriptors();
    for (int i = 0; i < 20; ++i) failureOf(command("/missing"));
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(LaunchTest, GivesTheChildNoDescriptorsOfTheApplication) {
    const FileDescriptor inheritable(open("/dev/null", O_RDONLY));
    ASSERT_TRUE(inheritable);
    const std::string listed = run(command("/bin/ls", {"/proc/self/fd"})).standardOutput;
    EXPECT_EQ(listed, "0\n1\n2\n3\n") << "ls itself has opened the last one";
}

TEST_F(LaunchTest, GivesTheChildASessionAndAGroupOfItsOwn) {
    std::istringstream ids(
        run(command("/usr/bin/cut", {"-d", " ", "-f", "1,5,6", "/proc/self/stat"})).standardOutput);
    pid_t process = 0;
    pid_t group = 0;
    pid_t session = 0;
    ids >> process >> group >> session;
    EXPECT_GT(process, 0);
    EXPECT_EQ(group, process);
    EXPECT_EQ(session, process);
}

TEST_F(LaunchTest, GivesTheChildDefaultSignals) {
    sigset_t blocked;
    sigset_t before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    ThreadPool blockedPool(1);  // its thread inherits the mask
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ASSERT_NE(std::signal(SIGPIPE, SIG_IGN), SIG_ERR);
    SystemProcessRunner blockedRunner(starter_, clock_, blockedPool);
    const CommandInvocation invocation = command("/bin/grep", {"-E", "^Sig(Blk|Ign)", "/proc/self/status"});
    std::istringstream sets(waitFor(pool_, blockedRunner.run(invocation)).standardOutput);
    std::string name;
    std::uint64_t blockedByChild = 1;
    std::uint64_t ignoredByChild = 1;
    sets >> name >> std::hex >> blockedByChild >> name >> ignoredByChild;
    EXPECT_EQ(blockedByChild, 0U);
    constexpr std::uint64_t ofTheThreadLibrary = 0b11ULL << 31;  // 32 and 33, which no program sends
    EXPECT_EQ(ignoredByChild & ~ofTheThreadLibrary, 0U);
}

TEST_F(LaunchTest, LeavesTheApplicationsInputToAChildWithoutOne) {
    const FilePath file = directory_.write("input", "the application's\n");
    const StandardDescriptors replaced(STDIN_FILENO, STDIN_FILENO);
    ASSERT_EQ(open(file.c_str(), O_RDONLY), STDIN_FILENO);
    EXPECT_EQ(run(command("/bin/cat")).standardOutput, "the application's\n");
}

TEST_F(LaunchTest, WorksInAnApplicationWithoutStandardDescriptors) {
    std::optional<CommandResult> result;
    std::optional<CommandResult> second;
    {
        const StandardDescriptors closed(STDIN_FILENO, STDERR_FILENO);
        CommandInvocation invocation = shell("cat; echo out; echo err >&2");
        invocation.standardInput = "in\n";
        result = run(invocation);
        second = run(shell("cat; echo out; echo err >&2"));
    }
    EXPECT_EQ(result->standardOutput, "in\nout\n");
    EXPECT_EQ(result->standardError, "err");
    EXPECT_EQ(second->standardOutput, "out\n")
        << "and its closed input reads as an error, not as one of our pipes";
    EXPECT_TRUE(second->standardError.ends_with("err"));
}
