#include "Platform/Linux/LinuxChildProcess.h"

#include "Platform/Linux/ProgramLaunch.h"
#include "Shared/Concurrency/CurrentTask.h"

#include <sys/epoll.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <csignal>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace cairnfield {

namespace {

enum class Reading { paused, more, ended };

/// A torrent lets others at the thread after each of these.
constexpr std::size_t burstBytes = 1024 * 1024;

/// Takes what the pipe holds now, up to one burst.
Reading readBurst(int fd, std::string& into) {
    std::array<char, 64 * 1024> block;  // not initialised: it is written before it is read
    for (std::size_t taken = 0; taken < burstBytes;) {
        const ssize_t count = ::read(fd, block.data(), block.size());
        if (count == 0) return Reading::ended;
        if (count > 0) {
            into.append(block.data(), static_cast<std::size_t>(count));
            if (static_cast<std::size_t>(count) < block.size()) return Reading::paused;
            taken += block.size();
        } else if (errno == EAGAIN) {
            return Reading::paused;
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "read");
        }
    }
    return Reading::more;
}

class LinuxChildProcess final : public ChildProcess {
public:
    LinuxChildProcess(Reactor& reactor, LaunchedProgram program) noexcept
        : reactor_(reactor), program_(std::move(program)) {}

    /// When a wait could not even be set up, this one blocks: a child is never abandoned, nor hit harder.
    ~LinuxChildProcess() override {
        program_.output.reset();
        program_.error.reset();
        siginfo_t ended{};
        if (!end_) ask(0, ended);
    }

    Task<ChildProcessWait> waitForEnd(ContinuousClock::Instant deadline, ChildProcessOutput& into) override {
        while (!end_) {
            const Wake wake = co_await reactor_.readable(program_.activity.get(), deadline);
            const Reading reading = takeActivity(into);
            if (end_) break;
            if (wake == Wake::cancelled) co_return ChildProcessWait::cancelled;
            // A child that writes without a pause ends every wait with something to read, the one at the
            // deadline too.
            if (wake == Wake::timeout || BootClock::now() >= deadline) co_return ChildProcessWait::deadline;
            if (reading == Reading::more) co_await yieldNow();
        }
        if (!isOver()) co_await waitForEndShielded(into);
        co_return ChildProcessWait::ended;
    }

    Task<> waitForEndShielded(ChildProcessOutput& into) override {
        while (!isOver()) {
            co_await reactor_.readableShielded(program_.activity.get());
            if (takeActivity(into) == Reading::more) co_await yieldNow();
        }
    }

    void terminate() noexcept override {
        siginfo_t ended{};
        // Until the child is waited for, its number belongs to nobody else.
        if (end_ || ask(WNOHANG | WNOWAIT, ended) != 0 || ended.si_pid != 0) return;
        ::kill(-program_.pid, SIGTERM);
    }

    [[nodiscard]] ChildProcessEnd end() const override {
        assert(end_ && "the end was not waited for");
        return *end_;
    }

private:
    [[nodiscard]] bool isOver() const { return end_ && !program_.output && !program_.error; }

    /// Takes what there is to take at this moment, from the streams and of the end. Does not wait.
    Reading takeActivity(ChildProcessOutput& into) {
        std::array<epoll_event, 3> events{};
        const int count =
            ::epoll_wait(program_.activity.get(), events.data(), static_cast<int>(events.size()), 0);
        if (count < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "epoll_wait");
        Reading all = Reading::paused;
        for (int i = 0; i < count; ++i) {
            const int fd = events[static_cast<std::size_t>(i)].data.fd;
            if (fd == program_.handle.get()) {
                takeEnd();
            } else if (fd == program_.output.get()) {
                all = std::max(all, takeStream(program_.output, into.output));
            } else {
                all = std::max(all, takeStream(program_.error, into.error));
            }
        }
        return all;
    }

    Reading takeStream(FileDescriptor& stream, std::string& into) const {
        const Reading reading = readBurst(stream.get(), into);
        if (reading != Reading::ended) return reading;
        ignore(stream);
        stream.reset();
        return Reading::paused;
    }

    void takeEnd() {
        siginfo_t ended{};
        if (const int error = ask(WNOHANG, ended); error != 0)
            throw std::system_error(error, std::generic_category(), "waitid");
        if (ended.si_pid == 0) return;
        end_ = ChildProcessEnd{ended.si_status};
        ignore(program_.handle);
    }

    /// Closing alone does not do: for a moment a child that is just being launched has a copy of the
    /// descriptor.
    void ignore(const FileDescriptor& watched) const noexcept {
        ::epoll_ctl(program_.activity.get(), EPOLL_CTL_DEL, watched.get(), nullptr);
    }

    /// Gives the error, or 0. `ended.si_pid` stays 0 while the child lives.
    int ask(int options, siginfo_t& ended) const noexcept {
        const auto handle = static_cast<id_t>(program_.handle.get());
        while (::waitid(P_PIDFD, handle, &ended, WEXITED | options) != 0) {
            if (errno != EINTR) return errno;
        }
        return 0;
    }

    Reactor& reactor_;
    LaunchedProgram program_;
    std::optional<ChildProcessEnd> end_;  // once the child was waited for
};

}  // namespace

std::unique_ptr<ChildProcess> LinuxChildProcessStarter::start(const ChildProcessDescription& description) {
    return std::make_unique<LinuxChildProcess>(reactor_, launchProgram(description));
}

}  // namespace cairnfield
