#pragma once
// What a driver asks of one run, as words of the form "name=value". Paths are bytes.

#include "Shared/Paths/FilePath.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

/// The words cannot be understood.
class WrongRequest : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct RunRequest {
    using Limit = std::pair<std::string, std::chrono::nanoseconds>;

    FilePath repository;
    FilePath worktree;
    FilePath data;    ///< the home of the stores and the vault
    FilePath config;  ///< the home of settings
    FilePath git;
    FilePath gh;

    // What the person chooses on the review sheet.
    bool includesUntracked = true;
    bool includesSensitive = true;
    bool includesNested = true;
    bool createsPullRequest = false;
    std::int64_t largestVaultFile = 1'000'000;  ///< bytes

    // What goes wrong.
    std::map<std::size_t, std::string> faults;        ///< kind by the number of the command, from 1 on
    std::map<std::string, std::string> faultsByLine;  ///< kind by the beginning of their lines
    std::optional<FilePath> faultScript;              ///< started in place of a faulty command
    std::chrono::nanoseconds hangLimit{std::chrono::milliseconds(250)};
    std::vector<Limit> limits;  ///< by the beginning of a command's line

    std::set<std::size_t> pauses;          ///< numbers of checkpoints
    std::vector<std::string> pausePoints;  ///< beginnings of their names
    std::chrono::seconds ahead{std::chrono::hours(1)};
    std::optional<std::chrono::seconds> at;  ///< since 1970, where the clock stands still

    /// Throws WrongRequest.
    [[nodiscard]] static RunRequest from(std::span<char*> words);
};

}  // namespace cairnfield
