#include "Services/Process/CommandEnvironment.h"

#include <string_view>
#include <unistd.h>

namespace cairnfield::CommandEnvironment {

namespace {

Environment inherited() {
    Environment environment;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view pair = *entry;
        const std::size_t separator = pair.find('=');
        if (separator == std::string_view::npos) continue;
        environment.emplace(pair.substr(0, separator), pair.substr(separator + 1));
    }
    return environment;
}

}  // namespace

Environment noninteractive() {
    Environment environment = inherited();
    environment["GIT_TERMINAL_PROMPT"] = "0";
    environment["GIT_OPTIONAL_LOCKS"] = "0";
    environment["GIT_PAGER"] = "cat";
    environment["PAGER"] = "cat";
    environment["LC_ALL"] = "C";
    environment["CLICOLOR"] = "0";
    environment["NO_COLOR"] = "1";
    for (const char* redirection : {"GIT_DIR", "GIT_WORK_TREE", "GIT_INDEX_FILE"})
        environment.erase(redirection);
    return environment;
}

Environment network() {
    Environment environment = noninteractive();
    environment["GIT_ASKPASS"] = "/usr/bin/false";
    environment["SSH_ASKPASS"] = "/usr/bin/false";
    return environment;
}

}  // namespace cairnfield::CommandEnvironment
