#include "Services/Cleanup/RemovalRefusal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::HasSubstr;
using testing::Not;
using Kind = RemovalRefusal::Kind;

std::string asError(const RemovalRefusal& refusal) {
    return refusal.asError(FilePath("/w")).errorDescription();
}

TEST(RemovalRefusal, IsTheErrorThatFits) {
    EXPECT_EQ(asError({"Its HEAD moved."}), "The worktree at /w looks active. Its HEAD moved.");
    EXPECT_EQ(asError({"Its HEAD could not be read.", Kind::unreadable}),
              "The Git repository at /w could not be read. Its HEAD could not be read.");
    EXPECT_EQ(asError({"It is not there.", Kind::elsewhere}), "/w moved or was deleted since the last scan.");
    EXPECT_EQ(asError(RemovalRefusal::unfinished(GitOperationInProgress::cherryPick)),
              "A cherry-pick is in progress at /w.");
    EXPECT_EQ(asError({".env changed.", Kind::copies}),
              "The Recovery Vault could not store the files. .env changed.");
}

TEST(RemovalRefusal, NeverSaysThatGitRefused) {
    for (const Kind kind : {Kind::state, Kind::unreadable, Kind::elsewhere, Kind::operation, Kind::copies}) {
        const RemovalRefusal refusal("Why.", kind);
        EXPECT_THAT(asError(refusal), Not(HasSubstr("Git refused")));
        EXPECT_THAT(refusal.asSentence(), Not(HasSubstr("Git refused")));
    }
}

TEST(RemovalRefusal, IsASentenceOfItsOwnBeforeACleanup) {
    EXPECT_EQ(RemovalRefusal("It is full.").asSentence(), "The worktree cannot be removed. It is full.");
    EXPECT_EQ(RemovalRefusal::unfinished(GitOperationInProgress::merge).asSentence(),
              "A merge is in progress.");
}

}  // namespace
}  // namespace cairnfield
