#pragma once
// The watched folders as a view shows them, in the order they were added. Only what changed is told: a folder
// that comes or goes is one row, a scan that ends changes its row. Main thread only.

#include "Features/Lists/RowChanges.h"
#include "Features/WatchedFolders/FolderTexts.h"

#include <QAbstractListModel>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <map>
#include <set>
#include <vector>

namespace cairnfield {

/// Everything that one row shows.
class WatchedFolderListItem {
    Q_GADGET
    QML_VALUE_TYPE(watchedFolderListItem)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(QString size MEMBER size)
    Q_PROPERTY(bool isSizeKnown MEMBER isSizeKnown)
    Q_PROPERTY(QString change MEMBER change)
    Q_PROPERTY(QString level MEMBER level)
    Q_PROPERTY(QString symbolName MEMBER symbolName)
    Q_PROPERTY(QString tint MEMBER tint)
    Q_PROPERTY(QString scanned MEMBER scanned)
    Q_PROPERTY(bool isScanning MEMBER isScanning)
    Q_PROPERTY(QString error MEMBER error)
    Q_PROPERTY(QVariantList largest MEMBER largest)
    Q_PROPERTY(QString description MEMBER description)

public:
    QString name;
    QString path;
    QString size;
    bool isSizeKnown = false;
    QString change;
    QString level;
    QString symbolName;
    QString tint;
    QString scanned;
    bool isScanning = false;
    QString error;
    QVariantList largest;  ///< of {name, size}
    QString description;
};

class WatchedFolderListModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the view model")

public:
    enum Role { itemRole = Qt::UserRole + 1 };

    /// `clock` outlives the model.
    explicit WatchedFolderListModel(const WallClock& clock, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void update(const std::vector<WatchedFolder>& folders, const std::map<UUID, DirectoryScanResult>& results,
                const std::set<UUID>& scanning);
    /// Time has passed: what tells it is read again.
    void refreshDates();

    [[nodiscard]] WatchedFolderListItem item(int row) const;
    /// Null for rows that there are not.
    [[nodiscard]] const WatchedFolder* folderAt(int row) const;
    /// -1 when there is no such folder.
    [[nodiscard]] int rowOf(UUID id) const;

private:
    struct Row {
        RowKey key = 0;
        WatchedFolder folder;
        std::vector<ChildSize> largest;
        bool isScanning = false;
        friend bool operator==(const Row&, const Row&) = default;
    };

    void show(const std::vector<Row>& rows);

    const WallClock& clock_;
    std::vector<Row> rows_;
    std::map<UUID, RowKey> keys_;  ///< never forgotten, so that no two folders ever share one
};

}  // namespace cairnfield
