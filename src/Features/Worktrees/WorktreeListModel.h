#pragma once
// The worktree list as a view scrolls it: the sections' headers and the worktrees in one run of rows. A
// change disturbs as little as it can: a new size changes the rows that show it, a worktree that comes or
// goes inserts or removes its row, and only what would take very many steps shows the list anew. Main thread
// only.

#include "Features/Worktrees/ListedWorktrees.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <optional>
#include <vector>

namespace cairnfield {

/// Everything that one row shows; a header has a title and perhaps more, a worktree the rest.
class WorktreeListItem {
    Q_GADGET
    QML_VALUE_TYPE(worktreeListItem)
    Q_PROPERTY(bool isHeader MEMBER isHeader)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString summary MEMBER summary)
    Q_PROPERTY(QString details MEMBER details)
    Q_PROPERTY(QString symbolName MEMBER symbolName)
    Q_PROPERTY(QString tint MEMBER tint)
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(QString disposition MEMBER disposition)
    Q_PROPERTY(QString remarks MEMBER remarks)
    Q_PROPERTY(QString size MEMBER size)
    Q_PROPERTY(bool isSizeKnown MEMBER isSizeKnown)
    Q_PROPERTY(bool isPinned MEMBER isPinned)
    Q_PROPERTY(QString description MEMBER description)

public:
    bool isHeader = false;
    QString title;    ///< the project, the disposition or the branch
    QString summary;  ///< of a project, at the right
    QString details;  ///< of a project, below
    QString symbolName;
    QString tint;  ///< empty for a project
    QString path;
    QString disposition;
    QString remarks;  ///< who made it, its pull request and its last activity, each after a dot
    QString size;
    bool isSizeKnown = true;
    bool isPinned = false;
    QString description;
};

class WorktreeListModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the view model")

public:
    enum class RowKind { header, worktree };
    Q_ENUM(RowKind)
    enum Role { rowKindRole = Qt::UserRole + 1, itemRole };

    /// `clock` outlives the model.
    explicit WorktreeListModel(const WallClock& clock, QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void update(const std::vector<Worktree>& worktrees, const std::optional<SizingProgress>& progress);
    void setQuery(WorktreeQuery query);
    [[nodiscard]] const WorktreeQuery& query() const { return query_; }
    /// Time has passed: what tells it is read again.
    void refreshDates();

    [[nodiscard]] WorktreeListItem item(int row) const;
    /// Null for headers and rows that there are not.
    [[nodiscard]] const ListedWorktree* worktreeAt(int row) const;
    /// Null when the model's list has no such worktree, shown or not.
    [[nodiscard]] const ListedWorktree* find(const FilePath& id) const { return worktrees_.find(id); }
    /// -1 when it is not shown.
    [[nodiscard]] int rowOf(const FilePath& id) const;

private:
    struct Row {
        RowKey key = 0;
        std::uint32_t section = 0;
        std::optional<std::uint32_t> worktree;  ///< position in the list; absent for a header
    };

    void arrange();
    void show(std::vector<Row> rows, std::vector<WorktreeSection> sections);
    void step(const RowChanges& changes, const std::vector<Row>& rows);
    void tellChanged(const std::vector<RowKey>& worktrees);
    [[nodiscard]] WorktreeListItem header(const WorktreeSection& section) const;

    const WallClock& clock_;
    WorktreeQuery query_;
    ListedWorktrees worktrees_;
    std::vector<WorktreeSection> sections_;
    std::vector<Row> rows_;
};

}  // namespace cairnfield
