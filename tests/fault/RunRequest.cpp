#include "fault/RunRequest.h"

#include <charconv>
#include <functional>

namespace cairnfield {

namespace {

using Setters = std::map<std::string, std::function<void(RunRequest&, const std::string&)>, std::less<>>;

template <class Number>
Number numberFrom(const std::string& text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end) throw WrongRequest("not a number: " + text);
    return number;
}

/// The two sides of the last colon.
std::pair<std::string, std::string> parted(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos) throw WrongRequest("no colon: " + text);
    return {text.substr(0, colon), text.substr(colon + 1)};
}

bool answerFrom(const std::string& text) {
    if (text != "yes" && text != "no") throw WrongRequest("neither yes nor no: " + text);
    return text == "yes";
}

const Setters& setters() {
    using Request = RunRequest;
    using Text = std::string;
    static const Setters all{
        {"repository", [](Request& to, const Text& text) { to.repository = FilePath(text); }},
        {"worktree", [](Request& to, const Text& text) { to.worktree = FilePath(text); }},
        {"data", [](Request& to, const Text& text) { to.data = FilePath(text); }},
        {"config", [](Request& to, const Text& text) { to.config = FilePath(text); }},
        {"git", [](Request& to, const Text& text) { to.git = FilePath(text); }},
        {"gh", [](Request& to, const Text& text) { to.gh = FilePath(text); }},
        {"untracked", [](Request& to, const Text& text) { to.includesUntracked = answerFrom(text); }},
        {"sensitive", [](Request& to, const Text& text) { to.includesSensitive = answerFrom(text); }},
        {"nested", [](Request& to, const Text& text) { to.includesNested = answerFrom(text); }},
        {"draft", [](Request& to, const Text& text) { to.createsPullRequest = answerFrom(text); }},
        {"largest",
         [](Request& to, const Text& text) { to.largestVaultFile = numberFrom<std::int64_t>(text); }},
        {"script", [](Request& to, const Text& text) { to.faultScript = FilePath(text); }},
        {"fault",
         [](Request& to, const Text& text) {
             const auto [number, kind] = parted(text);
             to.faults[numberFrom<std::size_t>(number)] = kind;
         }},
        {"fault-at",
         [](Request& to, const Text& text) {
             const auto [line, kind] = parted(text);
             to.faultsByLine[line] = kind;
         }},
        {"limit",
         [](Request& to, const Text& text) {
             const auto [line, limit] = parted(text);
             to.limits.emplace_back(line, std::chrono::milliseconds(numberFrom<std::int64_t>(limit)));
         }},
        {"pause", [](Request& to, const Text& text) { to.pauses.insert(numberFrom<std::size_t>(text)); }},
        {"pause-at", [](Request& to, const Text& text) { to.pausePoints.push_back(text); }},
        {"ahead", [](Request& to,
                     const Text& text) { to.ahead = std::chrono::seconds(numberFrom<std::int64_t>(text)); }},
        {"at",
         [](Request& to, const Text& text) { to.at = std::chrono::seconds(numberFrom<std::int64_t>(text)); }},
    };
    return all;
}

}  // namespace

RunRequest RunRequest::from(std::span<char*> words) {
    RunRequest request;
    for (const std::string word : words) {
        const std::size_t sign = word.find('=');
        const auto setter = setters().find(word.substr(0, sign));
        if (sign == std::string::npos || setter == setters().end())
            throw WrongRequest("unknown word: " + word);
        setter->second(request, word.substr(sign + 1));
    }
    const bool isFaulty = !request.faults.empty() || !request.faultsByLine.empty();
    if (isFaulty && !request.faultScript) throw WrongRequest("faults need a script");
    return request;
}

}  // namespace cairnfield
