#include "Features/CleanupReview/ReviewListModel.h"

#include "Features/Presentation/QtText.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield {

int ReviewListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant ReviewListModel::data(const QModelIndex& index, int role) const {
    if (role != lineRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return shown(visibleText(lines_[static_cast<std::size_t>(index.row())]));
}

QHash<int, QByteArray> ReviewListModel::roleNames() const {
    return {{lineRole, "line"}};
}

void ReviewListModel::show(const std::string& title, std::vector<std::string> lines) {
    beginResetModel();
    title_ = shown(title);
    lines_ = std::move(lines);
    endResetModel();
    emit shownAnew();
    setUnfolded(false);
}

void ReviewListModel::setUnfolded(bool isUnfolded) {
    if (std::exchange(isUnfolded_, isUnfolded) != isUnfolded) emit folded();
}

QString ReviewListModel::foldedText() const {
    return isUnfolded_ ? QStringLiteral("Unfolded") : QStringLiteral("Folded");
}

}  // namespace cairnfield
