#include "Features/CleanupReview/ReviewListText.h"

#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace cairnfield {

namespace {

std::vector<std::string> named(const std::vector<IgnoredEntry>& files) {
    std::vector<std::string> lines;
    const std::size_t count = std::min(files.size(), namedNestedFiles);
    lines.reserve(count + 1);
    for (std::size_t i = 0; i < count; ++i) {
        lines.push_back(fmt::format("• {} · {}", visibleText(files[i].relativePath),
                                    ByteFormatting::string(files[i].sizeBytes)));
    }
    if (files.size() > count) lines.push_back(fmt::format("and {} more", files.size() - count));
    return lines;
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

NamedFilesText nestedFilesText(const NestedSensitiveFiles& nested) {
    const std::size_t count = nested.seen.size();
    if (count == 0) return {};
    return {counted(count, "ignored file in a folder looks sensitive.",
                    "ignored files in folders look sensitive."),
            named(nested.seen)};
}

NamedFilesText nestedFilesThatGoText(const NestedSensitiveFiles& nested, bool areKept) {
    std::vector<IgnoredEntry> going = nested.seen;
    if (areKept) {
        std::erase_if(going, [&nested](const IgnoredEntry& file) { return nested.isWithinLimit(file); });
    }
    if (going.empty()) return {};
    const std::string_view goes =
        going.size() == 1 ? "so this file goes with the worktree:" : "so these files go with the worktree:";
    if (!areKept) return {fmt::format("Not copied to the Recovery Vault, {}", goes), named(going)};
    return {fmt::format("The Recovery Vault takes no file over {}, {}",
                        ByteFormatting::string(nested.maximumFileBytes), goes),
            named(going)};
}

std::string missingFilesText(const MissingFiles& files) {
    if (!files.areMost()) return {};
    return fmt::format("{} of {} missing here. A cleanup preserves that as {}.", files.missing,
                       counted(files.tracked, "tracked file is", "tracked files are"),
                       files.missing == 1 ? "its deletion" : "their deletion");
}

std::string changedFilesTitle(std::size_t count) {
    return counted(count, "changed file", "changed files");
}

std::string untrackedFilesTitle(std::size_t count) {
    return counted(count, "untracked file", "untracked files");
}

std::string ignoredEntriesTitle(std::size_t count) {
    return counted(count, "ignored file or folder", "ignored files and folders");
}

std::string ignoredEntryLine(const IgnoredEntry& entry) {
    return fmt::format("{} · {} · {}", visibleText(entry.name), ByteFormatting::string(entry.sizeBytes),
                       title(entry.classification));
}

}  // namespace cairnfield
