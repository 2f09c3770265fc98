#include "Platform/Linux/Desktop/DetachedProgram.h"

#include "Shared/Concurrency/FileDescriptor.h"

#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

struct Launch {
    const char* executable;
    char* const* arguments;
    char* const* environment;
    const char* workingDirectory;  ///< null: ours
    int failure;                   ///< where the error number goes
};

[[noreturn]] void giveUp(const Launch& launch) noexcept {
    const int error = errno;
    [[maybe_unused]] const ssize_t written = ::write(launch.failure, &error, sizeof error);
    ::_exit(127);
}

/// Between fork and exec: system calls alone.
[[noreturn]] void become(const Launch& launch) noexcept {
    ::setsid();
    const pid_t grandchild = ::fork();
    if (grandchild < 0) giveUp(launch);
    if (grandchild > 0) ::_exit(0);  // so that the program is not ours to wait for
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    for (int number = 1; number <= SIGRTMAX; ++number) ::signal(number, SIG_DFL);
    if (launch.workingDirectory && ::chdir(launch.workingDirectory) != 0) giveUp(launch);
    const int nothing = ::open("/dev/null", O_RDWR);
    if (nothing >= 0) ::dup2(nothing, STDIN_FILENO);
    ::execve(launch.executable, launch.arguments, launch.environment);
    giveUp(launch);
}

/// Pointers as exec wants them, into strings that outlive them.
std::vector<char*> terminated(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

Environment environmentForPerson(Environment atStart, const std::string& activationToken) {
    for (const char* name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
        atStart.erase(name);
        if (!activationToken.empty()) atStart.emplace(name, activationToken);
    }
    return atStart;
}

void startDetached(const FilePath& executable, const std::vector<std::string>& arguments,
                   const std::optional<FilePath>& workingDirectory, const Environment& environment) {
    std::vector<std::string> words{executable.bytes()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> wordPointers = terminated(words);
    std::vector<std::string> pairs;
    for (const auto& [name, value] : environment) pairs.push_back(name + '=' + value);
    std::vector<char*> pairPointers = terminated(pairs);

    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category());
    const FileDescriptor reading(ends[0]);
    FileDescriptor writing(ends[1]);
    const Launch launch{executable.c_str(), wordPointers.data(), pairPointers.data(),
                        workingDirectory ? workingDirectory->c_str() : nullptr, writing.get()};
    const pid_t child = ::fork();
    if (child < 0) throw std::system_error(errno, std::generic_category());
    if (child == 0) become(launch);

    writing.reset();
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    ssize_t got = 0;
    while ((got = ::read(reading.get(), &error, sizeof error)) < 0 && errno == EINTR) {
    }
    if (got == static_cast<ssize_t>(sizeof error)) throw std::system_error(error, std::generic_category());
}

std::optional<FilePath> findProgram(const std::vector<std::string>& names,
                                    const std::vector<FilePath>& directories) {
    for (const std::string& name : names) {
        for (const FilePath& directory : directories) {
            FilePath program = directory.appending(name);
            struct stat facts{};
            if (::stat(program.c_str(), &facts) == 0 && S_ISREG(facts.st_mode) &&
                ::access(program.c_str(), X_OK) == 0)
                return program;
        }
    }
    return std::nullopt;
}

}  // namespace cairnfield
