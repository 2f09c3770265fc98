#include "Features/CleanupReview/CleanupStageModel.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace cairnfield {

namespace {

struct Appearance {
    const char* symbolName;
    const char* tint;
    const char* progress;
};

constexpr Appearance done{"checkmark.circle.fill", "accent", "Done"};
constexpr Appearance current{"circle.dotted", "secondary", "In progress"};
constexpr Appearance pending{"circle", "secondary", "Pending"};

const Appearance& appearance(int row, int currentRow) {
    if (row == currentRow) return current;
    return row < currentRow ? done : pending;
}

}  // namespace

int CleanupStageModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shownCleanupStages.size());
}

QVariant CleanupStageModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const Appearance& shown = appearance(index.row(), current_);
    switch (role) {
        case stageTitleRole: {
            const std::string_view text = title(shownCleanupStages[static_cast<std::size_t>(index.row())]);
            return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
        }
        case symbolNameRole:
            return QString::fromLatin1(shown.symbolName);
        case tintRole:
            return QString::fromLatin1(shown.tint);
        case progressRole:
            return QString::fromLatin1(shown.progress);
        default:
            return {};
    }
}

QHash<int, QByteArray> CleanupStageModel::roleNames() const {
    return {{stageTitleRole, "stageTitle"},
            {symbolNameRole, "symbolName"},
            {tintRole, "tint"},
            {progressRole, "progress"}};
}

void CleanupStageModel::moveTo(CleanupStage stage) {
    const auto* const found = std::ranges::find(shownCleanupStages, stage);
    const int row =
        found == shownCleanupStages.end() ? 0 : static_cast<int>(found - shownCleanupStages.begin());
    if (row == current_) return;
    const int before = std::exchange(current_, row);
    emit dataChanged(index(std::min(row, before)), index(std::max(row, before)),
                     {symbolNameRole, tintRole, progressRole});
}

}  // namespace cairnfield
