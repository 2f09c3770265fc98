#include "Features/Worktrees/WorktreeListModel.h"

#include "Features/Presentation/QtText.h"
#include "Features/Presentation/Tints.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace cairnfield {

namespace {

// Beyond so many steps telling each costs a view more than being shown the list anew.
constexpr std::size_t mostRuns = 48;

}  // namespace

WorktreeListModel::WorktreeListModel(const WallClock& clock, QObject* parent)
    : QAbstractListModel(parent), clock_(clock) {}

int WorktreeListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant WorktreeListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    switch (role) {
        case rowKindRole:
            return QVariant::fromValue(worktreeAt(index.row()) ? RowKind::worktree : RowKind::header);
        case itemRole:
            return QVariant::fromValue(item(index.row()));
        default:
            return {};
    }
}

QHash<int, QByteArray> WorktreeListModel::roleNames() const {
    return {{rowKindRole, "rowKind"}, {itemRole, "item"}};
}

void WorktreeListModel::update(const std::vector<Worktree>& worktrees,
                               const std::optional<SizingProgress>& progress) {
    const ListedWorktrees::Update update = worktrees_.update(worktrees, progress);
    if (update.orderMayDiffer) arrange();
    tellChanged(update.changed);
}

void WorktreeListModel::setQuery(WorktreeQuery query) {
    query_ = std::move(query);
    worktrees_.adoptSizes();
    arrange();
}

void WorktreeListModel::refreshDates() {
    if (!rows_.empty()) emit dataChanged(index(0), index(rowCount() - 1), {itemRole});
}

WorktreeListItem WorktreeListModel::item(int row) const {
    const ListedWorktree* listed = worktreeAt(row);
    if (!listed) {
        const std::size_t section = rows_[static_cast<std::size_t>(row)].section;
        return section < sections_.size() ? header(sections_[section]) : WorktreeListItem{};
    }
    const Worktree& worktree = listed->worktree;
    const WorktreeRowText text = rowText(worktree, listed->sizeKnowledge, clock_.now());
    WorktreeListItem item;
    item.title = shown(text.branch);
    item.symbolName = shown(symbolName(disposition(worktree.safety)));
    item.tint = shown(tintName(disposition(worktree.safety)));
    item.path = shown(text.path);
    item.disposition = shown(text.disposition);
    for (const std::string* remark : {&text.madeBy, &text.pullRequest, &text.lastActivity}) {
        if (!remark->empty()) item.remarks += (item.remarks.isEmpty() ? "· " : " · ") + shown(*remark);
    }
    item.size = shown(text.size);
    item.isSizeKnown = listed->sizeKnowledge == SizeKnowledge::known;
    item.isPinned = worktree.isPinned;
    item.description = shown(text.description);
    return item;
}

WorktreeListItem WorktreeListModel::header(const WorktreeSection& section) const {
    const Worktree& first = worktrees_.all()[section.members.front()].worktree;
    WorktreeListItem item;
    item.isHeader = true;
    if (query_.grouping == WorktreeGrouping::safety) {
        const SafetyDisposition group = disposition(first.safety);
        item.title = shown(title(group));
        item.symbolName = shown(symbolName(group));
        item.tint = shown(tintName(group));
        return item;
    }
    ProjectTotals totals;
    for (const std::uint32_t member : section.members) totals.add(worktrees_.all()[member].worktree);
    item.title = shown(visibleText(first.repositoryName));
    item.summary = shown(projectSummary(totals));
    item.details = shown(projectDetails(totals));
    item.description = item.summary + item.details;
    return item;
}

const ListedWorktree* WorktreeListModel::worktreeAt(int row) const {
    if (row < 0 || row >= rowCount()) return nullptr;
    const auto position = rows_[static_cast<std::size_t>(row)].worktree;
    return position ? &worktrees_.all()[*position] : nullptr;
}

int WorktreeListModel::rowOf(const FilePath& id) const {
    const ListedWorktree* listed = worktrees_.find(id);
    if (!listed) return -1;
    const auto row = std::ranges::find(rows_, listed->key, &Row::key);
    return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

void WorktreeListModel::arrange() {
    const std::vector<ListedWorktree>& all = worktrees_.all();
    std::vector<WorktreeSection> sections = cairnfield::sections(all, filtered(all, query_), query_.grouping);
    std::vector<Row> rows;
    rows.reserve(all.size() + sections.size());
    for (std::uint32_t section = 0; section < sections.size(); ++section) {
        rows.push_back({sections[section].key, section, std::nullopt});
        for (const std::uint32_t member : sections[section].members)
            rows.push_back({all[member].key, section, member});
    }
    show(std::move(rows), std::move(sections));
}

void WorktreeListModel::show(std::vector<Row> rows, std::vector<WorktreeSection> sections) {
    const auto keys = [](const std::vector<Row>& of) {
        std::vector<RowKey> result(of.size());
        std::ranges::transform(of, result.begin(), &Row::key);
        return result;
    };
    const RowChanges changes = rowChanges(keys(rows_), keys(rows));
    if (changes.runs() > mostRuns) {
        beginResetModel();
        rows_ = std::move(rows);
        sections_ = std::move(sections);
        endResetModel();
        return;
    }
    // The rows that go are read by nobody any more; those that stay are brought up to date before the first
    // step.
    sections_ = std::move(sections);
    std::unordered_map<RowKey, const Row*> next;
    next.reserve(rows.size());
    for (const Row& row : rows) next.emplace(row.key, &row);
    for (Row& row : rows_) {
        const auto found = next.find(row.key);
        row = found == next.end() ? Row{row.key, 0, std::nullopt} : *found->second;
    }
    step(changes, rows);

    // A header sums up its section, whatever of it is shown.
    for (int row = 0; row < rowCount(); ++row) {
        if (!rows_[static_cast<std::size_t>(row)].worktree)
            emit dataChanged(index(row), index(row), {itemRole});
    }
}

void WorktreeListModel::step(const RowChanges& changes, const std::vector<Row>& rows) {
    for (const RowRun& run : changes.removals) {
        beginRemoveRows({}, run.first, run.first + run.count - 1);
        rows_.erase(rows_.begin() + run.first, rows_.begin() + run.first + run.count);
        endRemoveRows();
    }
    if (changes.isReordered) {
        emit layoutAboutToBeChanged({}, VerticalSortHint);
        std::unordered_map<RowKey, int> places;
        for (const Row& row : rows) places.emplace(row.key, static_cast<int>(places.size()));
        const std::vector<Row> before = rows_;
        std::ranges::sort(rows_, {}, [&](const Row& row) { return places.at(row.key); });
        std::unordered_map<RowKey, int> now;
        for (const Row& row : rows_) now.emplace(row.key, static_cast<int>(now.size()));
        const QModelIndexList persistent = persistentIndexList();
        for (const QModelIndex& old : persistent) {
            changePersistentIndex(old, index(now.at(before[static_cast<std::size_t>(old.row())].key)));
        }
        emit layoutChanged({}, VerticalSortHint);
    }
    for (const RowRun& run : changes.insertions) {
        beginInsertRows({}, run.first, run.first + run.count - 1);
        rows_.insert(rows_.begin() + run.first, rows.begin() + run.first,
                     rows.begin() + run.first + run.count);
        endInsertRows();
    }
}

void WorktreeListModel::tellChanged(const std::vector<RowKey>& worktrees) {
    if (worktrees.empty()) return;
    const std::unordered_set<RowKey> changed(worktrees.begin(), worktrees.end());
    std::vector<bool> isTold(rows_.size());
    std::size_t header = 0;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (!rows_[row].worktree) {
            header = row;
        } else if (changed.contains(rows_[row].key)) {
            isTold[row] = isTold[header] = true;
        }
    }
    for (int row = 0; row < rowCount();) {
        int end = row;
        while (end < rowCount() && isTold[static_cast<std::size_t>(end)]) ++end;
        if (end > row) emit dataChanged(index(row), index(end - 1), {itemRole});
        row = std::max(end, row + 1);
    }
}

}  // namespace cairnfield
