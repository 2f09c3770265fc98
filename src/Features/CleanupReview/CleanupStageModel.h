#pragma once
// The stages that a running cleanup goes through, each done, in progress or pending. Main thread only.

#include "Services/Cleanup/CleanupPlan.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <array>

namespace cairnfield {

/// Some stages have no row: a person has nothing to do with them, or the receipt tells them.
inline constexpr std::array shownCleanupStages{
    CleanupStage::preflight,        CleanupStage::creatingRecoveryBranch,
    CleanupStage::staging,          CleanupStage::committing,
    CleanupStage::pushing,          CleanupStage::creatingPullRequest,
    CleanupStage::verifyingRemote,  CleanupStage::archivingLocalFiles,
    CleanupStage::removingWorktree, CleanupStage::verifyingDeletion,
    CleanupStage::completed};

class CleanupStageModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the view model")

public:
    enum Role { stageTitleRole = Qt::UserRole + 1, symbolNameRole, tintRole, progressRole };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// The row of the stage is in progress from now on; for a stage without a row it is the first.
    void moveTo(CleanupStage stage);

private:
    int current_ = 0;
};

}  // namespace cairnfield
