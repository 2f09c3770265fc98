#include "Services/Cleanup/SensitiveNames.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

bool counts(const std::string& path, const std::vector<std::string>& ignored = {}) {
    return SensitiveNames(ignored).counts(path);
}

TEST(SensitiveNames, CountBelowTheTopAlone) {
    EXPECT_TRUE(counts("src/api/.env", {"src/api/.env"}));
    EXPECT_TRUE(counts("certs/Server.PEM", {"certs/"}));
    EXPECT_FALSE(counts(".env", {".env"})) << "the review lists the top by itself";
    EXPECT_FALSE(counts("src/api/notes.txt", {"src/api/notes.txt"}));
    EXPECT_FALSE(counts(""));
}

TEST(SensitiveNames, CountEverythingInAFolderThatLooksSensitiveItself) {
    EXPECT_TRUE(counts("secrets/a/b.txt", {"secrets/"}));
    EXPECT_TRUE(counts("secrets/node_modules/x.js", {"secrets/"})) << "it is in there for a reason";
    EXPECT_TRUE(counts("scratch/credentials/note.txt", {"scratch/"}));
    EXPECT_TRUE(counts("infra/secrets/a.txt", {"infra/secrets/a.txt"})) << "the folder holds tracked files";
}

TEST(SensitiveNames, LeaveOutWhatCanBeBuiltAgain) {
    EXPECT_FALSE(counts("node_modules/pkg/.npmrc", {"node_modules/"}));
    EXPECT_FALSE(counts("packages/a/node_modules/secrets/x.pem", {"packages/a/node_modules/"}));
    EXPECT_FALSE(counts("scratch/node_modules/x/test.key", {"scratch/"}));
    EXPECT_FALSE(counts("secrets_manager/__pycache__/x.pyc", {"secrets_manager/__pycache__/"}));
}

TEST(SensitiveNames, CountAnIgnoredFileAmongTheTrackedOnesOfAFolderThatIsOnlyNamedLikeOutput) {
    EXPECT_TRUE(counts("build/.env", {"build/.env"}));
    EXPECT_FALSE(counts("build/cache.bin", {"build/cache.bin"}));
    EXPECT_TRUE(counts("build/secrets/x", {"build/secrets/"}));
}

TEST(SensitiveNames, JudgeWhatGitHasNotListedAsIfOutputWereIgnored) {
    const std::vector<std::string> ignored{"src/api/.env", "logs/"};
    EXPECT_TRUE(counts("src/web/.env", ignored));
    EXPECT_TRUE(counts("logs/today/dump.key", ignored));
    EXPECT_TRUE(counts("secrets/new.txt", ignored));
    EXPECT_FALSE(counts("packages/b/node_modules/credential-helper/index.js", ignored));
    EXPECT_FALSE(counts("build/.env", ignored));
    EXPECT_FALSE(counts("secrets_manager/__pycache__/x.pyc", ignored));
}

TEST(SensitiveNames, TakeTheUppermostListedFolder) {
    const std::vector<std::string> ignored{"a/", "a/b/"};
    EXPECT_TRUE(counts("a/b/c.key", ignored));
    EXPECT_FALSE(counts("a/out/b/c.key", ignored));
    EXPECT_FALSE(counts("ab/c.txt", ignored)) << "a name is not the beginning of another";
}

}  // namespace
}  // namespace cairnfield
