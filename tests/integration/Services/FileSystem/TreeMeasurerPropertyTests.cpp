// Random trees against GNU du and find, and trees of awkward shapes.

#include "RealTree.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace cairnfield {
namespace {

using Threads = LinuxTreeMeasurer::Threads;

/// Grows a tree by seed: files with and without holes, hard links, links, empty and locked directories, long
/// and broken names.
class RandomTree {
public:
    RandomTree(const FilePath& root, unsigned seed) : random_(seed) { fill(root.bytes(), 0); }

private:
    int upTo(int limit) { return std::uniform_int_distribution(0, limit)(random_); }

    std::string name(int i) {
        switch (upTo(12)) {
            case 0:
                return std::string(static_cast<std::size_t>(200 + upTo(45)), 'n') + std::to_string(i);
            case 1:
                return "\xff\xfe" + std::to_string(i);
            case 2:
                return "a\nb " + std::to_string(i);
            case 3:
                return "-" + std::to_string(i);
            default:
                return "e" + std::to_string(i);
        }
    }

    void makeFile(const std::string& path) {
        std::ofstream file(path, std::ios::binary);
        if (upTo(4) == 0) file.seekp(upTo(1 << 24));
        file << std::string(static_cast<std::size_t>(upTo(1) == 0 ? upTo(100) : upTo(40000)), 'x');
        file.close();
        files_.push_back(path);
    }

    void fill(const std::string& folder, int depth) {
        const int entries = upTo(3) == 0 ? upTo(120) : upTo(14);
        for (int i = 0; i < entries && budget_ > 0; ++i, --budget_) {
            const std::string path = folder + "/" + name(i);
            std::error_code ignored;
            switch (upTo(9)) {
                case 0:
                    std::filesystem::create_symlink(std::string(static_cast<std::size_t>(1 + upTo(300)), 't'),
                                                    path, ignored);
                    break;
                case 1:
                    if (!files_.empty())
                        std::filesystem::create_hard_link(
                            files_[static_cast<std::size_t>(upTo(static_cast<int>(files_.size()) - 1))], path,
                            ignored);
                    break;
                case 2:
                case 3:
                case 4:
                    if (depth < 7 && std::filesystem::create_directory(path, ignored)) {
                        fill(path, depth + 1);
                        if (upTo(20) == 0) std::filesystem::permissions(path, std::filesystem::perms::none);
                    }
                    break;
                default:
                    makeFile(path);
            }
        }
    }

    std::mt19937 random_;
    std::vector<std::string> files_;
    int budget_ = 1000;  ///< entries still to be made
};

TEST(TreeMeasurerProperty, RandomTreesWeighWhatDuAndFindSay) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        const TemporaryDirectory home;
        const RandomTree tree(home.path(), seed);
        std::filesystem::permissions(home.path().bytes(), std::filesystem::perms(0755));
        const OracleTotals expected = oracleTotals(home.path());
        const DirectoryScanResult one = Measuring(Threads::one)(home.path());
        DirectoryScanResult two = Measuring(Threads::two)(home.path());
        EXPECT_EQ(totalsOf(one), expected) << "seed " << seed;
        two.duration = one.duration;
        two.scannedAt = one.scannedAt;
        EXPECT_EQ(two, one) << "seed " << seed;
    }
}

TEST(TreeMeasurerProperty, RandomTreesWithLockedDirectoriesToo) {
    for (unsigned seed = 101; seed <= 110; ++seed) {
        const TemporaryDirectory home;
        const RandomTree tree(home.path(), seed);
        std::filesystem::permissions(home.path().bytes(), std::filesystem::perms(0755));
        const std::string answer = asUnprivilegedUser([&home] {
            const DirectoryScanResult result = Measuring()(home.path());
            const OracleTotals expected = oracleTotals(home.path());
            if (totalsOf(result) == expected) return std::to_string(result.permissionErrorPaths.size());
            return "differs: " + testing::PrintToString(totalsOf(result)) + " for " +
                   testing::PrintToString(expected);
        });
        const std::string locked = outputOf(R"(find "$1" -type d -perm 000 -printf x | wc -c)", home.path());
        if (locked == "0\n") EXPECT_EQ(answer, "0") << "seed " << seed;
        EXPECT_EQ(answer.find("differs"), std::string::npos) << "seed " << seed << " " << answer;
    }
}

/// Deeper than the paths that a temporary directory can remove by itself.
void removeAllIn(const FilePath& folder) {
    EXPECT_EQ(outputOf(R"(chmod -R u+rwx "$1" && rm -rf -- "$1"/* && echo gone)", folder), "gone\n");
}

/// So many levels, each with a sibling that is entered only after everything below: every level is
/// come back to.
void makeDeepTree(const FilePath& root, int levels, const std::string& sibling) {
    OpenFolder folder(root);
    for (int level = 0; level < levels; ++level) {
        if (!sibling.empty()) folder.makeFolder(sibling).write("file", 5000);
        folder = folder.makeFolder("level");
    }
    folder.write("bottom", 4097);
}

TEST(TreeMeasurerProperty, FifteenHundredLevelsOfDirectoriesAreWalkedToTheBottom) {
    for (const char* sibling : {"", "a", "z"}) {
        const TemporaryDirectory home;
        makeDeepTree(home.path(), 1500, sibling);
        const DirectoryScanResult result = Measuring()(home.path());
        EXPECT_EQ(totalsOf(result), oracleTotals(home.path()));
        EXPECT_TRUE(result.permissionErrorPaths.empty());
        removeAllIn(home.path());
    }
}

/// Takes all descriptors that the child may have but so many.
void leaveDescriptors(std::size_t count) {
    const rlimit limit{256, 256};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<int> taken;
    for (int descriptor = dup(STDIN_FILENO); descriptor >= 0; descriptor = dup(STDIN_FILENO))
        taken.push_back(descriptor);
    ASSERT_GE(taken.size(), count);
    for (; count > 0; --count, taken.pop_back()) close(taken.back());
}

TEST(TreeMeasurerDescriptors, FewOfThemMakeTheWalkNeitherWrongNorAShorterOne) {
    const TemporaryDirectory home;
    makeDeepTree(home.path(), 300, "a");
    const RandomTree wide(home.makeDirectory("wide"), 77);
    const DirectoryScanResult free = Measuring()(home.path());
    const auto words = [](const DirectoryScanResult& result) {
        return testing::PrintToString(totalsOf(result)) + ", " +
               std::to_string(result.permissionErrorPaths.size()) + " refused";
    };
    ASSERT_EQ(totalsOf(free), oracleTotals(home.path()));
    for (const std::size_t count : {6U, 8U, 12U, 40U}) {
        const std::string answer = inChild([&] {
            leaveDescriptors(count);
            return words(Measuring()(home.path()));
        });
        EXPECT_EQ(answer, words(free)) << count << " descriptors";
    }
    removeAllIn(home.path());
}

/// Three are the least: the root, a parent and its child.
TEST(TreeMeasurerDescriptors, TooFewAreASystemFailureAndNeverAPermissionError) {
    const TemporaryDirectory home;
    home.write("a/b/c/file");
    for (const std::size_t count : {0U, 1U, 2U, 3U}) {
        const std::string answer = inChild([&]() -> std::string {
            leaveDescriptors(count);
            try {
                const DirectoryScanResult result = Measuring()(home.path());
                return result.permissionErrorPaths.empty() && result.fileCount == 1 ? "exact" : "wrong";
            } catch (const std::system_error& error) {
                return error.code().value() == EMFILE ? "no descriptors" : error.what();
            }
        });
        EXPECT_EQ(answer, count < 3 ? "no descriptors" : "exact") << count << " descriptors";
    }
}

}  // namespace
}  // namespace cairnfield
