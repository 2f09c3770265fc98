#include "Features/RecoveryVault/RecoveryVaultViewModel.h"

#include "Features/ItemLists/RecordOfRow.h"
#include "Features/Presentation/QtText.h"
#include "Features/RecoveryVault/VaultTexts.h"
#include "Persistence/StoredFileNames.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <QPointer>

#include <utility>

namespace cairnfield {

namespace {

VaultListItem itemOf(const RecoveryVaultEntry& entry, Date now) {
    const VaultRowText text = vaultRowText(entry, now);
    VaultListItem item;
    item.path = shown(text.path);
    item.size = shown(text.size);
    item.origin = shown(text.origin);
    item.expiry = shown(text.expiry);
    item.description = shown(text.description);
    return item;
}

// The vault never replaces anything, so that nothing is lost by a failure that nobody is told of.
Task<> restoreWithoutAWord(AppModel& model, RecoveryVaultEntry entry, FilePath destination) {
    const std::string place = destination.display();
    try {
        co_await model.restoreVaultEntry(std::move(entry), std::move(destination));
        Log::cleanup().info("A vault file was restored to {}", place);
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        Log::cleanup().error("Restoring a vault file to {} failed: {}", place, visibleText(describe(error)));
    }
}

// The screen may be gone by then.
Task<> removeAndSay(QPointer<RecoveryVaultViewModel> screen, AppModel& model, RecoveryVaultEntry entry) {
    const std::optional<std::string> note = co_await model.removeVaultEntry(std::move(entry));
    if (screen) screen->say(shown(note.value_or("")));
}

}  // namespace

RecoveryVaultViewModel::RecoveryVaultViewModel(AppModel& model, Workspace& workspace, SavePanel& savePanel,
                                               const WallClock& clock, QObject* parent)
    : QObject(parent), model_(model), workspace_(workspace), savePanel_(savePanel), clock_(clock) {
    updateTimer_.setSingleShot(true);
    updateTimer_.setInterval(0);
    connect(&updateTimer_, &QTimer::timeout, this, &RecoveryVaultViewModel::flush);
    const auto observer = [this] { updateTimer_.start(); };
    subscriptions_.push_back(model_.state().vaultEntries.observe(observer));
    subscriptions_.push_back(model_.state().storedFileNotices.observe(observer));
    flush();
}

void RecoveryVaultViewModel::flush() {
    updateTimer_.stop();
    const Date now = clock_.now();
    std::vector<ListItem> items;
    for (const RecoveryVaultEntry& entry : model_.state().vaultEntries.get())
        items.push_back({entry.id, entry.relativePath.bytes(), QVariant::fromValue(itemOf(entry, now))});
    rows_.show(std::move(items));
    selection_.rowsChanged();
    emit screenChanged();
}

QString RecoveryVaultViewModel::fileNotice() const {
    return shown(model_.state().storedFileNotice(StoredFileNames::recoveryVault));
}

const RecoveryVaultEntry* RecoveryVaultViewModel::entryAt(int row) const {
    return recordOfRow(rows_, row, model_.state().vaultEntries.get());
}

void RecoveryVaultViewModel::reveal(int row) {
    const RecoveryVaultEntry* entry = entryAt(row);
    if (!entry) return;
    workspace_.reveal(entry->storedPath, [self = QPointer(this)](const std::optional<std::string>& problem) {
        if (self) self->say(shown(problem.value_or("")));
    });
}

void RecoveryVaultViewModel::say(const QString& notice) {
    notice_ = notice;
    emit screenChanged();
}

void RecoveryVaultViewModel::restore(int row) {
    const RecoveryVaultEntry* entry = entryAt(row);
    if (!entry) return;
    savePanel_.show(entry->relativePath.lastComponent(),
                    [this, entry = *entry](const std::optional<FilePath>& destination) {
                        if (destination) model_.run(restoreWithoutAWord(model_, entry, *destination));
                    });
}

void RecoveryVaultViewModel::deletePermanently(int row) {
    const RecoveryVaultEntry* entry = entryAt(row);
    if (!entry) return;
    pendingDeletion_ = *entry;
    deletionQuestion_ = shown(vaultDeletionQuestion(*entry));
    emit pendingDeletionChanged();
}

void RecoveryVaultViewModel::confirmDeletion() {
    if (!pendingDeletion_) return;
    RecoveryVaultEntry entry = *std::exchange(pendingDeletion_, std::nullopt);
    model_.run(removeAndSay(this, model_, std::move(entry)));
    emit pendingDeletionChanged();
}

void RecoveryVaultViewModel::cancelDeletion() {
    if (!pendingDeletion_) return;
    pendingDeletion_.reset();
    emit pendingDeletionChanged();
}

void RecoveryVaultViewModel::refreshDates() {
    flush();
}

}  // namespace cairnfield
