#include "Platform/Linux/DescriptorLimit.h"

#include <sys/resource.h>

#include <algorithm>

namespace cairnfield {

namespace {

/// Some programs close every descriptor that the limit allows, one by one, before they begin.
constexpr rlim_t wanted = 8192;

}  // namespace

std::uint64_t raiseDescriptorLimit() noexcept {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
    const rlim_t before = limit.rlim_cur;
    limit.rlim_cur = std::max(before, std::min(wanted, limit.rlim_max));
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) return before;
    return limit.rlim_cur;
}

}  // namespace cairnfield
