#include "Services/Process/SafeEnvironment.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace cairnfield {

namespace {

using Setting = std::pair<const char*, const char*>;

constexpr std::array settings{
    Setting{"status.showUntrackedFiles", "all"}, Setting{"core.fsmonitor", "false"},
    Setting{"core.untrackedCache", "false"},     Setting{"core.trustctime", "true"},
    Setting{"core.checkStat", "default"},        Setting{"protocol.ext.allow", "never"},
};

constexpr std::array redirections{
    // Where the repository and its parts are.
    "GIT_DIR",
    "GIT_WORK_TREE",
    "GIT_IMPLICIT_WORK_TREE",
    "GIT_INDEX_FILE",
    "GIT_COMMON_DIR",
    "GIT_OBJECT_DIRECTORY",
    "GIT_ALTERNATE_OBJECT_DIRECTORIES",
    "GIT_QUARANTINE_PATH",
    "GIT_NAMESPACE",
    "GIT_PREFIX",
    "GIT_INTERNAL_SUPER_PREFIX",
    // What its history is.
    "GIT_GRAFT_FILE",
    "GIT_SHALLOW_FILE",
    "GIT_REPLACE_REF_BASE",
    "GIT_NO_REPLACE_OBJECTS",
    // What a path means.
    "GIT_LITERAL_PATHSPECS",
    "GIT_GLOB_PATHSPECS",
    "GIT_NOGLOB_PATHSPECS",
    "GIT_ICASE_PATHSPECS",
    // What a file's content is taken for.
    "GIT_ATTR_SOURCE",
    // Settings of the one git command that we may have been started by; they would outrank ours.
    "GIT_CONFIG_PARAMETERS",
};

/// Where programs and libraries are looked for, one place after the other.
constexpr std::array searchLists{"PATH", "LD_LIBRARY_PATH"};

/// Without the places that depend on the folder that a command runs in; an empty one is that folder itself.
std::string absolutePlaces(std::string_view list) {
    std::string kept;
    while (!list.empty()) {
        const std::string_view place = list.substr(0, list.find(':'));
        list.remove_prefix(std::min(place.size() + 1, list.size()));
        if (!place.starts_with('/')) continue;
        if (!kept.empty()) kept += ':';
        kept += place;
    }
    return kept;
}

/// How many settings the environment carries. git refuses to work with a number that is none, so such a one
/// counts as 0.
unsigned countOf(const Environment& environment) {
    constexpr unsigned most = 100'000;
    const auto found = environment.find("GIT_CONFIG_COUNT");
    if (found == environment.end()) return 0;
    const std::string& text = found->second;
    unsigned count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    return error == std::errc() && end == text.data() + text.size() && count <= most ? count : 0;
}

}  // namespace

Environment safeForGit(Environment environment) {
    for (const char* name : redirections) environment.erase(name);
    for (const char* name : searchLists) {
        const auto found = environment.find(name);
        if (found == environment.end()) continue;
        found->second = absolutePlaces(found->second);
        if (found->second.empty()) environment.erase(found);
    }
    environment["GIT_NO_LAZY_FETCH"] = "1";
    unsigned count = countOf(environment);
    for (const auto& [key, value] : settings) {
        const std::string number = std::to_string(count++);
        environment["GIT_CONFIG_KEY_" + number] = key;
        environment["GIT_CONFIG_VALUE_" + number] = value;
    }
    environment["GIT_CONFIG_COUNT"] = std::to_string(count);
    return environment;
}

}  // namespace cairnfield
