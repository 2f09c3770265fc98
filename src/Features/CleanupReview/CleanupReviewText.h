#pragma once
// The words of the review sheet: what was found, what will be kept, what will vanish, and how the attempt
// ended. Pure functions over plain values; texts from outside leave here safe to look at, on one line each
// but for failures, which keep theirs.

#include "Features/Presentation/ShownText.h"
#include "Services/Cleanup/CleanupPlan.h"
#include "Services/Cleanup/PreflightJudgement.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// "atlas · feature".
[[nodiscard]] std::string reviewSubtitle(const Worktree& worktree);

/// Why a preflight that did not pass stops the cleanup: the first of its reasons.
[[nodiscard]] std::string blockedText(const CleanupPreflightReport& report);

[[nodiscard]] std::vector<std::string> warningLines(const CleanupPreflightReport& report);

/// What the worktree holds.
[[nodiscard]] std::vector<LabelledText> foundRows(const Worktree& worktree);

/// Where the work will be afterwards.
struct PreservedText {
    bool isPushed = false;  ///< a recovery branch is made, so that there is something to choose
    SymbolText statement;
    std::vector<LabelledText> rows;

    friend bool operator==(const PreservedText&, const PreservedText&) = default;
};

[[nodiscard]] PreservedText preservedText(const CleanupPlan& plan, const CleanupPreflightReport& report);

/// "• .env · 2 KB", for each entry that looks sensitive.
[[nodiscard]] std::vector<std::string> sensitiveLines(const Worktree& worktree);

/// "node_modules · 1.2 GB · rebuilt by npm install", for each entry that can be had again.
[[nodiscard]] std::vector<std::string> rebuildableLines(const Worktree& worktree);

/// How the attempt ended.
struct ReceiptText {
    SymbolText title;
    std::string_view tint;
    std::string failure;                    ///< lines, or empty
    std::string note;                       ///< what the failure did not take, or empty
    std::vector<LabelledText> whereabouts;  ///< of the work; empty: no such section

    friend bool operator==(const ReceiptText&, const ReceiptText&) = default;
};

[[nodiscard]] ReceiptText receiptText(const CleanupReceipt& receipt);

/// Git has become unusable since the review, which `reason` words where it is known.
[[nodiscard]] ReceiptText neverBegunText(const std::optional<std::string>& reason);

}  // namespace cairnfield
