#include "Models/JSONFields.h"
#include "Services/GitHub/GitHubCLIOutput.h"
#include "Shared/Text/Text.h"
#include "fuzz/Fuzzing.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

namespace {

using PullRequests = std::vector<PullRequestInfo>;

std::optional<PullRequests> decoded(std::string_view json) {
    try {
        return GitHubCLIOutput::decodePullRequests(json);
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;  // the one failure that is promised
    }
}

/// As gh would have said it.
nlohmann::json asPrinted(const PullRequestInfo& info) {
    std::string state(rawValue(info.state == PullRequestState::draft ? PullRequestState::open : info.state));
    for (char& letter : state) letter = static_cast<char>(letter - 'a' + 'A');
    nlohmann::json printed = {
        {"number", info.number},           {"title", info.title}, {"state", state},
        {"isDraft", info.isDraft},         {"url", info.url},     {"headRefName", info.headRefName},
        {"baseRefName", info.baseRefName}, {"mergedAt", nullptr}, {"closedAt", nullptr}};
    if (info.mergedAt) printed["mergedAt"] = iso8601(*info.mergedAt);
    if (info.closedAt) printed["closedAt"] = iso8601(*info.closedAt);
    return printed;
}

void checkOne(const PullRequestInfo& info) {
    for (const std::string* text : {&info.title, &info.url, &info.headRefName, &info.baseRefName})
        promise(isValidUTF8(*text), "texts are text");
    promise(info.state != PullRequestState::draft || info.isDraft, "a draft's state is a draft's");
    promise(info.state != PullRequestState::open || !info.isDraft, "a draft is not simply open");
    promise(nlohmann::json(info).get<PullRequestInfo>() == info, "a record survives its own JSON");
}

bool isCurrent(const PullRequestInfo& info) {
    return info.state == PullRequestState::open || info.isDraft;
}

void checkMostRelevant(const PullRequests& all) {
    const std::optional<PullRequestInfo> one = GitHubCLIOutput::mostRelevant(all);
    promise(one.has_value() != all.empty(), "of some there is one");
    if (!one) return;
    promise(std::ranges::find(all, *one) != all.end(), "the one is one of them");
    const auto current = std::ranges::find_if(all, isCurrent);
    if (current != all.end()) {
        promise(*one == *current, "the first that is open comes first");
        return;
    }
    promise(std::ranges::all_of(all, [&](const auto& other) { return other.mergedAt <= one->mergedAt; }),
            "none was merged later");
    if (!one->mergedAt) promise(*one == all.front(), "the first of none merged");
}

}  // namespace

FuzzAnswer fuzzPullRequests(std::string_view input) {
    const std::optional<PullRequests> all = decoded(input);
    promise(all == decoded(input), "the same text reads the same");
    if (!all) return FuzzAnswer::ran;
    promise(all->size() == nlohmann::json::parse(input).size(), "none is lost and none made up");
    nlohmann::json printed = nlohmann::json::array();
    for (const PullRequestInfo& info : *all) {
        checkOne(info);
        printed.push_back(asPrinted(info));
    }
    promise(decoded(printed.dump()) == all, "what gh says again reads the same");
    checkMostRelevant(*all);
    return FuzzAnswer::ran;
}

}  // namespace cairnfield
