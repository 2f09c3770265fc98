#include "Features/ItemLists/RowSelection.h"

#include <algorithm>

namespace cairnfield {

void RowSelection::rowsChanged() {
    const int row = key_ ? rows_.rowOf(*key_) : -1;
    if (row < 0) key_.reset();
    if (row == row_) return;
    row_ = row;
    emit changed();
}

void RowSelection::select(int row) {
    if (!rows_.at(row) || row == row_) return;
    key_ = rows_.keyAt(row);
    row_ = row;
    emit changed();
}

void RowSelection::move(int steps) {
    if (row_ < 0) return selectFirst();
    select(std::clamp(row_ + steps, 0, rows_.rowCount() - 1));
}

void RowSelection::selectFirst() {
    select(0);
}

void RowSelection::selectLast() {
    select(rows_.rowCount() - 1);
}

void RowSelection::typeAhead(const QString& typed) {
    const auto name = [this](int row) { return std::optional(rows_.at(row)->name); };
    const auto row =
        typeAhead_.find(typed.toStdString(), TypeAhead::Instant::clock::now(), row_, rows_.rowCount(), name);
    if (row) select(*row);
}

}  // namespace cairnfield
