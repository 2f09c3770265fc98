#include "Services/Cleanup/ByteCursor.h"
#include "Services/Cleanup/GitIndexFile.h"
#include "Services/Git/WorktreeGitFiles.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/Scratch.h"
#include "fuzz/Targets.h"

#include <algorithm>
#include <functional>
#include <string>
#include <system_error>

namespace cairnfield {

namespace {

constexpr std::size_t sha1Bytes = 20;
constexpr std::size_t sha256Bytes = 32;

void checkPositions(const std::vector<std::size_t>& positions) {
    promise(std::ranges::adjacent_find(positions, std::greater_equal<>()) == positions.end(),
            "positions ascend");
}

void checkIndex(std::string_view input, std::size_t objectBytes) {
    const std::optional<GitIndexFile> file = GitIndexFile::parse(input, objectBytes);
    promise(file.has_value() == GitIndexFile::parse(input, objectBytes).has_value(),
            "the same bytes read the same");
    if (!file) return;
    const std::size_t smallestEntry = 40 + objectBytes + 3;
    promise(file->entries.size() * smallestEntry <= input.size(), "an entry takes room");
    for (const GitIndexEntry& entry : file->entries) {
        promise(entry.object.size() == objectBytes, "an object has a whole name");
        promise(entry.path.find('\0') == std::string::npos, "a path holds no NUL");
    }
    promise(file->base.empty() || file->base.size() == objectBytes, "a base has a whole name");
    promise(!file->base.empty() || (file->deleted.empty() && file->superseded.empty()),
            "only a base can be changed");
    checkPositions(file->deleted);
    checkPositions(file->superseded);
    promise(!GitIndexFile::parse(input.substr(0, input.size() - 1), objectBytes), "a cut index is none");
    promise(!GitIndexFile::parse(std::string(input) + 'x', objectBytes), "an index ends where it ends");
}

std::string hexadecimal(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes)
        for (const unsigned shift : {4U, 0U})
            text += "0123456789abcdef"[static_cast<unsigned char>(byte) >> shift & 0xFU];
    return text;
}

}  // namespace

void fuzzIndexOfSHA1(std::string_view input) {
    checkIndex(input, sha1Bytes);
}

void fuzzIndexOfSHA256(std::string_view input) {
    checkIndex(input, sha256Bytes);
}

/// Two bytes say how long the index is; the rest is its base.
void fuzzSplitIndex(std::string_view input) {
    ByteCursor cursor(input);
    const std::size_t length = std::min<std::size_t>(cursor.number16(), cursor.remaining());
    const std::string_view index = cursor.take(length);
    const std::string_view base = cursor.take(cursor.remaining());
    const std::optional<GitIndexFile> file = GitIndexFile::parse(index, sha1Bytes);
    const Scratch scratch;
    scratch.write("index", index);
    if (file && !file->base.empty()) scratch.write("sharedindex." + hexadecimal(file->base), base);

    const std::optional<std::vector<GitIndexEntry>> entries = readGitIndex(scratch.path(), sha1Bytes);
    promise(!entries || file, "what is no index has no entries");
    if (!entries) return;
    for (const GitIndexEntry& entry : *entries) promise(!entry.path.empty(), "an entry has a path");
    if (file->base.empty()) promise(entries->size() == file->entries.size(), "no entry is made up");
}

/// Reads a number, a bitmap and pieces, in the order that the input's own bytes say.
void fuzzByteCursor(std::string_view input) {
    ByteCursor cursor(input);
    while (cursor.isGood() && cursor.remaining() > 0) {
        const std::size_t before = cursor.position();
        switch (cursor.take(1).front() % 5) {
            case 0:
                (void)cursor.offsetNumber();
                break;
            case 1:
                checkPositions(cursor.bitmap());
                break;
            case 2:
                promise(cursor.takeUntilZero().find('\0') == std::string_view::npos,
                        "a piece ends at its zero");
                break;
            case 3:
                cursor.skip(cursor.number16());
                break;
            default:
                (void)cursor.number32();
        }
        promise(cursor.position() > before && cursor.position() <= input.size(), "a cursor goes on");
    }
    if (cursor.isGood()) return;
    const std::size_t end = cursor.position();
    promise(cursor.take(1).empty() && cursor.number32() == 0, "past the end there is nothing");
    promise(cursor.position() == end && !cursor.isGood(), "past the end stays there");
}

/// Two bytes say how long HEAD is; the rest is the packed references, and a branch besides.
void fuzzHeadOnDisk(std::string_view input) {
    ByteCursor cursor(input);
    const std::size_t length = std::min<std::size_t>(cursor.number16(), cursor.remaining());
    const std::string_view head = cursor.take(length);
    const std::string_view packed = cursor.take(cursor.remaining());
    const Scratch scratch;
    scratch.write("HEAD", head);
    scratch.write("packed-refs", packed);
    try {
        const HeadOnDisk found = headOnDisk({scratch.path(), scratch.path()});
        promise((found.form == HeadOnDisk::Form::commit) != found.commit.empty(), "a commit has a name");
        promise(found.commit.empty() || found.commit.size() == 40 || found.commit.size() == 64,
                "a commit has a whole name");
        promise(found.commit.find_first_not_of("0123456789abcdef") == std::string::npos,
                "a commit's name is hexadecimal");
    } catch (const std::system_error&) {
        // What HEAD names may be a folder, or a name that no file can have.
    }
}

}  // namespace cairnfield
