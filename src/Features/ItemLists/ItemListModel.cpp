#include "Features/ItemLists/ItemListModel.h"

#include <algorithm>

namespace cairnfield {

namespace {

// Beyond so many steps telling each costs a view more than being shown the list anew.
constexpr std::size_t mostRuns = 48;

}  // namespace

int ItemListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ItemListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != itemRole) return {};
    return at(index.row())->item;
}

QHash<int, QByteArray> ItemListModel::roleNames() const {
    return {{itemRole, "item"}};
}

std::vector<ItemListModel::Row> ItemListModel::keyed(std::vector<ListItem> items) {
    std::map<UUID, std::size_t> met;
    std::vector<Row> rows;
    rows.reserve(items.size());
    for (ListItem& item : items) {
        const std::pair identity(item.id, met[item.id]++);
        rows.push_back({keys_.try_emplace(identity, keys_.size() + 1).first->second, std::move(item)});
    }
    return rows;
}

void ItemListModel::show(std::vector<ListItem> items) {
    std::vector<Row> rows = keyed(std::move(items));
    const auto keys = [](const std::vector<Row>& of) {
        std::vector<RowKey> result(of.size());
        std::ranges::transform(of, result.begin(), &Row::key);
        return result;
    };
    const RowChanges changes = rowChanges(keys(rows_), keys(rows));
    if (changes.isReordered || changes.runs() > mostRuns) {
        beginResetModel();
        rows_ = std::move(rows);
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
        const bool isSame = rows_[position].shown.item == rows[position].shown.item;
        rows_[position] = std::move(rows[position]);
        if (!isSame) emit dataChanged(index(row), index(row), {itemRole});
    }
}

const ListItem* ItemListModel::at(int row) const {
    return row >= 0 && row < rowCount() ? &rows_[static_cast<std::size_t>(row)].shown : nullptr;
}

RowKey ItemListModel::keyAt(int row) const {
    return rows_.at(static_cast<std::size_t>(row)).key;
}

int ItemListModel::rowOf(RowKey key) const {
    const auto row = std::ranges::find(rows_, key, &Row::key);
    return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

}  // namespace cairnfield
