#include "Platform/Linux/ProgramLaunch.h"

#include <sys/epoll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

namespace {

[[noreturn]] void fail(int error, const std::string& what) {
    throw std::system_error(error, std::generic_category(), what);
}

void check(int error, const std::string& what) {
    if (error != 0) fail(error, what);
}

class FileActions {
public:
    FileActions() { check(::posix_spawn_file_actions_init(&value_), "posix_spawn_file_actions_init"); }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&value_); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    void changeDirectory(const FilePath& directory) {
        check(::posix_spawn_file_actions_addchdir_np(&value_, directory.c_str()), directory.bytes());
    }
    void duplicate(const FileDescriptor& from, int to) {
        check(::posix_spawn_file_actions_adddup2(&value_, from.get(), to),
              "posix_spawn_file_actions_adddup2");
    }
    void closeFrom(int first) {
        check(::posix_spawn_file_actions_addclosefrom_np(&value_, first),
              "posix_spawn_file_actions_addclosefrom_np");
    }
    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &value_; }

private:
    posix_spawn_file_actions_t value_;
};

/// A session of its own, and signals as a program expects to find them.
class Attributes {
public:
    Attributes() {
        check(::posix_spawnattr_init(&value_), "posix_spawnattr_init");
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_setsigmask(&value_, &none);
        ::posix_spawnattr_setsigdefault(&value_, &all);
        constexpr auto flags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
        ::posix_spawnattr_setflags(&value_, static_cast<short>(flags));
    }
    ~Attributes() { ::posix_spawnattr_destroy(&value_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* get() const { return &value_; }

private:
    posix_spawnattr_t value_;
};

/// A null-terminated array of C strings over strings that live elsewhere.
class StringArray {
public:
    void add(const std::string& text) { pointers_.push_back(const_cast<char*>(text.c_str())); }
    [[nodiscard]] char* const* terminated() {
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

private:
    std::vector<char*> pointers_;
};

/// Above the standard three, so that putting one descriptor in a standard place never overwrites another that
/// still has to be put in its own. They are that low only in an application that was started with a standard
/// one closed.
FileDescriptor aboveStandard(int fd, const char* what) {
    if (fd < 0) fail(errno, what);
    FileDescriptor opened(fd);
    if (fd > STDERR_FILENO) return opened;
    const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (moved < 0) fail(errno, what);
    return FileDescriptor(moved);
}

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) fail(errno, "pipe2");
    FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    // Non-blocking belongs to the open file: the child's end must not get it.
    if (::fcntl(readEnd.get(), F_SETFL, O_NONBLOCK) != 0) fail(errno, "fcntl");
    return {aboveStandard(readEnd.release(), "pipe2"), aboveStandard(writeEnd.release(), "pipe2")};
}

bool watch(const FileDescriptor& activity, const FileDescriptor& watched) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = watched.get();
    return ::epoll_ctl(activity.get(), EPOLL_CTL_ADD, watched.get(), &event) == 0;
}

FileDescriptor fileInMemory(std::string_view bytes) {
    FileDescriptor file = aboveStandard(::memfd_create("standard input", MFD_CLOEXEC), "memfd_create");
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            fail(errno, "write");
        }
    }
    if (::lseek(file.get(), 0, SEEK_SET) != 0) fail(errno, "lseek");
    return file;
}

/// A C string ends at its first NUL, and a shortened path is another path.
void rejectNuls(const ChildProcessDescription& description) {
    const auto reject = [&description](const std::string& text) {
        if (text.find('\0') != std::string::npos) fail(EINVAL, description.executable.bytes());
    };
    reject(description.executable.bytes());
    if (description.workingDirectory) reject(description.workingDirectory->bytes());
    for (const std::string& argument : description.arguments) reject(argument);
    for (const auto& [key, value] : description.environment) {
        reject(key);
        reject(value);
    }
}

/// A launch fails in the same way for a missing directory and a missing program; only this tells them apart.
void requireEnterable(const FilePath& directory) {
    struct stat status{};
    if (::stat(directory.c_str(), &status) != 0) fail(errno, directory.bytes());
    if (!S_ISDIR(status.st_mode)) fail(ENOTDIR, directory.bytes());
    if (::faccessat(AT_FDCWD, directory.c_str(), X_OK, AT_EACCESS) != 0) fail(errno, directory.bytes());
}

pid_t spawn(const ChildProcessDescription& description, const FileActions& actions) {
    StringArray arguments;
    arguments.add(description.executable.bytes());
    for (const std::string& argument : description.arguments) arguments.add(argument);

    std::vector<std::string> pairs;
    pairs.reserve(description.environment.size());
    StringArray environment;
    for (const auto& [key, value] : description.environment)
        environment.add(pairs.emplace_back(key + '=' + value));

    const Attributes attributes;
    pid_t pid = -1;
    const char* program = description.executable.c_str();
    check(::posix_spawn(&pid, program, actions.get(), attributes.get(), arguments.terminated(),
                        environment.terminated()),
          description.executable.bytes());
    return pid;
}

/// Taken care of by nobody yet, so its number is still its own. Gives the error, or 0.
int openHandle(LaunchedProgram& program) {
    program.handle.reset(static_cast<int>(::syscall(SYS_pidfd_open, program.pid, 0)));
    if (!program.handle || !watch(program.activity, program.handle)) return errno;
    return 0;
}

void endUnhandled(pid_t pid) {
    ::kill(-pid, SIGTERM);
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace

LaunchedProgram launchProgram(const ChildProcessDescription& description) {
    rejectNuls(description);
    if (description.workingDirectory) requireEnterable(*description.workingDirectory);

    Pipe output = makePipe();
    Pipe error = makePipe();
    FileDescriptor input;
    FileActions actions;
    if (description.workingDirectory) actions.changeDirectory(*description.workingDirectory);
    if (description.standardInput) {
        input = fileInMemory(*description.standardInput);
        actions.duplicate(input, STDIN_FILENO);
    }
    actions.duplicate(output.writeEnd, STDOUT_FILENO);
    actions.duplicate(error.writeEnd, STDERR_FILENO);
    actions.closeFrom(STDERR_FILENO + 1);

    LaunchedProgram program;
    program.output = std::move(output.readEnd);
    program.error = std::move(error.readEnd);
    program.activity.reset(::epoll_create1(EPOLL_CLOEXEC));
    if (!program.activity || !watch(program.activity, program.output) ||
        !watch(program.activity, program.error))
        fail(errno, description.executable.bytes());
    program.pid = spawn(description, actions);
    // The child's ends go first: they leave room for the handle when the table of descriptors is full.
    input.reset();
    output.writeEnd.reset();
    error.writeEnd.reset();
    if (const int reason = openHandle(program); reason != 0) {
        program.output.reset();
        program.error.reset();
        endUnhandled(program.pid);
        fail(reason, description.executable.bytes());
    }
    return program;
}

}  // namespace cairnfield
