#include "Services/Git/GitPorcelainParser.h"

#include "Shared/Text/Text.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace cairnfield::GitPorcelainParser {

namespace {

std::optional<std::string> presentUnlessEmpty(std::string_view value) {
    if (value.empty()) return std::nullopt;
    return std::string(value);
}

/// Collects the entries of a worktree list, one block of attributes after the other.
class WorktreeListReader {
public:
    void read(std::string_view piece) {
        if (piece.empty()) return flush();
        const std::size_t blank = piece.find(' ');
        const std::string_view key = piece.substr(0, blank);
        const std::string_view value = blank == std::string_view::npos ? "" : piece.substr(blank + 1);
        if (key == "worktree") {
            flush();
            entry_.emplace().path = FilePath(std::string(value));
        } else if (entry_) {
            take(key, value, *entry_);
        }
    }

    std::vector<GitWorktreeEntry> finish() {
        flush();
        // Its position is all that tells the main worktree.
        if (!entries_.empty()) entries_.front().isMain = true;
        return std::move(entries_);
    }

private:
    static void take(std::string_view key, std::string_view value, GitWorktreeEntry& entry) {
        if (key == "HEAD") {
            entry.head = std::string(value);
        } else if (key == "branch") {
            entry.branch = shortBranchName(value);
        } else if (key == "bare") {
            entry.isBare = true;
        } else if (key == "detached") {
            entry.isDetached = true;
        } else if (key == "locked") {
            entry.isLocked = true;
            entry.lockReason = presentUnlessEmpty(value);
        } else if (key == "prunable") {
            entry.isPrunable = true;
            entry.prunableReason = presentUnlessEmpty(value);
        }
    }

    void flush() {
        if (entry_) entries_.push_back(*std::exchange(entry_, std::nullopt));
    }

    std::optional<GitWorktreeEntry> entry_;
    std::vector<GitWorktreeEntry> entries_;
};

/// Where a field of a status record begins. Only the last one may hold blanks, so the fields are counted up
/// to it. Absent when the record has fewer.
std::optional<std::string_view> restFromField(std::string_view record, std::size_t field) {
    for (std::size_t i = 0; i < field; ++i) {
        const std::size_t blank = record.find(' ');
        if (blank == std::string_view::npos) return std::nullopt;
        record.remove_prefix(blank + 1);
    }
    return record;
}

void takeChange(std::string_view record, std::string_view path, GitStatusSummary& summary) {
    const std::string_view rest = restFromField(record, 1).value_or("");
    const std::string_view letters = rest.substr(0, rest.find(' '));
    const char index = letters.empty() ? '.' : letters[0];
    const char worktree = letters.size() < 2 ? '.' : letters[1];
    if (index != '.') ++summary.stagedCount;
    if (worktree != '.') ++summary.modifiedCount;
    summary.changedPaths.emplace_back(path);
}

std::string afterMark(std::string_view record) {
    return std::string(record.substr(std::min<std::size_t>(2, record.size())));
}

/// Whether the record is followed by a piece that belongs to it.
bool takeRecord(std::string_view record, GitStatusSummary& summary) {
    constexpr std::size_t pathOfChange = 8;
    constexpr std::size_t pathOfRename = 9;
    constexpr std::size_t pathOfUnmerged = 10;
    switch (record.front()) {
        case '1':
            if (const auto path = restFromField(record, pathOfChange)) takeChange(record, *path, summary);
            return false;
        case '2': {
            const auto path = restFromField(record, pathOfRename);
            if (path) takeChange(record, *path, summary);
            return path.has_value();
        }
        case 'u':
            if (const auto path = restFromField(record, pathOfUnmerged)) {
                ++summary.conflictedCount;
                summary.changedPaths.emplace_back(*path);
            }
            return false;
        case '?':
            ++summary.untrackedCount;
            summary.untrackedPaths.push_back(afterMark(record));
            return false;
        case '!':
            summary.ignoredPaths.push_back(afterMark(record));
            return false;
        default:
            return false;
    }
}

}  // namespace

std::vector<std::string_view> splitNulTerminated(std::string_view bytes) {
    std::vector<std::string_view> pieces;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\0');
        pieces.push_back(bytes.substr(0, end));
        if (end == std::string_view::npos) break;
        bytes.remove_prefix(end + 1);
    }
    return pieces;
}

std::vector<GitWorktreeEntry> parseWorktreeList(std::string_view bytes) {
    WorktreeListReader reader;
    for (const std::string_view piece : splitNulTerminated(bytes)) reader.read(piece);
    return reader.finish();
}

GitStatusSummary parseStatus(std::string_view bytes) {
    GitStatusSummary summary;
    const std::vector<std::string_view> pieces = splitNulTerminated(bytes);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (pieces[i].empty()) continue;
        // A rename is followed by the path it came from, whatever that looks like.
        if (takeRecord(pieces[i], summary)) ++i;
    }
    return summary;
}

bool submodulesNeedReview(std::string_view output) {
    const std::vector<std::string_view> lines = splitDroppingEmpty(output, '\n');
    return std::any_of(lines.begin(), lines.end(),
                       [](std::string_view line) { return line.starts_with('+') || line.starts_with('U'); });
}

std::string shortBranchName(std::string_view ref) {
    for (const std::string_view prefix : {"refs/heads/", "refs/remotes/"}) {
        if (ref.starts_with(prefix)) return std::string(ref.substr(prefix.size()));
    }
    return std::string(ref);
}

}  // namespace cairnfield::GitPorcelainParser
