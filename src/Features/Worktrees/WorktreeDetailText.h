#pragma once
// The words of the detail pane: everything that it says of one worktree, section by section, and whether it
// offers to clean it. Pure functions over plain values; texts from outside leave here safe to look at.

#include "Features/Presentation/ShownText.h"
#include "Features/Worktrees/WorktreeTexts.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

struct IgnoredEntryText {
    std::string name;
    std::string size;
    std::string classification;
    std::string rebuildHint;  ///< "Rebuilt by npm install." or empty
    bool isDirectory = false;

    friend bool operator==(const IgnoredEntryText&, const IgnoredEntryText&) = default;
};

/// What the section "Cleanup" holds. Without a symbol it is the plain text above the button "Preserve &
/// Clean…".
struct CleanupSectionText {
    SymbolText message;
    bool offersCleanup = false;     ///< the button is there
    bool isCleanupEnabled = false;  ///< and can be pressed
    std::string note;               ///< why it cannot be pressed, or empty

    friend bool operator==(const CleanupSectionText&, const CleanupSectionText&) = default;
};

struct WorktreeDetailText {
    std::string branch;
    std::string path;
    SafetyDisposition disposition = SafetyDisposition::needsReview;
    std::string explanation;
    std::vector<SymbolText> notes;  ///< why it is active, and why it could not be inspected
    std::vector<LabelledText> gitState;
    std::vector<IgnoredEntryText> ignored;  ///< empty: no such section
    std::string remoteMessage;              ///< in place of rows, where there is no remote
    std::vector<LabelledText> remote;
    CleanupSectionText cleanup;
    std::string pinTitle;  ///< "Pin" or "Unpin"

    friend bool operator==(const WorktreeDetailText&, const WorktreeDetailText&) = default;
};

inline constexpr std::string_view ignoredFilesNotice =
    "Removing the worktree deletes these too. They are not in Git.";

[[nodiscard]] WorktreeDetailText detailText(const Worktree& worktree, SizeKnowledge knowledge, Date now);
[[nodiscard]] CleanupSectionText cleanupSectionText(const Worktree& worktree);

}  // namespace cairnfield
