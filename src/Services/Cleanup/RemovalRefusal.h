#pragma once
// Why a worktree must not be removed: in words that say "it" for the worktree, and as the error that fits.
// git was not asked to remove anything, so none of these says that it refused. A plain value, any thread.

#include "Models/Git.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Paths/FilePath.h"

#include <string>

namespace cairnfield {

struct RemovalRefusal {
    enum class Kind {
        state,       ///< something that was not there, or not so, when the cleanup began
        unreadable,  ///< what would have to be known cannot be read
        elsewhere,   ///< the path leads to something else
        operation,   ///< unfinished
        copies,      ///< in the vault, unlike what they were made of
    };

    // Most reasons are nothing but words.
    RemovalRefusal(std::string reason, Kind what = Kind::state)  // NOLINT(google-explicit-constructor)
        : words(std::move(reason)), kind(what) {}
    [[nodiscard]] static RemovalRefusal unfinished(GitOperationInProgress operation);

    /// For a receipt.
    [[nodiscard]] CairnfieldError asError(const FilePath& worktree) const;
    /// For the list of what stands in the way of a cleanup that has not begun.
    [[nodiscard]] std::string asSentence() const;

    std::string words;  ///< "Its HEAD is not where it was left."
    Kind kind = Kind::state;
    GitOperationInProgress operation{};  ///< of that kind only
};

}  // namespace cairnfield
