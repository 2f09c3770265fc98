#include "Persistence/CleanupReceiptStore.h"
#include "Persistence/SettingsStore.h"
#include "Persistence/StorageHistoryStore.h"
#include "Persistence/WatchedFolderStore.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Services/Cleanup/RecoveryVaultService.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Errors/CairnfieldError.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/Scratch.h"
#include "fuzz/Targets.h"
#include "support/SettableVolume.h"
#include "support/SettableWallClock.h"
#include "support/SteppedClock.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

namespace cairnfield {

namespace {

/// The program's folders with one stored file in them.
class FileInHome {
public:
    FileInHome(std::string_view name, std::string_view content) : name_(name), content_(content) {
        scratch_.write("Cairnfield/" + name_, content);
    }

    [[nodiscard]] const ApplicationSupport& support() const { return support_; }
    [[nodiscard]] FilePath file() const { return support_.directory().appending(name_); }
    [[nodiscard]] std::string content() const { return contentOf(file()); }
    [[nodiscard]] bool isUntouched() const { return content() == content_; }
    FilePath addBeside(std::string_view name) {
        scratch_.write("Cairnfield/" + std::string(name), "content");
        return support_.directory().appending(name);
    }
    template <class T>
    T wait(Task<T> task) {
        return waitFor(loop, std::move(task));
    }

    RunLoop loop;
    SettableWallClock clock;

private:
    const std::string name_;
    const std::string content_;
    const Scratch scratch_;
    const ApplicationSupport support_{scratch_.path(), scratch_.path()};
};

/// Whether a store of this value takes the file's content for one.
template <class Value>
bool decodes(std::string_view content) {
    try {
        (void)Json::parse(content).get<Value>();
        return true;
    } catch (const Json::exception&) {
        return false;
    }
}

bool isNewestFirst(const std::vector<CleanupReceipt>& receipts) {
    return std::ranges::is_sorted(receipts, std::ranges::greater(), &CleanupReceipt::date);
}

auto settingsOf(auto& store) {
    return std::tie(store.thresholdMode, store.warningPercentage, store.criticalPercentage,
                    store.warningAbsoluteBytes, store.criticalAbsoluteBytes, store.monitoringEnabled,
                    store.notificationsEnabled, store.launchAtLogin, store.rescanIntervalMinutes,
                    store.reconcileIntervalHours, store.remoteRefreshIntervalHours, store.growthAbsoluteBytes,
                    store.growthRelativeFraction, store.createDraftPullRequests,
                    store.preserveSmallLocalFiles, store.recoveryBranchPrefix,
                    store.recoveryVaultRetentionDays, store.recoveryVaultMaxFileBytes, store.gitPathOverride,
                    store.gitHubCLIPathOverride, store.hasCompletedOnboarding);
}

auto valuesOf(const SettingsStore& store) {
    return std::apply([](const auto&... setting) { return std::tuple(setting.get()...); }, settingsOf(store));
}

template <class T>
void setAgain(Setting<T>& setting) {
    setting.set(T(setting.get()));
}

}  // namespace

void fuzzHistoryStore(std::string_view input) {
    FileInHome stored("storage-history.json", input);
    constexpr std::size_t most = 3;
    StorageHistoryStore store(stored.loop, stored.support(), 30, std::chrono::seconds(60), most);
    const std::vector<StorageHistorySample> before = stored.wait(store.samples());
    promise(decodes<StorageHistoryFile>(input) || before.empty(), "a file that is none reads as empty");
    promise(stored.isUntouched(), "reading changes nothing");

    const StorageSnapshot now{FilePath("/"), "disk", 500, 200, stored.clock.now()};
    const std::vector<StorageHistorySample> after = stored.wait(store.record(now));
    promise(!after.empty() && after.size() <= most, "the list is bounded");
    promise(after.back() == StorageHistorySample::of(now), "the newest stands last");
    StorageHistoryStore next(stored.loop, stored.support());
    promise(stored.wait(next.samples()) == after, "what was written reads the same");
}

void fuzzFolderStore(std::string_view input) {
    FileInHome stored("watched-folders.json", input);
    WatchedFolderStore store(stored.loop, stored.support(), stored.clock);
    const WatchedFolderFile before = stored.wait(store.load());
    promise(decodes<WatchedFolderFile>(input) || before == WatchedFolderFile(),
            "a file that is none reads as empty");
    promise(stored.isUntouched(), "reading changes nothing");

    const FilePath path("/srv/f\xFFzz");
    const WatchedFolder added = stored.wait(store.add(path));
    promise(added.path == path, "a folder keeps its path");
    DirectoryScanResult result;
    result.totalBytes = 17;
    result.scannedAt = stored.clock.now();
    (void)stored.wait(store.recordScan(added.id, result, 24));
    stored.wait(store.setPinned(true, path));

    const WatchedFolderFile after = stored.wait(store.load());
    promise(std::ranges::find(after.pinnedWorktreePaths, path) != after.pinnedWorktreePaths.end(),
            "a pin stands");
    WatchedFolderStore next(stored.loop, stored.support(), stored.clock);
    promise(stored.wait(next.load()) == after, "what was written reads the same");
    stored.wait(next.remove(added.id));
    const std::vector<WatchedFolder> left = stored.wait(next.folders());
    promise(std::ranges::find(left, added.id, &WatchedFolder::id) == left.end(), "what was removed is gone");
}

void fuzzReceiptStore(std::string_view input) {
    FileInHome stored("cleanup-receipts.json", input);
    CleanupReceiptStore store(stored.loop, stored.support());
    const std::vector<CleanupReceipt> before = stored.wait(store.all());
    promise(decodes<std::vector<CleanupReceipt>>(input) || before.empty(),
            "a file that is none reads as empty");
    promise(isNewestFirst(before), "the newest receipt stands first");
    promise(stored.isUntouched(), "reading changes nothing");

    CleanupReceipt receipt = before.empty() ? CleanupReceipt() : before.front();
    receipt.repositoryName = "again";
    stored.wait(store.append(receipt));
    CleanupReceiptStore next(stored.loop, stored.support());
    const std::vector<CleanupReceipt> after = stored.wait(next.all());
    promise(after == stored.wait(store.all()), "what was written reads the same");
    promise(isNewestFirst(after), "the newest receipt stands first");
    promise(std::ranges::count(after, receipt.id, &CleanupReceipt::id) == 1, "one receipt an identity");
    promise(std::ranges::find(after, receipt) != after.end(), "the new receipt is there");
}

void fuzzVault(std::string_view input) {
    FileInHome stored("recovery-vault.json", input);
    const FilePath mine = stored.addBeside("mine");
    const SettableVolume volume;
    RecoveryVaultService vault(stored.loop, stored.support(), volume, stored.clock, 1000);
    const std::vector<RecoveryVaultEntry> before = stored.wait(vault.entries());
    promise(decodes<std::vector<RecoveryVaultEntry>>(input) || before.empty(),
            "a file that is none reads as empty");
    promise(stored.isUntouched(), "reading changes nothing");

    std::filesystem::create_directories(stored.support().recoveryVaultDirectory().bytes());
    for (RecoveryVaultEntry entry : before) {
        entry.storedPath = stored.support().recoveryVaultDirectory().appending(entry.storedPath.bytes());
        bool isRemoved = false;
        try {
            stored.wait(vault.remove(entry));
            isRemoved = true;
        } catch (const CairnfieldError&) {
        } catch (const std::system_error&) {
        }
        promise(std::filesystem::exists(stored.file().bytes()), "the index stays, whatever an entry names");
        promise(std::filesystem::exists(mine.bytes()), "what is not the vault's stays");
        const std::vector<RecoveryVaultEntry> left = stored.wait(vault.entries());
        promise((std::ranges::find(left, entry.id, &RecoveryVaultEntry::id) == left.end()) == isRemoved,
                "an entry goes with its copy");
    }
}

void fuzzSettings(std::string_view input) {
    FileInHome stored("settings.json", input);
    ThreadPool background(1);
    SteppedClock clock;
    FileUserDefaults defaults(stored.file(), background, clock);
    SettingsStore settings(defaults);
    promise(stored.isUntouched(), "reading changes nothing");

    const auto values = valuesOf(settings);
    std::apply([](auto&... setting) { (setAgain(setting), ...); }, settingsOf(settings));
    promise(valuesOf(settings) == values, "a value that is set again is the same");
    defaults.flushBlocking();
    FileUserDefaults defaultsAfter(stored.file(), background, clock);
    const SettingsStore after(defaultsAfter);
    promise(valuesOf(after) == values, "what was written reads the same");
    if (settings.thresholdMode.get() == ThresholdMode::percentage)
        return;  // a share may be beyond all numbers
    const StorageSnapshot now{FilePath("/"), "disk", 500'000'000'000, 200'000'000'000, stored.clock.now()};
    const StorageThresholds limits = settings.thresholds(now);
    promise(limits == limits.normalized(), "limits are in order");
    promise(limits == after.thresholds(now), "limits survive the file");
}

}  // namespace cairnfield
