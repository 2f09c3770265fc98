#pragma once
// The words of one file in the Recovery Vault. Pure functions over plain values, without a toolkit; texts
// from outside leave here safe to look at.

#include "Models/RecoveryVaultEntry.h"

#include <string>

namespace cairnfield {

struct VaultRowText {
    std::string path;  ///< inside the worktree that it came from
    std::string size;
    std::string origin;       ///< "atlas · archived 2 days ago"; of a found one, that it is one
    std::string expiry;       ///< "Expires Nov 21, 2026, 3:04 PM", or empty
    std::string description;  ///< all but the path in one sentence, for assistive technology

    friend bool operator==(const VaultRowText&, const VaultRowText&) = default;
};

[[nodiscard]] VaultRowText vaultRowText(const RecoveryVaultEntry& entry, Date now);

/// What is asked before the file is deleted.
[[nodiscard]] std::string vaultDeletionQuestion(const RecoveryVaultEntry& entry);

}  // namespace cairnfield
