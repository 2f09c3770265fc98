#include "Shared/Files/Files.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;

std::errc failureOf(const std::function<void()>& body) {
    try {
        body();
    } catch (const std::system_error& failure) {
        return std::errc(failure.code().value());
    }
    return std::errc();
}

fs::perms permissionsOf(const FilePath& path) {
    return fs::status(path.bytes()).permissions();
}

TEST(ReadFile, GivesAllBytes) {
    const TemporaryDirectory directory;
    std::string bytes;
    for (int i = 0; i < 100'000; ++i) bytes += static_cast<char>(i * 7);
    EXPECT_EQ(readFile(directory.write("file", bytes)), bytes);
    EXPECT_EQ(readFile(directory.write("empty", "")), "");
}

TEST(ReadFile, IsAbsentForAMissingFile) {
    const TemporaryDirectory directory;
    EXPECT_EQ(readFile(directory / "missing"), std::nullopt);
    EXPECT_EQ(readFile(directory.path().appending("no/such/folder")), std::nullopt);
    EXPECT_EQ(readFile(directory.write("file").appending("inside")), std::nullopt);
}

TEST(ReadFile, RefusesWhatIsNoRegularFile) {
    const TemporaryDirectory directory;
    EXPECT_EQ(failureOf([&] { (void)readFile(directory.path()); }), std::errc::is_a_directory);
    const FilePath pipe = directory / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(failureOf([&] { (void)readFile(pipe); }), std::errc::invalid_argument)
        << "and does not wait for a writer";
}

TEST(ReadFile, FailsForAFileThatMayNotBeRead) {
    const TemporaryDirectory directory;
    fs::permissions(directory.path().bytes(), fs::perms(0755));
    const FilePath file = directory.write("file");
    fs::permissions(file.bytes(), fs::perms(0));
    const std::string outcome = asUnprivilegedUser([&] {
        return failureOf([&] { (void)readFile(file); }) == std::errc::permission_denied ? "denied" : "read";
    });
    EXPECT_EQ(outcome, "denied");
}

TEST(EnsureDirectory, CreatesMissingParentsForTheUserAlone) {
    const TemporaryDirectory directory;
    const FilePath folder = directory.path().appending("a/b/c");
    ensureDirectory(folder);
    for (const char* made : {"a", "a/b", "a/b/c"})
        EXPECT_EQ(permissionsOf(directory.path().appending(made)), fs::perms(0700)) << made;
}

TEST(EnsureDirectory, LeavesOneThatIsThereAsItIs) {
    const TemporaryDirectory directory;
    const FilePath folder = directory.makeDirectory("open");
    fs::permissions(folder.bytes(), fs::perms(0755));
    EXPECT_NO_THROW(ensureDirectory(folder));
    EXPECT_EQ(permissionsOf(folder), fs::perms(0755));
    fs::create_directory_symlink("open", (directory / "link").bytes());
    EXPECT_NO_THROW(ensureDirectory(directory / "link"));
}

TEST(EnsureDirectory, FailsWhereAFileStands) {
    const TemporaryDirectory directory;
    const FilePath file = directory.write("file");
    EXPECT_EQ(failureOf([&] { ensureDirectory(file); }), std::errc::not_a_directory);
    EXPECT_EQ(failureOf([&] { ensureDirectory(file.appending("inside")); }), std::errc::not_a_directory);
    EXPECT_EQ(contentOf(file), "content\n");
}

}  // namespace
}  // namespace cairnfield
