#pragma once
// Where log lines go and what they look like. For Log alone; open so that its rules can be tried.

#include <spdlog/formatter.h>

#include <memory>
#include <optional>
#include <string>

namespace cairnfield::detail {

/// True when the descriptor is the stream that `journalStream`, the value of JOURNAL_STREAM, names by device
/// and inode. A program inherits that variable from its parent even when its standard error leads elsewhere.
[[nodiscard]] bool leadsToJournal(int descriptor, const std::optional<std::string>& journalStream);

/// "<6>git: Listed 3 worktrees": the priority that the journal takes off the front of a line. The journal
/// adds the time.
[[nodiscard]] std::unique_ptr<spdlog::formatter> journalFormatter();

/// "2026-11-21 14:50:47.123 info [git] Listed 3 worktrees", in local time.
[[nodiscard]] std::unique_ptr<spdlog::formatter> plainFormatter();

}  // namespace cairnfield::detail
