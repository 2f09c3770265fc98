#pragma once
// git's index, as far as the last look needs it: versions 2 to 4, split or not, for either kind of object
// name. Reading the bytes is pure; reading the file blocks. What is not understood is reported, never
// guessed.

#include "Shared/Paths/FilePath.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

struct GitIndexEntry {
    std::string path;  ///< relative to the worktree; one that ends in "/" stands for a folder left out
    std::uint32_t mode = 0;
    std::string object;  ///< raw bytes
    bool isAssumedUnchanged = false;
    bool isSkipped = false;  ///< marked skip-worktree

    // What the file was like when it was last compared, each in 32 bits.
    std::uint32_t changedSeconds = 0;
    std::uint32_t changedNanoseconds = 0;
    std::uint32_t modifiedSeconds = 0;
    std::uint32_t modifiedNanoseconds = 0;
    std::uint32_t inode = 0;
    std::uint32_t size = 0;

    [[nodiscard]] bool isHidden() const { return isAssumedUnchanged || isSkipped; }
    [[nodiscard]] bool isSubmodule() const { return (mode & 0170000U) == 0160000U; }
    [[nodiscard]] bool isLeftOutFolder() const { return (mode & 0170000U) == 0040000U; }
    [[nodiscard]] bool isLink() const { return (mode & 0170000U) == 0120000U; }
};

/// One index file. Where it has a base, its entries without a path replace entries of the base.
struct GitIndexFile {
    std::vector<GitIndexEntry> entries;
    std::string base;                     ///< raw name of the shared index; empty without one
    std::vector<std::size_t> deleted;     ///< positions in the base
    std::vector<std::size_t> superseded;  ///< positions in the base, in order

    /// `objectBytes` is the length of an object's name: 20 or 32. Absent for bytes that are no index, are cut
    /// off, or need what is not known here.
    [[nodiscard]] static std::optional<GitIndexFile> parse(std::string_view bytes, std::size_t objectBytes);
};

/// All entries of the index in that Git directory, its base merged in; none when there is no index yet.
/// Absent when it is not understood. Throws std::system_error.
[[nodiscard]] std::optional<std::vector<GitIndexEntry>> readGitIndex(const FilePath& gitDirectory,
                                                                     std::size_t objectBytes);

}  // namespace cairnfield
