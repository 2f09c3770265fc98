#include "support/UnprivilegedUser.h"

#include "support/ForkedOutcome.h"

#include <exception>
#include <grp.h>
#include <unistd.h>

namespace cairnfield {

namespace {

constexpr unsigned nobody = 65'534;

std::string outcomeOf(const std::function<std::string()>& body) {
    const bool isPrivileged = geteuid() == 0;
    if (isPrivileged && (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0))
        return "could not give up its rights";
    try {
        return body();
    } catch (const std::exception& failure) {
        return std::string("threw: ") + failure.what();
    }
}

}  // namespace

std::string asUnprivilegedUser(const std::function<std::string()>& body) {
    return outcomeInChild([&] { return outcomeOf(body); });
}

}  // namespace cairnfield
