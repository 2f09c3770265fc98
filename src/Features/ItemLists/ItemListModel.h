#pragma once
// Records as a view shows them, each a row known by its identity. Only what changed is told: a record that
// comes or goes is one row, one that changed its row. Main thread only.

#include "Features/Lists/RowChanges.h"
#include "Models/UUID.h"

#include <QAbstractListModel>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

struct ListItem {
    UUID id;           ///< should be unique; files from elsewhere may hold one twice, and then both are shown
    std::string name;  ///< what typing finds
    QVariant item;     ///< all that the row shows: a value that can be compared
};

class ItemListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to a view model")

public:
    enum Role { itemRole = Qt::UserRole + 1 };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void show(std::vector<ListItem> items);

    /// Null for rows that there are not.
    [[nodiscard]] const ListItem* at(int row) const;
    /// What a row is known by for as long as the model lives, also while it is not shown. The row exists.
    [[nodiscard]] RowKey keyAt(int row) const;
    /// -1 when it is not shown.
    [[nodiscard]] int rowOf(RowKey key) const;

private:
    struct Row {
        RowKey key = 0;
        ListItem shown;
    };

    [[nodiscard]] std::vector<Row> keyed(std::vector<ListItem> items);

    std::vector<Row> rows_;
    /// By identity and how many of it came before; never forgotten, so that no two rows ever share one.
    std::map<std::pair<UUID, std::size_t>, RowKey> keys_;
};

}  // namespace cairnfield
