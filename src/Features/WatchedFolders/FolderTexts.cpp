#include "Features/WatchedFolders/FolderTexts.h"

#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/DateFormatting.h"
#include "Shared/Text/Text.h"

namespace cairnfield {

namespace {

constexpr std::size_t mostItems = 6;

std::vector<LargestItemText> largestItems(const DirectoryScanResult* result) {
    std::vector<LargestItemText> items;
    if (!result) return items;
    for (const ChildSize& child : result->largestChildren) {
        if (items.size() == mostItems) break;
        items.push_back({visibleText(child.url.lastComponent()), ByteFormatting::string(child.bytes)});
    }
    return items;
}

}  // namespace

FolderRowText folderRowText(const WatchedFolder& folder, const DirectoryScanResult* result, Date now) {
    FolderRowText text;
    text.name = visibleText(folder.displayName);
    text.path = folder.path.display();
    text.isSizeKnown = folder.lastKnownSizeBytes.has_value();
    text.size = text.isSizeKnown ? ByteFormatting::string(*folder.lastKnownSizeBytes) : "Not scanned";
    if (folder.lastKnownSizeBytes && folder.previousSizeBytes &&
        *folder.lastKnownSizeBytes != *folder.previousSizeBytes) {
        text.change = ByteFormatting::signedString(*folder.lastKnownSizeBytes - *folder.previousSizeBytes);
    }
    text.level = folder.level();
    text.scanned = "Scanned " + DateFormatting::relative(folder.lastScanAt, now);
    if (folder.lastScanError) text.error = visibleText(*folder.lastScanError);
    text.largest = largestItems(result);

    text.description = text.size;
    for (const std::string& part :
         {text.change, std::string(title(text.level)), text.scanned, text.error, text.path}) {
        if (!part.empty()) text.description += ", " + part;
    }
    return text;
}

}  // namespace cairnfield
