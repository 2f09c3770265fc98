#pragma once
// What gh prints, as records. Pure functions. The reports for people come in several shapes, one for each
// generation of gh, so what is not recognised in them is skipped; JSON is what was asked for by name, so
// there a missing or odd field is a failure, thrown as nlohmann::json::exception.

#include "Models/Git.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield::GitHubCLIOutput {

/// The first line of valid UTF-8, trimmed.
[[nodiscard]] std::string firstLine(std::string_view text);
/// The last line of valid UTF-8, trailing white space aside.
[[nodiscard]] std::string lastLine(std::string_view text);

/// The hosts that `gh auth status` says it is logged in to: each once, in the order of the text.
[[nodiscard]] std::vector<std::string> parseAuthenticatedHosts(std::string_view text);

/// Of `gh repo view --json defaultBranchRef`. Absent for whatever names no branch; does not throw.
[[nodiscard]] std::optional<std::string> decodeDefaultBranch(std::string_view json);

/// Of `gh pr list --json ...`, in gh's order. A date so far off that a Date cannot hold it reads as absent.
[[nodiscard]] std::vector<PullRequestInfo> decodePullRequests(std::string_view json);

/// The one that matters for a branch: the first that is open or a draft, else the one merged last, else the
/// first.
[[nodiscard]] std::optional<PullRequestInfo> mostRelevant(const std::vector<PullRequestInfo>& pullRequests);

/// The number at the end of a pull request's URL, or 0.
[[nodiscard]] std::int64_t numberInURL(std::string_view url);

}  // namespace cairnfield::GitHubCLIOutput
