#include "Services/GitHub/GitHubCLIService.h"

#include "Models/UUID.h"
#include "Services/GitHub/GitHubCLIOutput.h"
#include "Services/Process/CommandEnvironment.h"
#include "Shared/Files/AtomicFile.h"
#include "Shared/Text/Text.h"

#include <filesystem>
#include <unistd.h>
#include <utility>

namespace cairnfield {

using namespace std::chrono_literals;

namespace {

bool isPublicHost(std::string_view host) {
    return lowercasedASCII(host) == GitRemoteURL::publicGitHubHost;
}

Environment environmentFor(const std::optional<std::string>& host) {
    Environment environment = CommandEnvironment::network();
    environment["GH_PROMPT_DISABLED"] = "1";
    environment["GH_NO_UPDATE_NOTIFIER"] = "1";
    if (host && !isPublicHost(*host)) environment["GH_HOST"] = *host;
    return environment;
}

/// The body of a pull request in a file: an argument has limits of length and of characters.
class BodyFile {
public:
    explicit BodyFile(std::string_view body)
        : path_(FilePath(std::filesystem::absolute(std::filesystem::temp_directory_path()).native())
                    .appending("cairnfield-pr-" + UUID::make().text() + ".md")) {
        AtomicFile::write(path_, repairedUTF8(body));
    }
    ~BodyFile() { unlink(path_.c_str()); }  // one that stays is not worth a word
    BodyFile(const BodyFile&) = delete;
    BodyFile& operator=(const BodyFile&) = delete;

    [[nodiscard]] const FilePath& path() const { return path_; }

private:
    const FilePath path_;
};

}  // namespace

Task<CommandResult> GitHubCLIService::run(std::vector<std::string> arguments, std::chrono::seconds timeout,
                                          std::optional<Place> place) const {
    CommandInvocation invocation;
    invocation.executableURL = executableURL_;
    invocation.arguments = std::move(arguments);
    invocation.environment = environmentFor(place ? place->host : std::nullopt);
    invocation.timeout = timeout;
    if (place) invocation.currentDirectory = std::move(place->directory);
    return runner_.run(std::move(invocation));
}

Task<std::optional<CommandResult>> GitHubCLIService::answer(std::vector<std::string> arguments,
                                                            std::chrono::seconds timeout,
                                                            std::optional<Place> place) const {
    try {
        CommandResult result = co_await run(std::move(arguments), timeout, std::move(place));
        co_return result;
    } catch (const std::exception&) {
        co_return std::nullopt;  // whoever asks in this way has words of its own for that
    }
}

Task<GitHubIntegrationStatus> GitHubCLIService::status() {
    GitHubIntegrationStatus status;
    status.executablePath = executableURL_.bytes();
    std::vector<std::string> versionQuestion{"--version"};
    const std::optional<CommandResult> version = co_await answer(std::move(versionQuestion), 15s);
    if (!version || !version->succeeded()) {
        status.errorDescription = "gh could not be run.";
        co_return status;
    }
    status.isInstalled = true;
    status.version = GitHubCLIOutput::firstLine(version->trimmedOutput());

    std::vector<std::string> loginQuestion{"auth", "status"};
    const std::optional<CommandResult> login = co_await answer(std::move(loginQuestion), 20s);
    if (!login) {
        status.errorDescription = "gh auth status did not complete.";
        co_return status;
    }
    // Versions differ in the stream that the report goes to, and one bad login among good ones makes the exit
    // status 1.
    status.authenticatedHosts =
        GitHubCLIOutput::parseAuthenticatedHosts(login->outputString() + "\n" + login->standardError);
    if (status.authenticatedHosts.empty()) status.errorDescription = "No authenticated GitHub host.";
    co_return status;
}

Task<std::optional<std::string>> GitHubCLIService::defaultBranch(FilePath directory,
                                                                 std::optional<std::string> host) {
    Place place{std::move(directory), std::move(host)};
    std::vector<std::string> arguments{"repo", "view", "--json", "defaultBranchRef"};
    const std::optional<CommandResult> result = co_await answer(std::move(arguments), 30s, std::move(place));
    if (!result || !result->succeeded()) co_return std::nullopt;
    co_return GitHubCLIOutput::decodeDefaultBranch(result->standardOutput);
}

Task<std::optional<PullRequestInfo>> GitHubCLIService::findPullRequest(std::string headBranch,
                                                                       FilePath directory,
                                                                       std::optional<std::string> host) {
    std::vector<std::string> arguments{
        "pr",      "list",
        "--head",  std::move(headBranch),
        "--state", "all",
        "--limit", "20",
        "--json",  "number,title,state,isDraft,url,mergedAt,closedAt,headRefName,baseRefName"};
    Place place{std::move(directory), host};
    const CommandResult result = co_await run(std::move(arguments), 45s, std::move(place));
    if (!result.succeeded()) {
        if (lowercasedASCII(result.standardError).find("authentication") == std::string::npos)
            co_return std::nullopt;
        throw CairnfieldError(CairnfieldError::GitHubCLINotAuthenticated{
            host.value_or(std::string(GitRemoteURL::publicGitHubHost))});
    }
    co_return GitHubCLIOutput::mostRelevant(GitHubCLIOutput::decodePullRequests(result.standardOutput));
}

Task<PullRequestInfo> GitHubCLIService::createDraftPullRequest(std::string base, std::string head,
                                                               std::string title, std::string body,
                                                               FilePath directory,
                                                               std::optional<std::string> host) {
    const BodyFile file(body);
    std::vector<std::string> arguments{
        "pr",      "create", "--draft",     "--base",           base, "--head", head,
        "--title", title,    "--body-file", file.path().bytes()};
    Place place{directory, host};
    const CommandResult result = co_await run(std::move(arguments), 90s, std::move(place));
    if (!result.succeeded())
        throw CairnfieldError(CairnfieldError::PullRequestCreationFailed{result.standardError});

    std::optional<PullRequestInfo> found;
    try {
        found = co_await findPullRequest(head, std::move(directory), std::move(host));
    } catch (const std::exception&) {
        // The pull request is there, and what gh printed says where: better than a failure that hides it.
        found.reset();
    }
    if (found) co_return std::move(*found);

    PullRequestInfo created;
    created.url = GitHubCLIOutput::lastLine(result.trimmedOutput());
    created.number = GitHubCLIOutput::numberInURL(created.url);
    created.title = std::move(title);
    created.state = PullRequestState::draft;
    created.isDraft = true;
    created.headRefName = std::move(head);
    created.baseRefName = std::move(base);
    co_return created;
}

}  // namespace cairnfield
