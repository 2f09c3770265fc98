#pragma once
// Rows whose text is their name.

#include "Features/ItemLists/ItemListModel.h"

#include <string>
#include <vector>

namespace cairnfield {

[[nodiscard]] inline ListItem listItem(const UUID& id, const std::string& name) {
    return {id, name, QString::fromStdString(name)};
}

/// One for each name, each with an identity of its own.
[[nodiscard]] inline std::vector<ListItem> listItems(const std::vector<std::string>& names) {
    std::vector<ListItem> items;
    for (const std::string& name : names) items.push_back(listItem(UUID::make(), name));
    return items;
}

[[nodiscard]] inline std::vector<std::string> shownNames(const ItemListModel& model) {
    std::vector<std::string> names;
    for (int row = 0; row < model.rowCount(); ++row)
        names.push_back(model.data(model.index(row), ItemListModel::itemRole).toString().toStdString());
    return names;
}

}  // namespace cairnfield
