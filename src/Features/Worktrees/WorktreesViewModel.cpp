#include "Features/Worktrees/WorktreesViewModel.h"

#include "Features/Presentation/QtText.h"

#include <QPointer>

#include <algorithm>

namespace cairnfield {

namespace {

constexpr std::chrono::milliseconds updateInterval{100};

std::string bytes(const QString& text) {
    return text.toStdString();
}

}  // namespace

WorktreesViewModel::WorktreesViewModel(AppModel& model, Workspace& workspace, const WallClock& clock,
                                       CleanupReviewViewModel& review, QObject* parent)
    : QObject(parent), model_(model), workspace_(workspace), clock_(clock), review_(review), rows_(clock) {
    updateTimer_.setSingleShot(true);
    connect(&updateTimer_, &QTimer::timeout, this, &WorktreesViewModel::flush);
    connect(&review_, &CleanupReviewViewModel::phaseChanged, this, [this] {
        if (!review_.isOpen()) emit reviewEnded();
    });
    const AppState& state = model_.state();
    const auto observer = [this] { scheduleFlush(); };
    subscriptions_.push_back(state.watchedFolders.observe(observer));
    subscriptions_.push_back(state.worktrees.observe(observer));
    subscriptions_.push_back(state.isRefreshingWorktrees.observe(observer));
    subscriptions_.push_back(state.worktreeRefreshError.observe(observer));
    subscriptions_.push_back(state.sizingProgress.observe(observer));
    subscriptions_.push_back(state.githubStatus.observe(observer));
    flush();
}

void WorktreesViewModel::scheduleFlush() {
    if (updateTimer_.isActive()) return;
    const auto due = lastUpdate_ + updateInterval - std::chrono::steady_clock::now();
    updateTimer_.start(
        std::max(std::chrono::ceil<std::chrono::milliseconds>(due), std::chrono::milliseconds{0}));
}

void WorktreesViewModel::flush() {
    updateTimer_.stop();
    lastUpdate_ = std::chrono::steady_clock::now();
    rows_.update(model_.state().worktrees.get(), model_.state().sizingProgress.get());
    updateScreen();
    updateSelection();
}

WorktreesViewModel::Screen WorktreesViewModel::screenNow() const {
    const AppState& state = model_.state();
    Screen screen;
    screen.canScan = !state.isRefreshingWorktrees.get();
    screen.canCheckPullRequests =
        !state.githubStatus.get().authenticatedHosts.empty() && !state.worktrees.get().empty();
    if (state.watchedFolders.get().empty()) {
        screen.emptyTitle = "No folders are being watched";
        screen.emptyMessage =
            "Add the folder that holds your repositories. Cairnfield only looks where you point it.";
        screen.emptySymbolName = "folder.badge.plus";
        return screen;
    }
    const std::optional<std::string>& refreshError = state.worktreeRefreshError.get();
    if (state.worktrees.get().empty()) {
        const bool isRefreshing = state.isRefreshingWorktrees.get();
        screen.emptyTitle = isRefreshing ? "Looking for repositories…" : "No worktrees found yet";
        screen.emptyMessage =
            refreshError ? shown(*refreshError)
                         : "Scan to ask Git which worktrees are registered under your watched folders.";
        screen.emptySymbolName = "arrow.triangle.branch";
        if (!isRefreshing) screen.emptyActionTitle = "Scan now";
        return screen;
    }
    screen.showsList = true;
    screen.notice = actionError_.isEmpty() && refreshError ? shown(*refreshError) : actionError_;
    const std::optional<SizingProgress>& progress = state.sizingProgress.get();
    if (const auto text = cairnfield::progressText(progress)) {
        screen.progressText = shown(*text);
        screen.progressFraction =
            static_cast<double>(progress->completed) / static_cast<double>(progress->total);
    }
    return screen;
}

void WorktreesViewModel::updateScreen() {
    Screen screen = screenNow();
    if (screen == screen_) return;
    screen_ = std::move(screen);
    emit screenChanged();
}

const ListedWorktree* WorktreesViewModel::selected() const {
    return selection_ ? rows_.find(*selection_) : nullptr;
}

void WorktreesViewModel::updateSelection() {
    const ListedWorktree* listed = selected();
    if (!listed) selection_.reset();
    std::optional<WorktreeDetailText> text;
    if (listed) text = detailText(listed->worktree, listed->sizeKnowledge, clock_.now());
    detail_.show(std::move(text));
    selectedRow_ = selection_ ? rows_.rowOf(*selection_) : -1;
    emit selectionChanged();
}

void WorktreesViewModel::setQuery(WorktreeQuery query) {
    rows_.setQuery(std::move(query));
    updateSelection();
    emit queryChanged();
}

void WorktreesViewModel::setSearchText(const QString& text) {
    if (text == searchText_) return;
    searchText_ = text;
    WorktreeQuery query = rows_.query();
    query.searchText = bytes(text);
    setQuery(std::move(query));
}

QStringList WorktreesViewModel::filterTitles() const {
    QStringList titles{"All"};
    for (const SafetyDisposition disposition : allDispositions) titles << shown(title(disposition));
    return titles;
}

int WorktreesViewModel::filterIndex() const {
    const auto& chosen = rows_.query().disposition;
    return chosen
               ? static_cast<int>(std::ranges::find(allDispositions, *chosen) - allDispositions.begin()) + 1
               : 0;
}

void WorktreesViewModel::setFilterIndex(int index) {
    if (index == filterIndex() || index < 0 || index > static_cast<int>(allDispositions.size())) return;
    WorktreeQuery query = rows_.query();
    query.disposition.reset();
    if (index > 0) query.disposition = allDispositions[static_cast<std::size_t>(index - 1)];
    setQuery(std::move(query));
}

QStringList WorktreesViewModel::groupingTitles() const {
    return {shown(title(WorktreeGrouping::project)), shown(title(WorktreeGrouping::safety))};
}

int WorktreesViewModel::groupingIndex() const {
    return rows_.query().grouping == WorktreeGrouping::project ? 0 : 1;
}

void WorktreesViewModel::setGroupingIndex(int index) {
    if (index == groupingIndex() || index < 0 || index > 1) return;
    WorktreeQuery query = rows_.query();
    query.grouping = index == 0 ? WorktreeGrouping::project : WorktreeGrouping::safety;
    setQuery(std::move(query));
}

void WorktreesViewModel::scan() {
    model_.run(model_.refreshWorktrees(true));
}

void WorktreesViewModel::checkPullRequests() {
    if (canCheckPullRequests()) model_.run(model_.refreshRemoteState());
}

void WorktreesViewModel::select(int row) {
    const ListedWorktree* listed = rows_.worktreeAt(row);
    if (!listed) return;
    selection_ = listed->id;
    actionError_.clear();
    updateScreen();
    updateSelection();
}

void WorktreesViewModel::selectRowFrom(int row, int direction) {
    while (row >= 0 && row < rows_.rowCount() && !rows_.worktreeAt(row)) row += direction;
    select(row);
}

void WorktreesViewModel::moveSelection(int steps) {
    if (selectedRow_ < 0) return selectFirst();
    const int direction = steps < 0 ? -1 : 1;
    int target = selectedRow_;
    for (int row = target + direction; steps != 0 && row >= 0 && row < rows_.rowCount(); row += direction) {
        if (!rows_.worktreeAt(row)) continue;
        target = row;
        steps -= direction;
    }
    select(target);
}

void WorktreesViewModel::selectFirst() {
    selectRowFrom(0, 1);
}

void WorktreesViewModel::selectLast() {
    selectRowFrom(rows_.rowCount() - 1, -1);
}

void WorktreesViewModel::typeAhead(const QString& typed) {
    const auto name = [this](int row) -> std::optional<std::string> {
        const ListedWorktree* listed = rows_.worktreeAt(row);
        return listed ? std::optional(listed->worktree.displayBranch()) : std::nullopt;
    };
    const auto row =
        typeAhead_.find(bytes(typed), std::chrono::steady_clock::now(), selectedRow_, rows_.rowCount(), name);
    if (row) select(*row);
}

void WorktreesViewModel::reveal() {
    const ListedWorktree* listed = selected();
    if (!listed) return;
    const FilePath place = listed->worktree.path;
    workspace_.reveal(place, [self = QPointer(this), place](const std::optional<std::string>& problem) {
        // Another worktree may stand there by the time that the file manager has answered.
        if (!self || !self->selected() || self->selected()->worktree.path != place) return;
        self->actionError_ = shown(problem.value_or(""));
        self->updateScreen();
    });
}

void WorktreesViewModel::openTerminal() {
    const ListedWorktree* listed = selected();
    if (!listed) return;
    actionError_ = shown(workspace_.openTerminal(listed->worktree.path).value_or(""));
    updateScreen();
}

void WorktreesViewModel::togglePin() {
    if (const ListedWorktree* listed = selected()) model_.run(model_.togglePin(listed->worktree));
}

void WorktreesViewModel::preserveAndClean() {
    const ListedWorktree* listed = selected();
    if (!listed || !cleanupSectionText(listed->worktree).isCleanupEnabled) return;
    review_.open(listed->worktree);
}

void WorktreesViewModel::refreshDates() {
    rows_.refreshDates();
    updateSelection();
}

}  // namespace cairnfield
