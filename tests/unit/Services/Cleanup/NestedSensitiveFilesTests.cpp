#include "Services/Cleanup/NestedSensitiveFiles.h"
#include "Services/Cleanup/SensitiveNames.h"
#include "Shared/Concurrency/Cancelled.h"
#include "support/SmallDisk.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <unistd.h>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t limit = 100;

NestedSensitiveFiles look(const FilePath& root, std::vector<std::string> ignoredPaths) {
    Worktree worktree;
    worktree.path = root;
    worktree.status.ignoredPaths = std::move(ignoredPaths);
    return lookForNestedSensitiveFiles(worktree, limit, {});
}

std::vector<std::string> pathsOf(const std::vector<IgnoredEntry>& files) {
    std::vector<std::string> paths;
    paths.reserve(files.size());
    for (const IgnoredEntry& file : files) paths.push_back(file.relativePath);
    return paths;
}

struct NestedSensitiveFilesTest : testing::Test {
    [[nodiscard]] std::vector<std::string> seen(std::vector<std::string> ignoredPaths) const {
        const NestedSensitiveFiles found = look(home.path(), std::move(ignoredPaths));
        EXPECT_EQ(found.failure, std::nullopt);
        return pathsOf(found.seen);
    }

    TemporaryDirectory home;
};

TEST_F(NestedSensitiveFilesTest, AreFoundWhereverGitIgnoresThemAndNowhereElse) {
    for (const char* path : {".env", "src/api/.env", "src/api/tracked.pem", "src/web/.env", "src/web/app.log",
                             "local/notes.txt", "local/deep/down/prod.key", "secrets/plain.txt"})
        home.write(path);
    EXPECT_THAT(seen({".env", "src/api/.env", "src/web/.env", "src/web/app.log", "local/", "secrets/"}),
                ElementsAre("local/deep/down/prod.key", "secrets/plain.txt", "src/api/.env", "src/web/.env"))
        << "a tracked file goes with its commit, and the top is known";
}

TEST_F(NestedSensitiveFilesTest, AreNotLookedForInWhatCanBeBuiltAgain) {
    for (const char* path : {"node_modules/a/.env", "packages/a/node_modules/b/x.pem",
                             "local/.venv/lib/cert.pem", "build/.env", "secrets/out/x"})
        home.write(path);
    EXPECT_THAT(seen({"node_modules/", "packages/a/node_modules/", "local/", "build/.env", "secrets/"}),
                ElementsAre("build/.env", "secrets/out/x"));
}

TEST_F(NestedSensitiveFilesTest, AreThoseThatTheirNamesSay) {
    const std::vector<std::string> paths{"a/.env",          "a/b/.env",        "a/out/x.key",
                                         "a/out/secrets/x", "a/secrets/out/x", "a/x.txt",
                                         "build/.env",      "build/obj/.env",  "build/keep.txt"};
    const std::vector<std::string> ignored{"a/", "build/.env", "build/obj/"};
    for (const std::string& path : paths) home.write(path);
    std::vector<std::string> expected;
    for (const std::string& path : paths)
        if (SensitiveNames(ignored).counts(path)) expected.push_back(path);
    EXPECT_EQ(seen(ignored), expected);
    EXPECT_THAT(expected, ElementsAre("a/.env", "a/b/.env", "a/secrets/out/x", "build/.env"));
}

TEST_F(NestedSensitiveFilesTest, AreToldWithTheirPathLengthAndTime) {
    const FilePath file = home.write("local/.env", "12345");
    const timespec times[2] = {{}, {.tv_sec = 1'700'000'000, .tv_nsec = 5}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    const NestedSensitiveFiles found = look(home.path(), {"local/"});
    ASSERT_EQ(found.seen.size(), 1U);
    const IgnoredEntry expected{
        .name = "local/.env",
        .relativePath = "local/.env",
        .sizeBytes = 5,
        .modifiedAt = Date(std::chrono::seconds(1'700'000'000)) + std::chrono::nanoseconds(5),
        .classification = IgnoredEntryClass::sensitive};
    EXPECT_EQ(found.seen.front(), expected);
    EXPECT_THAT(found.toArchive, IsEmpty()) << "that is the person's to say";
}

TEST_F(NestedSensitiveFilesTest, FitIntoTheVaultUpToItsLimit) {
    home.write("local/a.key", std::string(limit, 'x'));
    home.write("local/b.key", std::string(limit + 1, 'x'));
    EXPECT_THAT(pathsOf(look(home.path(), {"local/"}).withinLimit()), ElementsAre("local/a.key"));
}

TEST_F(NestedSensitiveFilesTest, MayBeLinksWhichAreNotFollowed) {
    const FilePath outside = home.makeDirectory("outside");
    home.write("outside/inner.key");
    home.makeDirectory("tree/local");
    fs::create_symlink("../missing", (home / "tree/local/.env").bytes());
    fs::create_directory_symlink(outside.bytes(), (home / "tree/local/elsewhere").bytes());
    fs::create_directory_symlink(outside.bytes(), (home / "tree/moved").bytes());
    const NestedSensitiveFiles found =
        look(home / "tree", {"local/", "moved/", "moved/inner.key", "local/elsewhere/inner.key"});
    EXPECT_EQ(found.failure, std::nullopt);
    EXPECT_THAT(pathsOf(found.seen), ElementsAre("local/.env"));
}

TEST_F(NestedSensitiveFilesTest, AreNoPipes) {
    home.makeDirectory("secrets");
    ASSERT_EQ(mkfifo((home / "secrets/agent").c_str(), 0600), 0);
    EXPECT_THAT(seen({"secrets/"}), IsEmpty());
}

TEST_F(NestedSensitiveFilesTest, MayBeGoneSinceTheInspection) {
    home.write("was-a-folder");
    EXPECT_THAT(seen({"gone/", "gone/too/.env", "was-a-folder/", "was-a-folder/.env"}), IsEmpty());
    EXPECT_EQ(look(home / "nowhere", {"a/"}), (NestedSensitiveFiles{.maximumFileBytes = limit}));
}

TEST_F(NestedSensitiveFilesTest, HaveNamesOfAnyBytes) {
    home.write("local/we\nird\xff/.env");
    EXPECT_THAT(seen({"local/"}), ElementsAre("local/we\nird\xff/.env"));
}

TEST_F(NestedSensitiveFilesTest, StopBeingLookedForWhenNobodyWantsToKnow) {
    home.write("local/.env");
    Worktree worktree;
    worktree.path = home.path();
    worktree.status.ignoredPaths = {"local/"};
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW((void)lookForNestedSensitiveFiles(worktree, limit, source.get_token()), Cancelled);
}

TEST_F(NestedSensitiveFilesTest, AreUnknownInAFolderThatCannotBeRead) {
    home.write("local/closed/.env");
    fs::permissions(home.path().bytes(), fs::perms(0755));
    fs::permissions((home / "local").bytes(), fs::perms(0755));
    fs::permissions((home / "local/closed").bytes(), fs::perms(0311));
    const auto failure = [&] { return look(home.path(), {"local/"}).failure.value_or("nothing"); };
    EXPECT_EQ(asUnprivilegedUser(failure),
              "local/closed could not be looked through for files that look sensitive: Permission denied.");
}

TEST(NestedSensitiveFilesOnAnotherFileSystem, AreUnknown) {
    const auto failure = [](const FilePath& disk) -> std::string {
        const FilePath inner = disk.appending("tree/local/inner");
        fs::create_directories(inner.bytes());
        if (mount("tmpfs", inner.c_str(), "tmpfs", 0, nullptr) != 0) return "could not mount";
        return look(disk.appending("tree"), {"local/"}).failure.value_or("nothing");
    };
    const std::optional<std::string> seen = onSmallDisk(1 << 20, failure);
    if (!seen) GTEST_SKIP() << "nothing may be mounted here";
    EXPECT_EQ(*seen,
              "local/inner could not be looked through for files that look sensitive: Something is mounted "
              "there.");
}

TEST(NestedSensitiveFilesUnderABindMount, AreUnknownThoughItIsTheSameDisk) {
    const auto failure = [](const FilePath& disk) -> std::string {
        const FilePath inner = disk.appending("tree/local/inner");
        const FilePath other = disk.appending("other");
        fs::create_directories(inner.bytes());
        fs::create_directories(other.bytes());
        if (mount(other.c_str(), inner.c_str(), nullptr, MS_BIND, nullptr) != 0) return "could not mount";
        return look(disk.appending("tree"), {"local/"}).failure.value_or("nothing");
    };
    const std::optional<std::string> seen = onSmallDisk(1 << 20, failure);
    if (!seen) GTEST_SKIP() << "nothing may be mounted here";
    EXPECT_THAT(*seen, testing::HasSubstr("Something is mounted there"));
}

}  // namespace
}  // namespace cairnfield
