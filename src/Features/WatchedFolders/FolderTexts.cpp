#include "Features/WatchedFolders/FolderTexts.h"

#include "Shared/Formatting/ByteFormatting.h"
#include "Shared/Formatting/DateFormatting.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <charconv>

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

std::optional<FilePath> pathFromTyped(std::string_view typed, const FilePath& home) {
    const std::string_view path = trimmed(typed);
    if (path == "~") return home.standardized();
    if (path.starts_with("~/")) return home.appending(path.substr(2)).standardized();
    const FilePath result{std::string(path)};
    if (!result.isAbsolute()) return std::nullopt;
    return result.standardized();
}

FilePath pathFromEncoded(std::string_view encodedPath) {
    std::string bytes;
    bytes.reserve(encodedPath.size());
    for (std::size_t position = 0; position < encodedPath.size(); ++position) {
        unsigned char byte = static_cast<unsigned char>(encodedPath[position]);
        if (byte == '%' && position + 2 < encodedPath.size()) {
            const char* const digits = encodedPath.data() + position + 1;
            const auto [end, failure] = std::from_chars(digits, digits + 2, byte, 16);
            if (failure == std::errc{} && end == digits + 2) {
                position += 2;
            } else {
                byte = '%';
            }
        }
        bytes.push_back(static_cast<char>(byte));
    }
    return FilePath(std::move(bytes));
}

}  // namespace cairnfield
