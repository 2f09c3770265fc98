#include "Services/GitHub/GitHubCLIOutput.h"

#include "Models/JSONFields.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <charconv>

namespace cairnfield::GitHubCLIOutput {

namespace {

/// Takes the next line off the front of the text.
std::string_view takeLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

std::vector<std::string_view> words(std::string_view line) {
    constexpr std::string_view blanks = " \t";
    std::vector<std::string_view> found;
    while (true) {
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty()) return found;
        found.push_back(line.substr(0, line.find_first_of(blanks)));
        line.remove_prefix(found.back().size());
    }
}

std::string_view withoutPunctuation(std::string_view word) {
    constexpr std::string_view punctuation = ":,";
    const std::size_t first = word.find_first_not_of(punctuation);
    if (first == std::string_view::npos) return {};
    return word.substr(first, word.find_last_not_of(punctuation) - first + 1);
}

/// The host in a line of the report, or empty.
std::string_view hostIn(std::string_view line) {
    line = trimmed(line);
    if (lowercasedASCII(line).find("logged in to") == std::string::npos) return {};
    const std::vector<std::string_view> pieces = words(line);
    const auto to = std::ranges::find(pieces, "to", lowercasedASCII);
    if (to == pieces.end() || to + 1 == pieces.end()) return {};
    return withoutPunctuation(*(to + 1));
}

/// gh's word, which is not the raw value of ours.
PullRequestState stateFrom(const std::string& word, bool isDraft) {
    const std::string state = lowercasedASCII(word);
    if (state == "open") return isDraft ? PullRequestState::draft : PullRequestState::open;
    return state == "merged" ? PullRequestState::merged : PullRequestState::closed;
}

/// Some versions print the first day of the first year for what has not happened.
bool isFarOff(Date date) {
    return date == distantPast() || date == distantFuture();
}

std::optional<Date> dateIn(const Json& object, const char* key) {
    const auto place = object.find(key);
    if (place == object.end() || place->is_null()) return std::nullopt;
    const auto& text = place->get_ref<const std::string&>();
    const std::optional<Date> date = dateFromISO8601(text);
    if (!date) detail::throwUnexpected(*place, "an ISO 8601 date");
    return isFarOff(*date) ? std::nullopt : date;
}

PullRequestInfo pullRequestFrom(const Json& object) {
    PullRequestInfo info;
    std::string state;
    detail::readRequired(object, "number", info.number);
    detail::readRequired(object, "title", info.title);
    detail::readRequired(object, "state", state);
    detail::readRequired(object, "isDraft", info.isDraft);
    detail::readRequired(object, "url", info.url);
    detail::readRequired(object, "headRefName", info.headRefName);
    detail::readRequired(object, "baseRefName", info.baseRefName);
    info.mergedAt = dateIn(object, "mergedAt");
    info.closedAt = dateIn(object, "closedAt");
    info.state = stateFrom(state, info.isDraft);
    return info;
}

}  // namespace

std::string firstLine(std::string_view text) {
    text = trimmed(text);
    return std::string(trimmed(takeLine(text)));
}

std::string lastLine(std::string_view text) {
    text = trimmed(text);
    return std::string(text.substr(text.rfind('\n') + 1));  // a text without newlines is one line
}

std::vector<std::string> parseAuthenticatedHosts(std::string_view text) {
    std::vector<std::string> hosts;
    while (!text.empty()) {
        const std::string_view host = hostIn(takeLine(text));
        if (!host.empty() && std::ranges::find(hosts, host) == hosts.end()) hosts.emplace_back(host);
    }
    return hosts;
}

std::optional<std::string> decodeDefaultBranch(std::string_view json) {
    const Json object = Json::parse(json, nullptr, false);
    if (!object.is_object()) return std::nullopt;
    const auto ref = object.find("defaultBranchRef");
    if (ref == object.end() || !ref->is_object()) return std::nullopt;
    const auto name = ref->find("name");
    if (name == ref->end() || !name->is_string()) return std::nullopt;
    auto branch = name->get<std::string>();
    if (branch.empty()) return std::nullopt;  // a repository without commits
    return branch;
}

std::vector<PullRequestInfo> decodePullRequests(std::string_view json) {
    const Json list = Json::parse(json);
    if (!list.is_array()) detail::throwUnexpected(list, "a list of pull requests");
    std::vector<PullRequestInfo> pullRequests;
    for (const Json& object : list) pullRequests.push_back(pullRequestFrom(object));
    return pullRequests;
}

std::optional<PullRequestInfo> mostRelevant(const std::vector<PullRequestInfo>& pullRequests) {
    const auto current = std::ranges::find_if(pullRequests, [](const PullRequestInfo& info) {
        return info.state == PullRequestState::open || info.isDraft;
    });
    if (current != pullRequests.end()) return *current;
    // The first of the largest: absent is less than every date.
    const auto last = std::ranges::max_element(pullRequests, {}, &PullRequestInfo::mergedAt);
    if (last == pullRequests.end()) return std::nullopt;
    return *last;
}

std::int64_t numberInURL(std::string_view url) {
    const std::string_view part = url.substr(url.rfind('/') + 1);
    std::int64_t number = 0;
    const auto [end, failure] = std::from_chars(part.data(), part.data() + part.size(), number);
    const bool isWhole = failure == std::errc() && end == part.data() + part.size();
    return isWhole ? number : 0;
}

}  // namespace cairnfield::GitHubCLIOutput
