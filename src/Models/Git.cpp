#include "Models/Git.h"

#include "Models/JSONFields.h"
#include "Shared/Text/Text.h"

#include <algorithm>

namespace cairnfield {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, [](char c) {
        return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

/// Blanks, controls and the characters that no URL holds unescaped.
bool mayStandInAuthority(char c) {
    constexpr std::string_view excluded = "<>\"{}|\\^`";
    return c > ' ' && c != 0x7F && excluded.find(c) == std::string_view::npos;
}

/// The host of "scheme://user@host:port/...": absent when that is not what the text is, or when its host is
/// empty.
std::optional<std::string> hostOfURL(std::string_view text) {
    const std::size_t colon = text.find("://");
    if (colon == std::string_view::npos || !isScheme(text.substr(0, colon))) return std::nullopt;
    std::string_view authority = text.substr(colon + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    if (!std::ranges::all_of(authority, mayStandInAuthority)) return std::nullopt;
    if (const std::size_t at = authority.rfind('@'); at != std::string_view::npos)
        authority.remove_prefix(at + 1);

    std::string_view host = authority.substr(0, authority.find(':'));
    if (authority.starts_with('[')) {
        const std::size_t end = authority.find(']');
        if (end == std::string_view::npos) return std::nullopt;
        host = authority.substr(1, end - 1);
        authority.remove_prefix(end + 1);
    } else {
        authority.remove_prefix(host.size());
    }
    if (!authority.empty() &&
        (authority.front() != ':' || !std::ranges::all_of(authority.substr(1), isDigit)))
        return std::nullopt;
    if (host.empty()) return std::nullopt;
    return std::string(host);
}

}  // namespace

bool GitStatusSummary::isClean() const {
    return stagedCount == 0 && modifiedCount == 0 && untrackedCount == 0 && conflictedCount == 0;
}

std::string_view rawValue(GitOperationInProgress operation) {
    switch (operation) {
        case GitOperationInProgress::merge:
            return "merge";
        case GitOperationInProgress::rebase:
            return "rebase";
        case GitOperationInProgress::cherryPick:
            return "cherry-pick";
        case GitOperationInProgress::revert:
            return "revert";
        case GitOperationInProgress::bisect:
            return "bisect";
    }
    return {};
}

std::optional<std::string> GitRemoteURL::host(std::string_view url) {
    const std::string_view text = trimmed(url);
    if (text.empty()) return std::nullopt;
    if (std::optional<std::string> host = hostOfURL(text)) return host;
    if (const std::size_t at = text.find('@'); at != std::string_view::npos) {
        const std::string_view rest = text.substr(at + 1);
        const std::size_t colon = rest.find(':');
        if (colon == 0) return std::nullopt;
        if (colon != std::string_view::npos) return std::string(rest.substr(0, colon));
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || text.starts_with('/')) return std::nullopt;
    const std::string_view before = text.substr(0, colon);
    if (before.empty() || before.find('/') != std::string_view::npos) return std::nullopt;
    return std::string(before);
}

bool GitRemote::isGitHub() const {
    const std::optional<std::string> found = host();
    if (!found) return false;
    return *found == GitRemoteURL::publicGitHubHost ||
           found->ends_with("." + std::string(GitRemoteURL::publicGitHubHost)) ||
           found->find("github") != std::string::npos;
}

std::string_view rawValue(PullRequestState state) {
    switch (state) {
        case PullRequestState::open:
            return "open";
        case PullRequestState::merged:
            return "merged";
        case PullRequestState::closed:
            return "closed";
        case PullRequestState::draft:
            return "draft";
    }
    return {};
}

std::string_view title(PullRequestState state) {
    switch (state) {
        case PullRequestState::open:
            return "Open";
        case PullRequestState::merged:
            return "Merged";
        case PullRequestState::closed:
            return "Closed";
        case PullRequestState::draft:
            return "Draft";
    }
    return {};
}

std::optional<PullRequestState> pullRequestStateFromRawValue(std::string_view text) {
    using enum PullRequestState;
    for (const PullRequestState state : {open, merged, closed, draft})
        if (rawValue(state) == text) return state;
    return std::nullopt;
}

void to_json(Json& json, const GitWorktreeEntry& entry) {
    json = {{"path", entry.path},         {"isBare", entry.isBare},         {"isDetached", entry.isDetached},
            {"isLocked", entry.isLocked}, {"isPrunable", entry.isPrunable}, {"isMain", entry.isMain}};
    detail::writeOptional(json, "head", entry.head);
    detail::writeOptional(json, "branch", entry.branch);
    detail::writeOptional(json, "lockReason", entry.lockReason);
    detail::writeOptional(json, "prunableReason", entry.prunableReason);
}

void to_json(Json& json, const GitStatusSummary& summary) {
    json = {{"stagedCount", summary.stagedCount},
            {"modifiedCount", summary.modifiedCount},
            {"untrackedCount", summary.untrackedCount},
            {"conflictedCount", summary.conflictedCount},
            {"ignoredPaths", detail::jsonFromTexts(summary.ignoredPaths)},
            {"changedPaths", detail::jsonFromTexts(summary.changedPaths)},
            {"untrackedPaths", detail::jsonFromTexts(summary.untrackedPaths)}};
}

void to_json(Json& json, const GitRemote& remote) {
    json = {{"name", jsonFromText(remote.name)},
            {"fetchURL", jsonFromText(remote.fetchURL)},
            {"pushURL", jsonFromText(remote.pushURL)}};
}

void to_json(Json& json, const RemoteTrackingState& state) {
    json = {{"ahead", state.ahead},
            {"behind", state.behind},
            {"headIsRemotelyPreserved", state.headIsRemotelyPreserved},
            {"reachableFromDefaultBranch", state.reachableFromDefaultBranch}};
    detail::writeOptional(json, "remoteName", state.remoteName);
    detail::writeOptional(json, "upstreamBranch", state.upstreamBranch);
    detail::writeOptional(json, "defaultBranch", state.defaultBranch);
    detail::writeOptional(json, "baseRef", state.baseRef);
    detail::writeOptional(json, "uniqueCommitCount", state.uniqueCommitCount);
}

void to_json(Json& json, const PullRequestInfo& info) {
    json = {{"number", info.number},
            {"title", jsonFromText(info.title)},
            {"state", rawValue(info.state)},
            {"isDraft", info.isDraft},
            {"url", jsonFromText(info.url)},
            {"headRefName", jsonFromText(info.headRefName)},
            {"baseRefName", jsonFromText(info.baseRefName)}};
    detail::writeOptional(json, "mergedAt", info.mergedAt);
    detail::writeOptional(json, "closedAt", info.closedAt);
}

void from_json(const Json& json, PullRequestInfo& info) {
    detail::readRequired(json, "number", info.number);
    detail::readRequired(json, "title", info.title);
    detail::readRawValue(json, "state", info.state, pullRequestStateFromRawValue);
    detail::readRequired(json, "isDraft", info.isDraft);
    detail::readRequired(json, "url", info.url);
    detail::readRequired(json, "headRefName", info.headRefName);
    detail::readRequired(json, "baseRefName", info.baseRefName);
    detail::readOptional(json, "mergedAt", info.mergedAt);
    detail::readOptional(json, "closedAt", info.closedAt);
}

}  // namespace cairnfield
