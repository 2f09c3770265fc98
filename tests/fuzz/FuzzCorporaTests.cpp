// The kept corpora, run through the fuzz targets: what the fuzzers once found stays found.

#include "fuzz/Fuzzing.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <set>
#include <string>

namespace cairnfield {
namespace {

/// The first bytes of the inputs, each of which was for one of the targets.
std::set<char> replay(const std::string& program, FuzzAnswer (*run)(std::string_view)) {
    std::set<char> letters;
    for (const auto& file : std::filesystem::directory_iterator(FUZZ_CORPORA "/" + program)) {
        const std::string input = contentOf(FilePath(file.path().native()));
        try {
            EXPECT_EQ(run(input), FuzzAnswer::ran) << file.path();
        } catch (const std::exception& failure) {
            ADD_FAILURE() << file.path() << ": " << failure.what();
        }
        if (!input.empty()) letters.insert(input.front());
    }
    return letters;
}

std::set<char> each(std::string_view letters) {
    return {letters.begin(), letters.end()};
}

TEST(FuzzCorpora, HoldForEveryParser) {
    EXPECT_EQ(replay("fuzz_parsers", fuzzParsers), each(parserLetters()));
}

TEST(FuzzCorpora, HoldForEveryStore) {
    EXPECT_EQ(replay("fuzz_stores", fuzzStores), each(storeLetters()));
}

TEST(FuzzCorpora, HoldForPullRequests) {
    EXPECT_FALSE(replay("fuzz_pull_requests", fuzzPullRequests).empty());
}

TEST(FuzzCorpora, TellInputsThatAreForNoTarget) {
    EXPECT_EQ(fuzzParsers(""), FuzzAnswer::notForUs);
    EXPECT_EQ(fuzzStores("~"), FuzzAnswer::notForUs);
}

TEST(FuzzCorpora, TellAPromiseThatIsBroken) {
    EXPECT_THROW(promise(false, "this cannot hold"), BrokenPromise);
    EXPECT_NO_THROW(promise(true, "this can"));
}

}  // namespace
}  // namespace cairnfield
