#include "Services/Process/CommandEnvironment.h"

#include "Services/Process/SafeEnvironment.h"

namespace cairnfield::CommandEnvironment {

Environment noninteractive() {
    Environment environment = safeForGit(environmentAtStart());
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
