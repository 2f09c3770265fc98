#include "Shared/Environment/Environment.h"

#include <string_view>
#include <unistd.h>

namespace cairnfield {

namespace {

Environment environmentNow() {
    Environment read;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view pair = *entry;
        const std::size_t separator = pair.find('=');
        if (separator == std::string_view::npos) continue;
        // Of two entries with one name the first is the one that getenv finds.
        read.emplace(pair.substr(0, separator), pair.substr(separator + 1));
    }
    return read;
}

/// Never destroyed: a thread that still runs while the process exits may ask.
Environment& kept() {
    static Environment& environment = *new Environment(environmentNow());
    return environment;
}

}  // namespace

const Environment& environmentAtStart() {
    return kept();
}

std::optional<std::string> valueOf(const Environment& environment, const std::string& name) {
    const auto found = environment.find(name);
    if (found == environment.end()) return std::nullopt;
    return found->second;
}

void detail::readEnvironmentAgain() {
    kept() = environmentNow();
}

}  // namespace cairnfield
