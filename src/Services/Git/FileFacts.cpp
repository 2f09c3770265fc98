#include "Services/Git/FileFacts.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace cairnfield {

namespace {

constexpr std::int64_t earliestSecond = -4'000'000'000;
constexpr std::int64_t latestSecond = 8'000'000'000;

Date dateOf(const timespec& time) {
    const auto second = std::clamp<std::int64_t>(time.tv_sec, earliestSecond, latestSecond);
    const auto sinceEpoch = std::chrono::seconds(second) + std::chrono::nanoseconds(time.tv_nsec);
    return Date(std::chrono::duration_cast<Date::duration>(sinceEpoch));
}

}  // namespace

std::optional<FileFacts> factsOf(const FilePath& item) {
    struct stat facts{};
    if (lstat(item.c_str(), &facts) != 0) return std::nullopt;
    return FileFacts{S_ISDIR(facts.st_mode), dateOf(facts.st_mtim)};
}

bool nothingExistsAt(const FilePath& item) {
    struct stat facts{};
    return stat(item.c_str(), &facts) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

}  // namespace cairnfield
