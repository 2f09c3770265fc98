#include "RecoveryVaultFixture.h"
#include "support/ScopedEnvironment.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <ctime>
#include <fcntl.h>
#include <limits>
#include <unistd.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
namespace fs = std::filesystem;

class RecoveryVaultArchive : public RecoveryVault {};

TEST_F(RecoveryVaultArchive, CopiesAFileAndRecordsWhereItCameFrom) {
    const std::vector<RecoveryVaultEntry> added = archive({local(".env", "A=1\n")});
    ASSERT_THAT(added, SizeIs(1));
    RecoveryVaultEntry expected;
    expected.id = added[0].id;
    expected.receiptID = receiptID;
    expected.repositoryName = "project";
    expected.originalWorktreePath = worktree.path;
    expected.relativePath = FilePath(".env");
    expected.storedPath = directory.appending(".env");
    expected.sizeBytes = 4;
    expected.modifiedAt = start;
    expected.reason = "Ignored file that looks sensitive; never pushed to a remote.";
    expected.archivedAt = start;
    expected.expiresAt = added[0].expiresAt;
    EXPECT_EQ(added[0], expected);
    EXPECT_NE(added[0].id, UUID());
    EXPECT_EQ(contentOf(added[0].storedPath), "A=1\n");
    EXPECT_EQ(contentOf(inWorktree(".env")), "A=1\n") << "the original stays";
    EXPECT_EQ(entries(), added);
    EXPECT_EQ(entriesAgain(), added);
}

TEST_F(RecoveryVaultArchive, SaysWhyAFileIsKept) {
    IgnoredEntry sensitive = local(".env");
    IgnoredEntry unknown = local("notes");
    IgnoredEntry rebuildable = local("cache");
    unknown.classification = IgnoredEntryClass::unknown;
    rebuildable.classification = IgnoredEntryClass::rebuildable;
    std::vector<std::string> reasons;
    for (const RecoveryVaultEntry& entry : archive({sensitive, unknown, rebuildable}))
        reasons.push_back(entry.reason);
    EXPECT_THAT(reasons, ElementsAre("Ignored file that looks sensitive; never pushed to a remote.",
                                     "Local-only file selected during review.",
                                     "Local-only file selected during review."));
}

TEST_F(RecoveryVaultArchive, KeepsFoldersApartAndTheOrderOfTheFiles) {
    const std::vector<RecoveryVaultEntry> added = archive(
        {local("b/.env", "b"), local("a/.env", "a"), local(".env", "top"), local("a/x/y/.env", "deep")});
    std::vector<std::string> paths;
    for (const RecoveryVaultEntry& entry : added) paths.push_back(entry.relativePath.bytes());
    EXPECT_THAT(paths, ElementsAre("b/.env", "a/.env", ".env", "a/x/y/.env"));
    EXPECT_THAT(filesIn(directory), ElementsAre(Pair(".env", "top"), Pair("a/.env", "a"),
                                                Pair("a/x/y/.env", "deep"), Pair("b/.env", "b")));
}

TEST_F(RecoveryVaultArchive, AddsToTheEndOfTheIndex) {
    const std::vector<RecoveryVaultEntry> first = archive({local(".env")});
    const UUID other = UUID::make();
    const auto second = wait(vault.archive({local(".env")}, worktree, "other", other, 0));
    ASSERT_THAT(entriesAgain(), SizeIs(2));
    EXPECT_EQ(entriesAgain()[0], first[0]);
    EXPECT_EQ(entriesAgain()[1], second[0]);
    EXPECT_EQ(second[0].storedPath, root.appending(other.text()).appending(".env"));
}

TEST_F(RecoveryVaultArchive, OfNothingDoesNothing) {
    EXPECT_THAT(archive({}), IsEmpty());
    EXPECT_THAT(volume.asked, IsEmpty());
    EXPECT_FALSE(fs::exists(support.directory().bytes()));
}

TEST_F(RecoveryVaultArchive, SkipsAFileThatIsGoneWithoutAWord) {
    const std::vector<IgnoredEntry> files{local("a"), entryFor("gone", 7), entryFor("nowhere/gone", 7),
                                          local("b"), entryFor("a/below-a-file", 7)};
    std::vector<std::string> paths;
    for (const RecoveryVaultEntry& entry : archive(files)) paths.push_back(entry.relativePath.bytes());
    EXPECT_THAT(paths, ElementsAre("a", "b"));
    EXPECT_THAT(filesIn(directory), SizeIs(2));
}

TEST_F(RecoveryVaultArchive, SkipsEverythingWhenTheWorktreeIsGone) {
    const IgnoredEntry file = local("a");
    fs::remove_all(worktree.path.bytes());
    EXPECT_THAT(archive({file}), IsEmpty());
    EXPECT_THAT(entriesAgain(), IsEmpty());
}

TEST_F(RecoveryVaultArchive, AcceptsAFileOfExactlyTheMaximum) {
    EXPECT_THAT(archive({local("a", std::string(maximum, 'x'))}), SizeIs(1));
    EXPECT_EQ(fs::file_size(directory.appending("a").bytes()), std::uintmax_t(maximum));
}

TEST_F(RecoveryVaultArchive, RefusesAFileAboveTheMaximum) {
    const ScopedEnvironment locale("LC_ALL", "en_US.UTF-8");
    IgnoredEntry large = local("large.key");
    large.sizeBytes = 1'500'000;
    EXPECT_EQ(failureOfArchiving({large}), vaultFailure("large.key is 1.5 MB; review it manually."));
    EXPECT_THAT(entriesAgain(), IsEmpty());
}

TEST_F(RecoveryVaultArchive, RefusesByTheReviewedSizeAlone) {
    IgnoredEntry grown = local("grown", std::string(2'000'000, 'x'));
    grown.sizeBytes = 10;
    EXPECT_EQ(archive({grown})[0].sizeBytes, 10) << "the size is not measured again";
    EXPECT_EQ(contentOf(directory.appending("grown")).size(), 2'000'000U) << "and the content is whole";
}

TEST_F(RecoveryVaultArchive, LeavesWhatItHasCopiedWhenItFailsPartWay) {
    IgnoredEntry large = local("large");
    large.sizeBytes = maximum + 1;
    (void)failureOfArchiving({local("a", "A"), large, local("b", "B")});
    EXPECT_THAT(filesIn(root), ElementsAre(Pair(receiptID.text() + "/a", "A")));
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_FALSE(fs::exists(index.bytes()));
    EXPECT_EQ(contentOf(inWorktree("b")), "B");
}

TEST_F(RecoveryVaultArchive, NeedsMoreThanTwiceTheSpace) {
    volume.answer.availableCapacityForImportantUsage = 1000;
    EXPECT_EQ(failureOfArchiving({entryFor("a", 200), entryFor("b", 300)}),
              CairnfieldError(CairnfieldError::InsufficientTemporaryStorage{1000, 1000}));
    EXPECT_FALSE(fs::exists(support.directory().bytes())) << "asked before anything is made";
    volume.answer.availableCapacityForImportantUsage = 1001;
    EXPECT_NO_THROW(archive({entryFor("a", 200), entryFor("b", 300)}));
}

TEST_F(RecoveryVaultArchive, AsksForPlainSpaceWhereTheSystemKnowsNoOther) {
    volume.answer.availableCapacity = 1000;
    EXPECT_EQ(failureOfArchiving({entryFor("a", 500)}),
              CairnfieldError(CairnfieldError::InsufficientTemporaryStorage{1000, 1000}));
}

TEST_F(RecoveryVaultArchive, PassesWhereTheSpaceIsNotKnown) {
    volume.answer = {};
    EXPECT_THAT(archive({local("a")}), SizeIs(1));
    volume.answer.availableCapacityForImportantUsage = 0;
    EXPECT_THAT(archive({local("b")}), SizeIs(1));
    for (FilePath place = support.directory(); place != FilePath("/"); place = place.parent())
        volume.missing.insert(place);
    volume.missing.insert(FilePath("/"));
    EXPECT_THAT(archive({local("c")}), SizeIs(1));
}

TEST_F(RecoveryVaultArchive, AsksAboutTheFolderThatIsThere) {
    volume.missing.insert(support.directory());
    volume.answer.availableCapacity = 1;
    EXPECT_EQ(failureOfArchiving({entryFor("a", 500)}),
              CairnfieldError(CairnfieldError::InsufficientTemporaryStorage{1000, 1}));
    EXPECT_EQ(volume.asked.back(), support.directory().parent());
}

TEST_F(RecoveryVaultArchive, RefusesSizesThatNoNumberHolds) {
    const std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(failureOfArchiving({entryFor("a", most), entryFor("b", most)}),
              CairnfieldError(CairnfieldError::InsufficientTemporaryStorage{most, 1'000'000'000}));
}

TEST_F(RecoveryVaultArchive, ExpiresAfterDaysOfTheCalendar) {
    const ScopedEnvironment zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
    clock.set(*dateFromISO8601("2026-03-01T12:00:00Z"));
    EXPECT_EQ(archive({local("a")}, 1)[0].expiresAt, dateFromISO8601("2026-03-02T12:00:00Z"));
    EXPECT_EQ(archive({local("a")}, 90)[0].expiresAt, dateFromISO8601("2026-05-30T11:00:00Z"));
}

TEST_F(RecoveryVaultArchive, NeverExpiresWithoutADayToKeepIt) {
    for (const std::int64_t days :
         {std::int64_t(0), std::int64_t(-1), std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max()})
        EXPECT_EQ(archive({local("a")}, days)[0].expiresAt, std::nullopt) << days;
}

TEST_F(RecoveryVaultArchive, ReplacesWhatIsInTheWay) {
    (void)archive({local("a", "old")});
    EXPECT_THAT(archive({local("a", "new")}), SizeIs(1));
    EXPECT_EQ(contentOf(directory.appending("a")), "new");
    EXPECT_THAT(archive({local("b", "once"), local("b", "twice")}), SizeIs(2));
    EXPECT_EQ(contentOf(directory.appending("b")), "twice");
    fs::create_directories(directory.appending("c/folder").bytes());
    EXPECT_THAT(archive({local("c", "a file")}), SizeIs(1));
    EXPECT_EQ(contentOf(directory.appending("c")), "a file");
}

TEST_F(RecoveryVaultArchive, KeepsEverythingForTheUserAlone) {
    const IgnoredEntry open = local("conf/keys/open.pem");
    fs::permissions(inWorktree("conf/keys/open.pem").bytes(), fs::perms(0666));
    (void)archive({open});
    for (const FilePath& folder : {support.directory(), root, directory, directory.appending("conf"),
                                   directory.appending("conf/keys")})
        EXPECT_EQ(modeOf(folder), 0700U) << folder.bytes();
    EXPECT_EQ(modeOf(directory.appending("conf/keys/open.pem")), 0600U);
    EXPECT_EQ(modeOf(index), 0600U);
}

TEST_F(RecoveryVaultArchive, ClosesAVaultThatStoodOpen) {
    fs::create_directories(root.bytes());
    fs::permissions(root.bytes(), fs::perms(0755));
    (void)archive({local("a")});
    EXPECT_EQ(modeOf(root), 0700U);
}

TEST_F(RecoveryVaultArchive, CarriesNamesOfAnyBytes) {
    const std::string name = "caf\xE9\n \"'$(x)";
    const std::string longName(255, 'n');
    const std::vector<RecoveryVaultEntry> added = archive({local(name, "1"), local(longName, "2")});
    ASSERT_THAT(added, SizeIs(2));
    EXPECT_EQ(contentOf(added[0].storedPath), "1");
    EXPECT_EQ(contentOf(added[1].storedPath), "2");
    EXPECT_EQ(entriesAgain(), added);
}

TEST_F(RecoveryVaultArchive, CopiesContentsOfEverySize) {
    std::vector<IgnoredEntry> files;
    std::map<std::string, std::string> expected;
    for (const std::size_t size : {0U, 1U, 4096U, 65'535U, 65'536U, 65'537U, 131'072U, 900'000U}) {
        std::string content(size, '\0');
        for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<char>(i * 7 + i / 251);
        files.push_back(local("f" + std::to_string(size), content));
        expected["f" + std::to_string(size)] = content;
    }
    EXPECT_THAT(archive(files), SizeIs(files.size()));
    EXPECT_EQ(filesIn(directory), expected);
}

TEST_F(RecoveryVaultArchive, KeepsTheTimeOfTheLastChange) {
    const IgnoredEntry file = local("a");
    const fs::file_time_type time = fs::last_write_time(inWorktree("a").bytes()) - std::chrono::hours(1000);
    fs::last_write_time(inWorktree("a").bytes(), time);
    (void)archive({file});
    EXPECT_EQ(fs::last_write_time(directory.appending("a").bytes()), time);
}

TEST_F(RecoveryVaultArchive, PassesOnAFailureOfTheIndexUnchanged) {
    (void)archive({local("a")});
    fs::remove(index.bytes());
    fs::create_directory(index.bytes());
    EXPECT_THROW(archive({local("b")}), std::system_error);
    EXPECT_THAT(entries(), SizeIs(1));
    EXPECT_TRUE(fs::exists(directory.appending("b").bytes())) << "the copy stays, without an entry";
}

TEST_F(RecoveryVaultArchive, WritesTheIndexInItsForm) {
    (void)archive({local("a")}, 0);
    const Json json = Json::parse(contentOf(index));
    ASSERT_THAT(json, SizeIs(1));
    EXPECT_EQ(json[0]["receiptID"], receiptID.text());
    EXPECT_EQ(json[0]["archivedAt"], "2025-06-15T15:06:40Z");
    EXPECT_FALSE(json[0].contains("expiresAt"));
}

class RecoveryVaultHoles : public RecoveryVaultArchive {
protected:
    /// Content, a hole, content, and another hole to the end.
    IgnoredEntry withHoles(const std::string& name, off_t length) const {
        const FilePath file = home.write("worktree/" + name, "begin");
        const FileDescriptor open(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
        EXPECT_EQ(pwrite(open.get(), "middle", 6, length / 2), 6);
        EXPECT_EQ(ftruncate(open.get(), length), 0);
        return entryFor(name, 8192);
    }
    static bool hasHoles(const FilePath& file) {
        struct stat status{};
        EXPECT_EQ(stat(file.c_str(), &status), 0);
        return status.st_blocks * 512 < status.st_size;
    }
};

TEST_F(RecoveryVaultHoles, StayHolesInTheCopy) {
    const IgnoredEntry file = withHoles("disk.key", 900'000);
    if (!hasHoles(inWorktree("disk.key"))) GTEST_SKIP() << "no holes on this disk";
    const RecoveryVaultEntry entry = archive({file})[0];
    EXPECT_EQ(entry.sizeBytes, 8192) << "as reviewed";
    EXPECT_EQ(contentOf(entry.storedPath), contentOf(inWorktree("disk.key")));
    EXPECT_TRUE(hasHoles(entry.storedPath));
    wait(vault.restore(entry, home / "restored"));
    EXPECT_EQ(contentOf(home / "restored"), contentOf(inWorktree("disk.key")));
    EXPECT_TRUE(hasHoles(home / "restored"));
}

TEST_F(RecoveryVaultHoles, CountAsContentAgainstTheLimit) {
    const ScopedEnvironment locale("LC_ALL", "en_US.UTF-8");
    const IgnoredEntry file = withHoles("disk.key", 1'500'000);
    if (!hasHoles(inWorktree("disk.key"))) GTEST_SKIP() << "no holes on this disk";
    EXPECT_EQ(failureOfArchiving({file}), vaultFailure("disk.key is 1.5 MB; review it manually."));
    EXPECT_THAT(entriesAgain(), IsEmpty());
}

TEST_F(RecoveryVaultHoles, CountAsContentAgainstTheSpace) {
    const IgnoredEntry file = withHoles("disk.key", 900'000);
    if (!hasHoles(inWorktree("disk.key"))) GTEST_SKIP() << "no holes on this disk";
    volume.answer.availableCapacity = 1'800'000;
    EXPECT_EQ(failureOfArchiving({file}),
              CairnfieldError(CairnfieldError::InsufficientTemporaryStorage{1'800'000, 1'800'000}));
    volume.answer.availableCapacity = 1'800'001;
    EXPECT_THAT(archive({file}), SizeIs(1));
}

}  // namespace
}  // namespace cairnfield
