#include "ui/screenshots/RecordScenes.h"

#include "ui/screenshots/SampleRecords.h"

#include <utility>

namespace cairnfield {

namespace {

constexpr QSize smallest{760, 520};

using Act = std::function<void(Stage&)>;

Act history(std::vector<CleanupReceipt> receipts, int row = -1) {
    return [receipts = std::move(receipts), row](Stage& stage) {
        stage.root.setSelection(SidebarSection::history);
        stage.state.receipts.set(receipts);
        stage.history.flush();
        stage.history.selection()->select(row);
    };
}

Act vault(Act then = [](Stage&) {}) {
    return [then = std::move(then)](Stage& stage) {
        stage.root.setSelection(SidebarSection::recovery);
        stage.state.vaultEntries.set(sampleVaultEntries());
        stage.recovery.flush();
        then(stage);
    };
}

}  // namespace

std::vector<Scene> recordScenes() {
    return {
        {"history-none", history({})},
        {"history-list", history(sampleReceipts())},
        {"history-success", history(sampleReceipts(), 1)},
        {"history-failure", history(sampleReceipts(), 0)},
        {"history-cancelled", history(sampleReceipts(), 3)},
        {"history-odd-names", history(oddReceipts(), 0)},
        {"history-spoof", history(oddReceipts(), 1)},
        {"history-smallest", history(sampleReceipts(), 0), smallest},
        {"recovery-none", [](Stage& stage) { stage.root.setSelection(SidebarSection::recovery); }},
        {"recovery-list", vault()},
        {"recovery-selected", vault([](Stage& stage) { stage.recovery.selection()->select(1); }), smallest},
        {"recovery-delete", vault([](Stage& stage) { stage.recovery.deletePermanently(1); })},
        {"recovery-delete-long", vault([](Stage& stage) { stage.recovery.deletePermanently(3); }), smallest},
        {"recovery-restore", vault([](Stage& stage) { stage.recovery.restore(1); })},
        {"recovery-restore-taken", vault([](Stage& stage) {
             stage.recovery.restore(0);
             stage.savePanel.save("etc", "/");
         }),
         smallest},
    };
}

}  // namespace cairnfield
