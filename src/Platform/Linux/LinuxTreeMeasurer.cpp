#include "Platform/Linux/LinuxTreeMeasurer.h"

#include "Platform/Linux/TreeWalk.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Errors/CairnfieldError.h"

#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <memory>
#include <system_error>
#include <utility>

namespace cairnfield {

namespace {

bool meansNothingThere(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

[[noreturn]] void throwForRoot(int error, const FilePath& root) {
    if (error == EMFILE || error == ENFILE || error == ENOMEM)
        throw std::system_error(error, std::generic_category(), root.display());
    if (meansNothingThere(error)) throw CairnfieldError(CairnfieldError::PathMissing{root.bytes()});
    throw CairnfieldError(CairnfieldError::PermissionDenied{root.bytes()});
}

}  // namespace

LinuxTreeMeasurer::LinuxTreeMeasurer(Executor& helpers, const WallClock& clock, Threads threads)
    : helpers_(helpers), clock_(clock), threads_(threads) {}

DirectoryScanResult LinuxTreeMeasurer::measure(const FilePath& path, std::stop_token stop) {
    if (stop.stop_requested()) throw Cancelled();
    const auto begin = std::chrono::steady_clock::now();
    DirectoryScanResult result;
    result.url = path.standardized();

    // A link at the root itself is followed, as the one who names it means what it stands for; those below
    // never are.
    struct stat standing = {};
    if (stat(result.url.c_str(), &standing) != 0) throwForRoot(errno, result.url);
    if (!S_ISDIR(standing.st_mode)) {
        result.totalBytes = allocatedSize(result.url);
        result.fileCount = 1;
        result.scannedAt = clock_.now();
        return result;
    }

    FileDescriptor opened(open(result.url.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened || fstat(opened.get(), &standing) != 0) throwForRoot(errno, result.url);
    const auto walk = std::make_shared<TreeWalk>(result.url, std::move(stop));
    WalkTally tally = walk->run(std::move(opened), standing, threads_ == Threads::two ? &helpers_ : nullptr);

    result.totalBytes = tally.bytes;
    result.fileCount = tally.files;
    result.permissionErrorPaths = std::move(tally.unentered);
    for (const RankedChild& child : tally.largest.ranked())
        result.largestChildren.push_back({result.url.appending(child.name), child.bytes, child.isDirectory});
    result.duration = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    result.scannedAt = clock_.now();
    return result;
}

std::int64_t LinuxTreeMeasurer::allocatedSize(const FilePath& item) {
    struct stat standing = {};
    if (lstat(item.c_str(), &standing) != 0)
        throw std::system_error(errno, std::generic_category(), item.display());
    return std::int64_t{standing.st_blocks} * 512;
}

}  // namespace cairnfield
