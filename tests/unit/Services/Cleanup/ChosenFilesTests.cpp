#include "Services/Cleanup/ChosenFiles.h"
#include "support/TemporaryDirectory.h"
#include "unit/Services/Cleanup/IgnoredEntryAt.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

class ChosenFiles : public testing::Test {
protected:
    void choose(const std::string& path) { chosen.push_back(ignored(path, 1, IgnoredEntryClass::sensitive)); }
    void archive(const std::string& path) {
        RecoveryVaultEntry entry;
        entry.originalWorktreePath = worktree;
        entry.relativePath = FilePath(path);
        archived.push_back(entry);
    }
    void link(const std::string& path, const std::string& target) const {
        std::filesystem::create_symlink(target, worktree.appending(path).bytes());
    }
    /// The words that follow those of the error; empty when nothing is refused.
    std::string refusal() const {
        const std::optional<CairnfieldError> error = refusalForUnarchived(chosen, archived, worktree);
        if (!error) return {};
        const auto* failure = error->as<CairnfieldError::RecoveryVaultFailure>();
        return failure ? failure->message : "another case: " + error->errorDescription();
    }

    TemporaryDirectory home;
    FilePath worktree = home / "worktree";
    std::vector<IgnoredEntry> chosen;
    std::vector<RecoveryVaultEntry> archived;
};

TEST_F(ChosenFiles, AreInTheVaultOrAbsent) {
    home.write("worktree/.env", "SECRET=1\n");
    choose(".env");
    choose("gone.key");
    choose("gone/deeper.key");
    archive(".env");
    EXPECT_EQ(refusal(), "");
}

TEST_F(ChosenFiles, AreRefusedWhenTheyAreBack) {
    home.write("worktree/.env", "SECRET=1\n");
    home.write("worktree/deep/back.key", "secret\n");
    choose(".env");
    choose("deep/back.key");
    archive(".env");
    EXPECT_EQ(refusal(), "deep/back.key was not there when the others were copied.");
}

TEST_F(ChosenFiles, AreRefusedAsDirectoriesToo) {
    home.write("worktree/.env/inside", "SECRET=1\n");
    choose(".env");
    EXPECT_EQ(refusal(), ".env was not there when the others were copied.");
}

TEST_F(ChosenFiles, AreRefusedAsLinksToAFileInside) {
    home.write("worktree/settings", "SECRET=1\n");
    link(".env", "settings");
    choose(".env");
    EXPECT_EQ(refusal(), ".env was not there when the others were copied.");
}

TEST_F(ChosenFiles, NeedNoCopyAsLinksToWhatStays) {
    home.write("outside", "not of this worktree\n");
    home.write("worktree/folder/inside", "content\n");
    link("out.env", "../outside");
    link("nowhere.env", "nothing-there");
    link("folder.env", "folder");
    link("circle.env", "circle.env");
    for (const char* path : {"out.env", "nowhere.env", "folder.env", "circle.env"}) choose(path);
    EXPECT_EQ(refusal(), "");
}

TEST_F(ChosenFiles, AreNamedInVisibleText) {
    home.write("worktree/odd\n.env", "SECRET=1\n");
    choose("odd\n.env");
    EXPECT_EQ(refusal(), "odd\u240A.env was not there when the others were copied.");
}

}  // namespace
}  // namespace cairnfield
