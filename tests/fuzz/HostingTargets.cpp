#include "Services/Cleanup/RecoveryBranchNaming.h"
#include "Services/GitHub/GitHubCLIOutput.h"
#include "Shared/Text/Text.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/Targets.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <string>

namespace cairnfield {

void fuzzAuthenticatedHosts(std::string_view input) {
    const std::string text = repairedUTF8(input);
    const std::vector<std::string> hosts = GitHubCLIOutput::parseAuthenticatedHosts(text);
    promise(hosts == GitHubCLIOutput::parseAuthenticatedHosts(text + "\n" + text),
            "each host once, in order");
    promise(std::set<std::string>(hosts.begin(), hosts.end()).size() == hosts.size(), "each host once");
    promise(std::ssize(hosts) <= std::ranges::count(text, '\n') + 1, "one host a line");
    for (const std::string& host : hosts) {
        promise(!host.empty() && host.find_first_of(" \t\n") == std::string::npos, "a host is one word");
        promise(text.find(host) != std::string::npos, "a host stands in the text");
        const std::string line = "  Logged in to " + host + " as someone (keyring)\n";
        promise(GitHubCLIOutput::parseAuthenticatedHosts(line) == std::vector{host},
                "a host reads as itself");
    }
}

void fuzzDefaultBranch(std::string_view input) {
    const std::optional<std::string> branch = GitHubCLIOutput::decodeDefaultBranch(input);
    if (!branch) return;
    promise(!branch->empty() && isValidUTF8(*branch), "a branch has a name");
    const nlohmann::json again = {{"defaultBranchRef", {{"name", *branch}}}};
    promise(GitHubCLIOutput::decodeDefaultBranch(again.dump()) == branch, "a branch reads as itself");
}

void fuzzLines(std::string_view input) {
    const std::string text = repairedUTF8(input);
    const std::string first = GitHubCLIOutput::firstLine(text);
    const std::string last = GitHubCLIOutput::lastLine(text);
    promise(first.find('\n') == std::string::npos && trimmed(first) == first, "the first line is one line");
    promise(last.find('\n') == std::string::npos, "the last line is one line");
    promise(last.empty() == trimmed(text).empty(), "a text that says something ends in something");
    promise(first.empty() == trimmed(text).empty(), "a text that says something begins with something");
    promise(GitHubCLIOutput::firstLine(first) == first, "one line is its own first");
    promise(GitHubCLIOutput::lastLine("one\n" + last + " \n\n") == (last.empty() ? "one" : last),
            "blank lines at the end mean nothing");

    const std::int64_t number = GitHubCLIOutput::numberInURL(text);
    const std::string url = "https://host/owner/name/pull/" + std::to_string(number);
    promise(GitHubCLIOutput::numberInURL(url) == number, "a number reads as itself");
    if (number != 0)
        promise(text.ends_with(std::to_string(number % 10).back()), "a number stands at the end");
}

void fuzzBranchName(std::string_view input) {
    constexpr std::size_t most = 60;
    const std::string name = RecoveryBranchNaming::sanitize(input);
    promise(!name.empty() && name.size() <= most, "a name has 1 to 60 characters");
    promise(std::ranges::all_of(name,
                                [](char c) {
                                    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                                           (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.';
                                }),
            "a name holds nothing that a shell, git or a URL would take for more");
    promise(name.front() != '-' && name.front() != '.', "a name is no option and no hidden file");
    promise(name == RecoveryBranchNaming::sanitize(repairedUTF8(input)), "a name is made of text");
    const Date date = std::chrono::sys_days(std::chrono::January / 31 / 2026) + std::chrono::hours(17);
    promise(RecoveryBranchNaming::branchName("a/b", input, date) == "a/b/" + name + "/20260131-170000",
            "a branch is called for its repository");
}

}  // namespace cairnfield
