#pragma once
// Every target by name; each file of this folder defines a few.

#include <string_view>

namespace cairnfield {

// GitTargets.cpp
void fuzzWorktreeList(std::string_view input);
void fuzzStatus(std::string_view input);
void fuzzSubmodules(std::string_view input);
void fuzzRemoteURL(std::string_view input);
void fuzzIgnoredPaths(std::string_view input);
void fuzzStagedPaths(std::string_view input);

// IndexTargets.cpp
void fuzzIndexOfSHA1(std::string_view input);
void fuzzIndexOfSHA256(std::string_view input);
void fuzzSplitIndex(std::string_view input);
void fuzzByteCursor(std::string_view input);
void fuzzHeadOnDisk(std::string_view input);

// HostingTargets.cpp
void fuzzAuthenticatedHosts(std::string_view input);
void fuzzDefaultBranch(std::string_view input);
void fuzzLines(std::string_view input);
void fuzzBranchName(std::string_view input);

// SystemTargets.cpp
void fuzzMountTable(std::string_view input);
void fuzzDesktopEntry(std::string_view input);
void fuzzEnvironment(std::string_view input);

// ValueTargets.cpp
void fuzzPath(std::string_view input);
void fuzzFileURI(std::string_view input);
void fuzzDate(std::string_view input);
void fuzzText(std::string_view input);
void fuzzBase64(std::string_view input);
void fuzzUUID(std::string_view input);

// RecordTargets.cpp: the JSON of each file, decoded as its store decodes it
void fuzzHistoryJSON(std::string_view input);
void fuzzFoldersJSON(std::string_view input);
void fuzzReceiptsJSON(std::string_view input);
void fuzzVaultJSON(std::string_view input);
void fuzzPullRequestJSON(std::string_view input);

// StoreTargets.cpp: the stores themselves, over a file with the input as its content
void fuzzHistoryStore(std::string_view input);
void fuzzFolderStore(std::string_view input);
void fuzzReceiptStore(std::string_view input);
void fuzzVault(std::string_view input);
void fuzzSettings(std::string_view input);

}  // namespace cairnfield
