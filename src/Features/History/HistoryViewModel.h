#pragma once
// What the screen of past cleanups shows and does: reads the model's receipts and keeps which one is chosen.
// Changes of the state reach the screen once for each turn of the event loop. Main thread only.

#include "App/AppModel.h"
#include "Features/ItemLists/RowSelection.h"
#include "Platform/Pasteboard.h"
#include "Platform/Workspace.h"

#include <QObject>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace cairnfield {

/// Everything that one row shows.
class HistoryListItem {
    Q_GADGET
    QML_VALUE_TYPE(historyListItem)
    Q_PROPERTY(QString outcome MEMBER outcome)
    Q_PROPERTY(QString symbolName MEMBER symbolName)
    Q_PROPERTY(QString tint MEMBER tint)
    Q_PROPERTY(QString repository MEMBER repository)
    Q_PROPERTY(QString date MEMBER date)

public:
    QString outcome;
    QString symbolName;
    QString tint;
    QString repository;
    QString date;

    friend bool operator==(const HistoryListItem&, const HistoryListItem&) = default;
};

/// Everything that the detail shows.
class ReceiptDetail {
    Q_GADGET
    QML_VALUE_TYPE(receiptDetail)
    Q_PROPERTY(bool isPresent MEMBER isPresent)
    Q_PROPERTY(cairnfield::HistoryListItem head MEMBER head)
    Q_PROPERTY(QVariantList rows MEMBER rows)
    Q_PROPERTY(QString failure MEMBER failure)
    Q_PROPERTY(bool hasVaultFiles MEMBER hasVaultFiles)

public:
    bool isPresent = false;
    HistoryListItem head;
    QVariantList rows;  ///< of {label, value, isFixed}
    QString failure;    ///< empty when nothing stopped it
    bool hasVaultFiles = false;

    friend bool operator==(const ReceiptDetail&, const ReceiptDetail&) = default;
};

class HistoryViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(bool showsList READ showsList NOTIFY screenChanged)
    Q_PROPERTY(QString notice READ notice NOTIFY screenChanged)
    Q_PROPERTY(QString fileNotice READ fileNotice NOTIFY screenChanged)
    Q_PROPERTY(cairnfield::ItemListModel* rows READ rows CONSTANT)
    Q_PROPERTY(cairnfield::RowSelection* selection READ selection CONSTANT)
    Q_PROPERTY(cairnfield::ReceiptDetail detail READ detail NOTIFY detailChanged)

public:
    /// All of them outlive the view model.
    HistoryViewModel(AppModel& model, Workspace& workspace, Pasteboard& pasteboard,
                     QObject* parent = nullptr);

    [[nodiscard]] bool showsList() const { return rows_.rowCount() > 0; }
    /// Why the last thing asked for did not come about; empty when it did.
    [[nodiscard]] QString notice() const { return notice_; }
    /// What should be known about the file of the receipts; empty while all is well.
    [[nodiscard]] QString fileNotice() const;
    [[nodiscard]] ItemListModel* rows() { return &rows_; }
    [[nodiscard]] RowSelection* selection() { return &selection_; }
    [[nodiscard]] ReceiptDetail detail() const { return detail_; }

    // For the chosen receipt; without one they do nothing.
    Q_INVOKABLE void copySummary();
    Q_INVOKABLE void revealVaultFiles();

    /// Brings the screen up to date with the state at once.
    void flush();

signals:
    void screenChanged();
    void detailChanged();

private:
    void updateDetail();
    void say(QString notice);
    [[nodiscard]] const CleanupReceipt* selected() const;

    AppModel& model_;
    Workspace& workspace_;
    Pasteboard& pasteboard_;
    ItemListModel rows_;
    RowSelection selection_{rows_};
    ReceiptDetail detail_;
    QString notice_;
    QTimer updateTimer_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
