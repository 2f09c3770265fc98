#pragma once
// A vault in a home of the test's own, a worktree with local files beside it, and a disk whose free space the
// test sets.

#include "Persistence/ApplicationSupport.h"
#include "Services/Cleanup/RecoveryVaultService.h"
#include "Shared/Concurrency/RunLoop.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/Failures.h"
#include "support/SettableVolume.h"
#include "support/SettableWallClock.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {

/// Everything runs on the test's own thread, so that a test may fork.
class RecoveryVault : public testing::Test {
protected:
    static constexpr std::int64_t maximum = 1'000'000;
    static constexpr Date start{std::chrono::seconds(1'750'000'000)};

    RecoveryVault() {
        std::filesystem::permissions(home.path().bytes(), std::filesystem::perms(0755));
        worktree.path = home.makeDirectory("worktree");
        worktree.repositoryName = "project";
        volume.answer.availableCapacity = 1'000'000'000;
    }

    /// A file of the worktree as a review would list it.
    IgnoredEntry local(const std::string& relative, const std::string& content = "secret\n") const {
        home.write("worktree/" + relative, content);
        return entryFor(relative, std::int64_t(content.size()));
    }
    static IgnoredEntry entryFor(const std::string& relative, std::int64_t size) {
        IgnoredEntry entry;
        entry.name = relative;
        entry.relativePath = relative;
        entry.sizeBytes = size;
        entry.modifiedAt = start;
        entry.classification = IgnoredEntryClass::sensitive;
        return entry;
    }
    FilePath inWorktree(const std::string& relative) const { return worktree.path.appending(relative); }

    template <class T>
    T wait(Task<T> task) {
        return waitFor(loop, std::move(task));
    }
    std::vector<RecoveryVaultEntry> archive(std::vector<IgnoredEntry> files, std::int64_t days = 90) {
        return wait(vault.archive(std::move(files), worktree, "project", receiptID, days));
    }
    std::vector<RecoveryVaultEntry> entries() { return wait(vault.entries()); }
    /// As the program would see them after a restart.
    std::vector<RecoveryVaultEntry> entriesAgain() {
        RecoveryVaultService next(loop, support, volume, clock, maximum);
        return wait(next.entries());
    }
    template <class T>
    CairnfieldError failureOf(Task<T> task) {
        return cairnfield::failureOf([&] { (void)wait(std::move(task)); });
    }
    CairnfieldError failureOfArchiving(std::vector<IgnoredEntry> files) {
        return failureOf(vault.archive(std::move(files), worktree, "project", receiptID, 90));
    }
    static CairnfieldError vaultFailure(const std::string& message) {
        return CairnfieldError(CairnfieldError::RecoveryVaultFailure{message});
    }

    /// The files below a folder and their content.
    static std::map<std::string, std::string> filesIn(const FilePath& folder) {
        namespace fs = std::filesystem;
        std::map<std::string, std::string> files;
        if (!fs::exists(folder.bytes())) return files;
        for (const auto& item : fs::recursive_directory_iterator(folder.bytes())) {
            if (item.is_directory() && !item.is_symlink()) continue;
            const std::string name = fs::relative(item.path(), folder.bytes()).native();
            files[name] = item.is_regular_file() && !item.is_symlink()
                              ? contentOf(FilePath(item.path().native()))
                              : "not a file";
        }
        return files;
    }
    static unsigned modeOf(const FilePath& path) {
        struct stat status{};
        EXPECT_EQ(lstat(path.c_str(), &status), 0) << path.bytes();
        return status.st_mode & 07777U;
    }

    TemporaryDirectory home;
    RunLoop loop;
    SettableVolume volume;
    SettableWallClock clock{start};
    Worktree worktree;
    const UUID receiptID = UUID::make();
    const ApplicationSupport support{home.path().appending("data"), home.path().appending("config")};
    const FilePath index = support.directory().appending("recovery-vault.json");
    const FilePath root = support.recoveryVaultDirectory();
    const FilePath directory = root.appending(receiptID.text());
    RecoveryVaultService vault{loop, support, volume, clock, maximum};
};

}  // namespace cairnfield
