#include "Shared/Files/AtomicFile.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <system_error>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
namespace fs = std::filesystem;

std::set<std::string> namesIn(const FilePath& folder) {
    std::set<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.bytes()))
        names.insert(entry.path().filename());
    return names;
}

TEST(AtomicFile, WritesANewFileForTheUserAlone) {
    const TemporaryDirectory directory;
    const FilePath target = directory / "value.json";
    AtomicFile::write(target, "new");
    EXPECT_EQ(contentOf(target), "new");
    EXPECT_EQ(fs::status(target.bytes()).permissions(), fs::perms(0600));
    EXPECT_THAT(namesIn(directory.path()), ElementsAre("value.json"));
}

TEST(AtomicFile, ReplacesTheOldFileAsAWhole) {
    const TemporaryDirectory directory;
    const FilePath target = directory.write("value.json", "old and longer");
    const std::string large(1'000'000, 'x');
    AtomicFile::write(target, large);
    EXPECT_EQ(contentOf(target), large);
    AtomicFile::write(target, "");
    EXPECT_EQ(contentOf(target), "");
    EXPECT_THAT(namesIn(directory.path()), ElementsAre("value.json"));
}

TEST(AtomicFile, LeavesNothingBehindWhenItFails) {
    const TemporaryDirectory directory;
    // A file cannot take the place of a folder, so that the rename is refused.
    const FilePath target = directory.makeDirectory("value.json");
    EXPECT_THROW(AtomicFile::write(target, "new"), std::system_error);
    EXPECT_THAT(namesIn(directory.path()), ElementsAre("value.json"));
    EXPECT_THROW(AtomicFile::write(directory.path().appending("missing/value.json"), "new"),
                 std::system_error);
}

TEST(AtomicFile, LeavesTheOldFileWhenItMayNotWrite) {
    const TemporaryDirectory directory;
    fs::permissions(directory.path().bytes(), fs::perms(0755));
    const FilePath target = directory.write("value.json", "old");
    const std::string outcome = asUnprivilegedUser([&] {
        AtomicFile::write(target, "new");
        return std::string("written");
    });
    EXPECT_THAT(outcome, StartsWith("threw: "));
    EXPECT_EQ(contentOf(target), "old");
    EXPECT_THAT(namesIn(directory.path()), ElementsAre("value.json"));
}

TEST(AtomicFile, RemovesItsOwnLeftoversAlone) {
    const TemporaryDirectory directory;
    for (const char* name : {"value.json.tmpAb3dE9", "value.json.tmp000000"}) directory.write(name);
    const std::set<std::string> others{
        "value.json",           "value.json.tmp",        "value.json.tmpAb3d",
        "value.json.tmpAb3d.9", "value.json.tmpAb3dE9x", "other.json.tmpAb3dE9",
        "value.json~",          "xvalue.json.tmpAb3dE9"};
    for (const std::string& name : others) directory.write(name);
    AtomicFile::removeLeftovers(directory / "value.json");
    EXPECT_EQ(namesIn(directory.path()), others);
}

TEST(AtomicFile, FindsNoLeftoversWhereThereIsNoFolder) {
    const TemporaryDirectory directory;
    testing::internal::CaptureStderr();
    AtomicFile::removeLeftovers(directory.path().appending("missing/value.json"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(AtomicFile, LogsALeftoverThatStays) {
    const TemporaryDirectory directory;
    directory.makeDirectory("value.json.tmpAb3dE9");
    testing::internal::CaptureStderr();
    AtomicFile::removeLeftovers(directory / "value.json");
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("Could not remove"));
}

}  // namespace
}  // namespace cairnfield
