#include "Features/History/HistoryViewModel.h"

#include "Features/History/ReceiptTexts.h"
#include "Features/ItemLists/RecordOfRow.h"
#include "Features/Presentation/QtText.h"
#include "Features/Presentation/Tints.h"
#include "Persistence/StoredFileNames.h"

#include <QPointer>

#include <utility>

namespace cairnfield {

namespace {

HistoryListItem itemOf(const CleanupReceipt& receipt) {
    const ReceiptRowText text = receiptRowText(receipt);
    HistoryListItem item;
    item.outcome = shown(text.outcome);
    item.symbolName = shown(symbolName(receipt.outcome));
    item.tint = shown(tintName(receipt.outcome));
    item.repository = shown(text.repository);
    item.date = shown(text.date);
    return item;
}

ReceiptDetail detailOf(const CleanupReceipt& receipt) {
    ReceiptDetail detail;
    detail.isPresent = true;
    detail.head = itemOf(receipt);
    detail.rows = shownRows(receiptValueTexts(receipt));
    detail.failure = shown(receiptFailureText(receipt));
    detail.hasVaultFiles = !receipt.recoveryVaultPaths.empty();
    return detail;
}

}  // namespace

HistoryViewModel::HistoryViewModel(AppModel& model, Workspace& workspace, Pasteboard& pasteboard,
                                   QObject* parent)
    : QObject(parent), model_(model), workspace_(workspace), pasteboard_(pasteboard) {
    updateTimer_.setSingleShot(true);
    updateTimer_.setInterval(0);
    connect(&updateTimer_, &QTimer::timeout, this, &HistoryViewModel::flush);
    connect(&selection_, &RowSelection::changed, this, [this] {
        say({});
        updateDetail();
    });
    const auto observer = [this] { updateTimer_.start(); };
    subscriptions_.push_back(model_.state().receipts.observe(observer));
    subscriptions_.push_back(model_.state().storedFileNotices.observe(observer));
    flush();
}

void HistoryViewModel::flush() {
    updateTimer_.stop();
    std::vector<ListItem> items;
    for (const CleanupReceipt& receipt : model_.state().receipts.get())
        items.push_back({receipt.id, receipt.repositoryName, QVariant::fromValue(itemOf(receipt))});
    rows_.show(std::move(items));
    selection_.rowsChanged();
    updateDetail();
    emit screenChanged();
}

QString HistoryViewModel::fileNotice() const {
    return shown(model_.state().storedFileNotice(StoredFileNames::cleanupReceipts));
}

const CleanupReceipt* HistoryViewModel::selected() const {
    return recordOfRow(rows_, selection_.row(), model_.state().receipts.get());
}

void HistoryViewModel::updateDetail() {
    const CleanupReceipt* receipt = selected();
    ReceiptDetail detail = receipt ? detailOf(*receipt) : ReceiptDetail();
    if (detail == detail_) return;
    detail_ = std::move(detail);
    emit detailChanged();
}

void HistoryViewModel::say(QString notice) {
    if (notice == notice_) return;
    notice_ = std::move(notice);
    emit screenChanged();
}

void HistoryViewModel::copySummary() {
    if (const CleanupReceipt* receipt = selected()) pasteboard_.clearAndWrite(receipt->recoverySummary());
}

void HistoryViewModel::revealVaultFiles() {
    const CleanupReceipt* receipt = selected();
    if (!receipt || receipt->recoveryVaultPaths.empty()) return;
    say({});
    workspace_.revealAll(receipt->recoveryVaultPaths,
                         [self = QPointer(this)](const std::optional<std::string>& problem) {
                             if (self) self->say(shown(problem.value_or("")));
                         });
}

}  // namespace cairnfield
