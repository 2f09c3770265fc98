#include "Main/TerminationSignals.h"

#include <sys/signalfd.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <unistd.h>

namespace cairnfield {

namespace {

int openDescriptor() {
    sigset_t wanted;
    ::sigemptyset(&wanted);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) ::sigaddset(&wanted, number);
    const int problem = ::pthread_sigmask(SIG_BLOCK, &wanted, nullptr);
    if (problem != 0) throw std::system_error(problem, std::generic_category(), "pthread_sigmask");
    const int fd = ::signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK);
    if (fd < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
    return fd;
}

}  // namespace

TerminationSignals::TerminationSignals() : descriptor_(openDescriptor()) {}

void TerminationSignals::listen() {
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_.get(), QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
        signalfd_siginfo info{};
        while (::read(descriptor_.get(), &info, sizeof info) > 0) {
        }
        emit received();
    });
}

}  // namespace cairnfield
