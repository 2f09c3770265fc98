// Runs one cleanup in a world that a driver has made, and lets the driver break it: tests/fault/README.md has
// the words. JSON Lines on standard output; answers at checkpoints come through standard input. Ends with 0
// when the cleanup came to its end, whatever that was, with 2 when the words are wrong, else with 1.

#include "Platform/Linux/DescriptorLimit.h"
#include "Platform/Linux/ProcessSignals.h"
#include "Shared/Environment/Environment.h"
#include "Shared/Errors/CairnfieldError.h"
#include "fault/OneCleanup.h"

#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <span>
#include <system_error>
#include <unistd.h>

using namespace cairnfield;

namespace {

/// Children must not read the driver's answers: their input is nothing, as in the program itself.
FileDescriptor takeStandardInput() {
    FileDescriptor taken(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3));
    const FileDescriptor nothing(open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!taken || !nothing || dup2(nothing.get(), STDIN_FILENO) < 0)
        throw std::system_error(errno, std::generic_category(), "standard input");
    return taken;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const std::span<char*> arguments(argv, std::size_t(argc));
        const RunRequest request = RunRequest::from(arguments.subspan(1));
        static_cast<void>(environmentAtStart());
        settleSignals();
        raiseDescriptorLimit();
        JsonLines lines;
        Checkpoints checkpoints(lines, takeStandardInput(), request.pauses, request.pausePoints,
                                request.ahead, request.at);
        cleanOnce(request, checkpoints, lines);
        return 0;
    } catch (const WrongRequest& wrong) {
        std::fprintf(stderr, "cairnfield-fault-run: %s\n", wrong.what());
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "cairnfield-fault-run: %s\n", describe(failure).c_str());
        return 1;
    }
}
