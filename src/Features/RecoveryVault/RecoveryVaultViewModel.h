#pragma once
// What the screen of the Recovery Vault shows and does: reads the model's entries, keeps the selection and
// which file is to be deleted once that is confirmed. Changes of the state reach the screen once for each
// turn of the event loop. Main thread only.

#include "App/AppModel.h"
#include "Features/ItemLists/RowSelection.h"
#include "Platform/SavePanel.h"
#include "Platform/Workspace.h"

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <optional>
#include <vector>

namespace cairnfield {

/// Everything that one row shows.
class VaultListItem {
    Q_GADGET
    QML_VALUE_TYPE(vaultListItem)
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(QString size MEMBER size)
    Q_PROPERTY(QString origin MEMBER origin)
    Q_PROPERTY(QString expiry MEMBER expiry)
    Q_PROPERTY(QString description MEMBER description)

public:
    QString path;
    QString size;
    QString origin;
    QString expiry;  ///< empty for one that stays until it is deleted
    QString description;

    friend bool operator==(const VaultListItem&, const VaultListItem&) = default;
};

class RecoveryVaultViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(bool showsList READ showsList NOTIFY screenChanged)
    Q_PROPERTY(QString notice READ notice NOTIFY screenChanged)
    Q_PROPERTY(QString fileNotice READ fileNotice NOTIFY screenChanged)
    Q_PROPERTY(cairnfield::ItemListModel* rows READ rows CONSTANT)
    Q_PROPERTY(cairnfield::RowSelection* selection READ selection CONSTANT)
    Q_PROPERTY(bool isDeleting READ isDeleting NOTIFY pendingDeletionChanged)
    Q_PROPERTY(QString deletionQuestion READ deletionQuestion NOTIFY pendingDeletionChanged)

public:
    /// All of them outlive the view model.
    RecoveryVaultViewModel(AppModel& model, Workspace& workspace, SavePanel& savePanel,
                           const WallClock& clock, QObject* parent = nullptr);

    [[nodiscard]] bool showsList() const { return rows_.rowCount() > 0; }
    /// Why the last file could not be shown, or that the file of the last deleted entry stays; empty when
    /// there is nothing to say.
    [[nodiscard]] QString notice() const { return notice_; }
    /// What should be known about the file of the entries; empty while all is well.
    [[nodiscard]] QString fileNotice() const;
    [[nodiscard]] ItemListModel* rows() { return &rows_; }
    [[nodiscard]] RowSelection* selection() { return &selection_; }

    [[nodiscard]] const std::optional<RecoveryVaultEntry>& pendingDeletion() const {
        return pendingDeletion_;
    }
    [[nodiscard]] bool isDeleting() const { return pendingDeletion_.has_value(); }
    /// Stays while the question is on its way out.
    [[nodiscard]] QString deletionQuestion() const { return deletionQuestion_; }

    Q_INVOKABLE void reveal(int row);
    /// Asks where to, then copies the file there. What goes wrong with that is in the log only; the entry
    /// stays in any case.
    Q_INVOKABLE void restore(int row);
    /// Asks first.
    Q_INVOKABLE void deletePermanently(int row);
    /// The answers to that.
    Q_INVOKABLE void confirmDeletion();
    Q_INVOKABLE void cancelDeletion();

    /// The texts that tell time are worded anew: call it when the screen comes into view.
    Q_INVOKABLE void refreshDates();
    void say(const QString& notice);
    /// Brings the screen up to date with the state at once.
    void flush();

signals:
    void screenChanged();
    void pendingDeletionChanged();

private:
    [[nodiscard]] const RecoveryVaultEntry* entryAt(int row) const;

    AppModel& model_;
    Workspace& workspace_;
    SavePanel& savePanel_;
    const WallClock& clock_;
    ItemListModel rows_;
    RowSelection selection_{rows_};
    QString notice_;
    std::optional<RecoveryVaultEntry> pendingDeletion_;
    QString deletionQuestion_;
    QTimer updateTimer_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
