#include "Services/Cleanup/GitIndexFile.h"

#include "Services/Cleanup/ByteCursor.h"
#include "Shared/Files/Files.h"

#include <algorithm>
#include <span>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::uint16_t assumeUnchangedFlag = 0x8000;
constexpr std::uint16_t extendedFlag = 0x4000;
constexpr std::uint16_t skipWorktreeFlag = 0x4000;  // among the extended ones

/// An entry without its path.
GitIndexEntry readFixedPart(ByteCursor& cursor, std::uint32_t version, std::size_t objectBytes) {
    GitIndexEntry entry;
    entry.changedSeconds = cursor.number32();
    entry.changedNanoseconds = cursor.number32();
    entry.modifiedSeconds = cursor.number32();
    entry.modifiedNanoseconds = cursor.number32();
    cursor.skip(4);  // device
    entry.inode = cursor.number32();
    entry.mode = cursor.number32();
    cursor.skip(8);  // owner and group
    entry.size = cursor.number32();
    entry.object = cursor.take(objectBytes);
    const std::uint16_t flags = cursor.number16();
    entry.isAssumedUnchanged = (flags & assumeUnchangedFlag) != 0;
    if (version >= 3 && (flags & extendedFlag) != 0)
        entry.isSkipped = (cursor.number16() & skipWorktreeFlag) != 0;
    return entry;
}

/// Paths of version 4 say how much of the previous one they keep.
bool readCompressedPath(ByteCursor& cursor, const std::string& previous, std::string& path) {
    const std::uint64_t dropped = cursor.offsetNumber();
    if (dropped > previous.size()) return false;
    path = previous.substr(0, previous.size() - dropped);
    path += cursor.takeUntilZero();
    return true;
}

bool readEntries(ByteCursor& cursor, std::uint32_t version, std::size_t objectBytes, GitIndexFile& file) {
    const std::uint32_t count = cursor.number32();
    std::string previous;
    for (std::uint32_t i = 0; i < count && cursor.isGood(); ++i) {
        const std::size_t start = cursor.position();
        GitIndexEntry entry = readFixedPart(cursor, version, objectBytes);
        if (version == 4) {
            if (!readCompressedPath(cursor, previous, entry.path)) return false;
            previous = entry.path;
        } else {
            entry.path = cursor.takeUntilZero();
            // Entries are padded to a multiple of eight; the zero that was read is the first of the padding.
            const std::size_t length = cursor.position() - start;
            cursor.skip((8 - length % 8) % 8);
        }
        file.entries.push_back(std::move(entry));
    }
    return cursor.isGood();
}

bool readLink(ByteCursor cursor, std::size_t objectBytes, GitIndexFile& file) {
    const std::string_view base = cursor.take(objectBytes);
    if (!cursor.isGood()) return false;
    if (base.find_first_not_of('\0') == std::string_view::npos) return true;
    file.base = base;
    if (cursor.remaining() == 0) return true;
    file.deleted = cursor.bitmap();
    file.superseded = cursor.bitmap();
    return cursor.isGood();
}

bool readExtensions(ByteCursor& cursor, std::size_t objectBytes, GitIndexFile& file) {
    while (cursor.isGood() && cursor.remaining() > objectBytes) {
        const std::string_view name = cursor.take(4);
        const std::string_view content = cursor.take(cursor.number32());
        if (!cursor.isGood()) return false;
        if (name == "link" && !readLink(ByteCursor(content), objectBytes, file)) return false;
        const bool mayBeIgnored = name.front() >= 'A' && name.front() <= 'Z';
        if (!mayBeIgnored && name != "link" && name != "sdir") return false;
    }
    return cursor.isGood() && cursor.remaining() == objectBytes;
}

/// Only what replaces an entry of a base has no path.
bool haveNames(std::span<const GitIndexEntry> entries) {
    return std::ranges::none_of(entries, [](const GitIndexEntry& entry) { return entry.path.empty(); });
}

std::optional<std::vector<GitIndexEntry>> merged(std::vector<GitIndexEntry> base, GitIndexFile file) {
    std::size_t next = 0;
    for (const std::size_t position : file.superseded) {
        if (position >= base.size() || next >= file.entries.size() || !file.entries[next].path.empty())
            return std::nullopt;
        file.entries[next].path = base[position].path;
        base[position] = std::move(file.entries[next++]);
    }
    if (!haveNames(std::span(file.entries).subspan(next))) return std::nullopt;
    for (const std::size_t position : file.deleted) {
        if (position >= base.size()) return std::nullopt;
        base[position].path.clear();
    }
    std::erase_if(base, [](const GitIndexEntry& entry) { return entry.path.empty(); });
    base.insert(base.end(), std::make_move_iterator(file.entries.begin() + std::ptrdiff_t(next)),
                std::make_move_iterator(file.entries.end()));
    return base;
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        text += digits[static_cast<unsigned char>(byte) >> 4U];
        text += digits[static_cast<unsigned char>(byte) & 0x0FU];
    }
    return text;
}

}  // namespace

std::optional<GitIndexFile> GitIndexFile::parse(std::string_view bytes, std::size_t objectBytes) {
    ByteCursor cursor(bytes);
    GitIndexFile file;
    if (cursor.take(4) != "DIRC") return std::nullopt;
    const std::uint32_t version = cursor.number32();
    if (version < 2 || version > 4) return std::nullopt;
    if (!readEntries(cursor, version, objectBytes, file)) return std::nullopt;
    if (!readExtensions(cursor, objectBytes, file)) return std::nullopt;
    return file;
}

std::optional<std::vector<GitIndexEntry>> readGitIndex(const FilePath& gitDirectory,
                                                       std::size_t objectBytes) {
    const std::optional<std::string> bytes = readFile(gitDirectory.appending("index"));
    if (!bytes) return std::vector<GitIndexEntry>();
    std::optional<GitIndexFile> file = GitIndexFile::parse(*bytes, objectBytes);
    if (!file) return std::nullopt;
    if (file->base.empty()) {
        if (!haveNames(file->entries)) return std::nullopt;
        return std::move(file->entries);
    }
    const std::optional<std::string> baseBytes =
        readFile(gitDirectory.appending("sharedindex." + hexadecimal(file->base)));
    if (!baseBytes) return std::nullopt;
    std::optional<GitIndexFile> base = GitIndexFile::parse(*baseBytes, objectBytes);
    if (!base || !base->base.empty() || !haveNames(base->entries)) return std::nullopt;
    return merged(std::move(base->entries), *std::move(file));
}

}  // namespace cairnfield
