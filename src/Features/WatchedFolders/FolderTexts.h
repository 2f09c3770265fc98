#pragma once
// The words of one watched folder. Pure functions over plain values, without a toolkit; texts from outside
// leave here safe to look at.

#include "Models/DirectoryScan.h"
#include "Models/WatchedFolder.h"

#include <string>
#include <vector>

namespace cairnfield {

struct LargestItemText {
    std::string name;
    std::string size;

    friend bool operator==(const LargestItemText&, const LargestItemText&) = default;
};

struct FolderRowText {
    std::string name;
    std::string path;
    std::string size;  ///< "Not scanned" without a last known size
    bool isSizeKnown = false;
    std::string change;  ///< "+1.2 GB" since the scan before, or empty
    StorageLevel level = StorageLevel::normal;
    std::string scanned;                   ///< "Scanned 5 min. ago"
    std::string error;                     ///< why the last scan failed, or empty
    std::vector<LargestItemText> largest;  ///< at most 6; empty: no such section
    std::string description;               ///< all but the name in one sentence, for assistive technology

    friend bool operator==(const FolderRowText&, const FolderRowText&) = default;
};

/// `result` is what this run of the program found in the folder, if anything.
[[nodiscard]] FolderRowText folderRowText(const WatchedFolder& folder, const DirectoryScanResult* result,
                                          Date now);

}  // namespace cairnfield
