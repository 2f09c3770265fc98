#include "Features/WatchedFolders/WatchedFolderListModel.h"

#include "Features/Presentation/QtText.h"
#include "Features/Presentation/Tints.h"

#include <algorithm>

namespace cairnfield {

WatchedFolderListModel::WatchedFolderListModel(const WallClock& clock, QObject* parent)
    : QAbstractListModel(parent), clock_(clock) {}

int WatchedFolderListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant WatchedFolderListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != itemRole) return {};
    return QVariant::fromValue(item(index.row()));
}

QHash<int, QByteArray> WatchedFolderListModel::roleNames() const {
    return {{itemRole, "item"}};
}

void WatchedFolderListModel::update(const std::vector<WatchedFolder>& folders,
                                    const std::map<UUID, DirectoryScanResult>& results,
                                    const std::set<UUID>& scanning) {
    std::vector<Row> rows;
    rows.reserve(folders.size());
    for (const WatchedFolder& folder : folders) {
        const RowKey key = keys_.try_emplace(folder.id, keys_.size() + 1).first->second;
        const auto result = results.find(folder.id);
        rows.push_back({key, folder,
                        result == results.end() ? std::vector<ChildSize>{} : result->second.largestChildren,
                        scanning.contains(folder.id)});
    }
    show(rows);
}

void WatchedFolderListModel::show(const std::vector<Row>& rows) {
    const auto keys = [](const std::vector<Row>& of) {
        std::vector<RowKey> result(of.size());
        std::ranges::transform(of, result.begin(), &Row::key);
        return result;
    };
    const RowChanges changes = rowChanges(keys(rows_), keys(rows));
    if (changes.isReordered) {
        beginResetModel();
        rows_ = rows;
        endResetModel();
        return;
    }
    for (const RowRun& run : changes.removals) {
        beginRemoveRows({}, run.first, run.first + run.count - 1);
        rows_.erase(rows_.begin() + run.first, rows_.begin() + run.first + run.count);
        endRemoveRows();
    }
    for (const RowRun& run : changes.insertions) {
        beginInsertRows({}, run.first, run.first + run.count - 1);
        rows_.insert(rows_.begin() + run.first, rows.begin() + run.first,
                     rows.begin() + run.first + run.count);
        endInsertRows();
    }
    for (int row = 0; row < rowCount(); ++row) {
        const auto position = static_cast<std::size_t>(row);
        if (rows_[position] == rows[position]) continue;
        rows_[position] = rows[position];
        emit dataChanged(index(row), index(row), {itemRole});
    }
}

void WatchedFolderListModel::refreshDates() {
    if (!rows_.empty()) emit dataChanged(index(0), index(rowCount() - 1), {itemRole});
}

WatchedFolderListItem WatchedFolderListModel::item(int row) const {
    const Row& from = rows_[static_cast<std::size_t>(row)];
    DirectoryScanResult result;
    result.largestChildren = from.largest;
    const FolderRowText text = folderRowText(from.folder, &result, clock_.now());
    WatchedFolderListItem item;
    item.name = shown(text.name);
    item.path = shown(text.path);
    item.size = shown(text.size);
    item.isSizeKnown = text.isSizeKnown;
    item.change = shown(text.change);
    item.level = shown(title(text.level));
    item.symbolName = shown(symbolName(text.level));
    item.tint = shown(tintName(text.level));
    item.scanned = shown(text.scanned);
    item.isScanning = from.isScanning;
    item.error = shown(text.error);
    for (const LargestItemText& largest : text.largest) {
        item.largest << QVariantMap{{"name", shown(largest.name)}, {"size", shown(largest.size)}};
    }
    item.description = shown(text.description);
    return item;
}

const WatchedFolder* WatchedFolderListModel::folderAt(int row) const {
    return row >= 0 && row < rowCount() ? &rows_[static_cast<std::size_t>(row)].folder : nullptr;
}

int WatchedFolderListModel::rowOf(UUID id) const {
    const auto row = std::ranges::find(rows_, id, [](const Row& from) { return from.folder.id; });
    return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

}  // namespace cairnfield
