#pragma once
// The files that the program keeps, by their names: where a store finds its own, and what the notices about
// them go by.

namespace cairnfield::StoredFileNames {

inline constexpr const char* watchedFolders = "watched-folders.json";
inline constexpr const char* storageHistory = "storage-history.json";
inline constexpr const char* cleanupReceipts = "cleanup-receipts.json";
inline constexpr const char* recoveryVault = "recovery-vault.json";
inline constexpr const char* settings = "settings.json";

}  // namespace cairnfield::StoredFileNames
