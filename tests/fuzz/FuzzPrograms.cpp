#include "fuzz/Fuzzing.h"
#include "fuzz/Targets.h"

#include <array>
#include <string>

namespace cairnfield {

namespace {

constexpr std::array parsers{
    FuzzTarget{'w', fuzzWorktreeList},  FuzzTarget{'s', fuzzStatus},
    FuzzTarget{'m', fuzzSubmodules},    FuzzTarget{'r', fuzzRemoteURL},
    FuzzTarget{'i', fuzzIgnoredPaths},  FuzzTarget{'a', fuzzStagedPaths},
    FuzzTarget{'x', fuzzIndexOfSHA1},   FuzzTarget{'X', fuzzIndexOfSHA256},
    FuzzTarget{'S', fuzzSplitIndex},    FuzzTarget{'c', fuzzByteCursor},
    FuzzTarget{'H', fuzzHeadOnDisk},    FuzzTarget{'h', fuzzAuthenticatedHosts},
    FuzzTarget{'b', fuzzDefaultBranch}, FuzzTarget{'l', fuzzLines},
    FuzzTarget{'n', fuzzBranchName},    FuzzTarget{'t', fuzzMountTable},
    FuzzTarget{'e', fuzzDesktopEntry},  FuzzTarget{'v', fuzzEnvironment},
    FuzzTarget{'p', fuzzPath},          FuzzTarget{'f', fuzzFileURI},
    FuzzTarget{'d', fuzzDate},          FuzzTarget{'u', fuzzText},
    FuzzTarget{'6', fuzzBase64},        FuzzTarget{'U', fuzzUUID},
};

constexpr std::array stores{
    FuzzTarget{'h', fuzzHistoryJSON}, FuzzTarget{'H', fuzzHistoryStore}, FuzzTarget{'w', fuzzFoldersJSON},
    FuzzTarget{'W', fuzzFolderStore}, FuzzTarget{'r', fuzzReceiptsJSON}, FuzzTarget{'R', fuzzReceiptStore},
    FuzzTarget{'v', fuzzVaultJSON},   FuzzTarget{'V', fuzzVault},        FuzzTarget{'p', fuzzPullRequestJSON},
    FuzzTarget{'S', fuzzSettings},
};

template <std::size_t Count>
std::string lettersOf(const std::array<FuzzTarget, Count>& targets) {
    std::string letters;
    for (const FuzzTarget& target : targets) letters += target.letter;
    return letters;
}

}  // namespace

FuzzAnswer fuzzParsers(std::string_view input) {
    return runTarget(parsers, input);
}

FuzzAnswer fuzzStores(std::string_view input) {
    return runTarget(stores, input);
}

std::string_view parserLetters() {
    static const std::string letters = lettersOf(parsers);
    return letters;
}

std::string_view storeLetters() {
    static const std::string letters = lettersOf(stores);
    return letters;
}

}  // namespace cairnfield
