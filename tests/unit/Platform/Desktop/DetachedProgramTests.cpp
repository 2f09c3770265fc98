#include "Platform/Linux/Desktop/DetachedProgram.h"
#include "Shared/Concurrency/FileDescriptor.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace cairnfield {
namespace {

void writeProgram(const FilePath& path, const std::string& text) {
    std::ofstream(path.bytes()) << text;
    ASSERT_EQ(::chmod(path.c_str(), 0755), 0);
}

/// What comes through the named pipe until its writer closes it.
std::string readPipe(const FilePath& pipe, int fd) {
    std::string text;
    pollfd wait{.fd = fd, .events = POLLIN, .revents = 0};
    char buffer[4096];
    for (;;) {
        if (::poll(&wait, 1, 20'000) <= 0) {
            ADD_FAILURE() << "nothing came through " << pipe.display();
            return text;
        }
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got <= 0) return text;
        text.append(buffer, static_cast<std::size_t>(got));
    }
}

TEST(DetachedProgram, RunsInTheFolderWithItsArgumentsAndNotAsOurChild) {
    const TemporaryDirectory directory;
    const FilePath folder = directory.path().appending("a b\xFF");
    ASSERT_EQ(::mkdir(folder.c_str(), 0700), 0);
    const FilePath pipe = directory.path().appending("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const FilePath program = directory.path().appending("program");
    writeProgram(program, "#!/bin/sh\nexec >'" + pipe.bytes() +
                              "'\npwd\nprintf '%s\\n' \"$1\" \"$(ps -o ppid= -p $$)\"\n");
    const FileDescriptor reading(::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));

    startDetached(program, {"$(touch x); 'y'"}, folder, environmentAtStart());
    const std::string text = readPipe(pipe, reading.get());

    EXPECT_NE(text.find(folder.bytes() + "\n$(touch x); 'y'\n"), std::string::npos) << text;
    const std::string parent = text.substr(text.rfind('\n', text.size() - 2) + 1);
    EXPECT_NE(std::stol(parent), static_cast<long>(::getpid()));
}

TEST(DetachedProgram, TellsWhyAProgramCannotBeStarted) {
    const TemporaryDirectory directory;
    try {
        startDetached(directory.path().appending("missing"), {}, std::nullopt, {});
        FAIL() << "started a program that is not there";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ENOENT);
    }
    EXPECT_THROW(startDetached(FilePath("/bin/true"), {}, directory.path().appending("missing"), {}),
                 std::system_error);
}

TEST(DetachedProgram, GetsNoEnvironmentButTheOneItIsGiven) {
    const TemporaryDirectory directory;
    const FilePath note = directory.path().appending("note");
    ASSERT_EQ(::mkfifo(note.c_str(), 0600), 0);
    const FileDescriptor reading(::open(note.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));

    startDetached(FilePath("/bin/dd"), {"if=/proc/self/environ", "of=" + note.bytes(), "status=none"},
                  std::nullopt, {{"ONE", "a=b\nc"}, {"TWO", ""}});
    EXPECT_EQ(readPipe(note, reading.get()), std::string("ONE=a=b\nc\0TWO=\0", 15));
}

TEST(DetachedProgram, StartsWithTheDefaultSignalsAndNoneBlocked) {
    const TemporaryDirectory directory;
    const FilePath note = directory.path().appending("note");
    ASSERT_EQ(::mkfifo(note.c_str(), 0600), 0);
    const FileDescriptor reading(::open(note.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, &before);
    const auto handler = std::signal(SIGUSR2, SIG_IGN);
    startDetached(FilePath("/bin/sh"),
                  {"-c", "exec >'" + note.bytes() + "'; exec grep -E '^Sig(Blk|Ign)' /proc/self/status"},
                  std::nullopt, {});
    std::signal(SIGUSR2, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);

    std::istringstream sets(readPipe(note, reading.get()));
    std::string name;
    std::uint64_t blocked = 1;
    std::uint64_t ignored = 1;
    sets >> name >> std::hex >> blocked >> name >> ignored;
    EXPECT_EQ(blocked, 0U);
    constexpr std::uint64_t ofTheThreadLibrary = 0b11ULL << 31;  // 32 and 33, which no program sends
    EXPECT_EQ(ignored & ~ofTheThreadLibrary, 0U);
}

TEST(DetachedProgram, HasOurEnvironmentButForTheLeaveThatWasOurs) {
    const Environment atStart{{"A", "1"}, {"DESKTOP_STARTUP_ID", "ours"}, {"XDG_ACTIVATION_TOKEN", "ours"}};
    EXPECT_EQ(environmentForPerson(atStart, ""), (Environment{{"A", "1"}}));
    EXPECT_EQ(environmentForPerson(atStart, "its"),
              (Environment{{"A", "1"}, {"DESKTOP_STARTUP_ID", "its"}, {"XDG_ACTIVATION_TOKEN", "its"}}));
}

TEST(DetachedProgram, IsFoundByNameBeforePlace) {
    const TemporaryDirectory directory;
    const FilePath first = directory.path().appending("first");
    const FilePath second = directory.path().appending("second");
    ASSERT_EQ(::mkdir(first.c_str(), 0700), 0);
    ASSERT_EQ(::mkdir(second.c_str(), 0700), 0);
    writeProgram(first.appending("common"), "#!/bin/sh\n");
    writeProgram(second.appending("chosen"), "#!/bin/sh\n");
    ASSERT_EQ(::mkdir(first.appending("chosen").c_str(), 0700), 0);  // a folder is no program

    EXPECT_EQ(findProgram({"chosen", "common"}, {first, second}), second.appending("chosen"));
    EXPECT_EQ(findProgram({"common"}, {first, second}), first.appending("common"));
    EXPECT_EQ(findProgram({"other"}, {first, second}), std::nullopt);
}

}  // namespace
}  // namespace cairnfield
