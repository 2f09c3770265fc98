#include "Features/WatchedFolders/WatchedFoldersViewModel.h"

#include "Features/Presentation/QtText.h"
#include "Persistence/StoredFileNames.h"
#include "Shared/Paths/TypedPath.h"
#include "Shared/Text/Text.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace cairnfield {

namespace {

/// A folder on a disk that has to wake up, or on a machine that is gone, may take long to answer.
constexpr std::chrono::seconds wordlessLook{1};

FilePath pathOf(const QUrl& folder) {
    return pathFromEncoded(folder.path(QUrl::FullyEncoded).toStdString()).standardized();
}

}  // namespace

WatchedFoldersViewModel::WatchedFoldersViewModel(AppModel& model, Workspace& workspace,
                                                 const WallClock& clock, FilePath home, QObject* parent)
    : QObject(parent), model_(model), workspace_(workspace), home_(std::move(home)), rows_(clock) {
    updateTimer_.setSingleShot(true);
    updateTimer_.setInterval(0);
    connect(&updateTimer_, &QTimer::timeout, this, &WatchedFoldersViewModel::flush);
    slowLook_.setSingleShot(true);
    slowLook_.setInterval(wordlessLook);
    connect(&slowLook_, &QTimer::timeout, this, [this] { fail("This folder has not answered yet."); });
    const AppState& state = model_.state();
    const auto observer = [this] { updateTimer_.start(); };
    subscriptions_.push_back(state.watchedFolders.observe(observer));
    subscriptions_.push_back(state.folderScanResults.observe(observer));
    subscriptions_.push_back(state.scanningFolderIDs.observe(observer));
    subscriptions_.push_back(state.folderError.observe(observer));
    subscriptions_.push_back(state.storedFileNotices.observe(observer));
    flush();
}

QString WatchedFoldersViewModel::emptyTitle() const {
    return "Nothing is being watched";
}
QString WatchedFoldersViewModel::emptyMessage() const {
    return "Cairnfield only scans folders you add here. Point it at the directory that holds your "
           "repositories.";
}
QString WatchedFoldersViewModel::emptySymbolName() const {
    return "folder.badge.plus";
}
QString WatchedFoldersViewModel::emptyActionTitle() const {
    return "Add folder…";
}

QString WatchedFoldersViewModel::fileNotice() const {
    return shown(model_.state().storedFileNotice(StoredFileNames::watchedFolders));
}

void WatchedFoldersViewModel::flush() {
    updateTimer_.stop();
    const AppState& state = model_.state();
    rows_.update(state.watchedFolders.get(), state.folderScanResults.get(), state.scanningFolderIDs.get());
    selectedRow_ = selection_ ? rows_.rowOf(*selection_) : -1;
    if (selectedRow_ < 0) selection_.reset();
    emit selectionChanged();
    updateNotice();
}

void WatchedFoldersViewModel::updateNotice() {
    const std::optional<std::string>& folderError = model_.state().folderError.get();
    notice_ = actionError_.isEmpty() && folderError ? shown(visibleText(*folderError)) : actionError_;
    emit screenChanged();
}

void WatchedFoldersViewModel::setImporting(bool isImporting) {
    if (isImporting == isImporting_) return;
    isImporting_ = isImporting;
    forgetLook();
    emit importingChanged();
}

void WatchedFoldersViewModel::addTyped(const QString& path) {
    forgetLook();
    const auto folder = pathFromTyped(path.toStdString(), home_);
    if (!folder) return fail("Type the whole path of a folder, starting with a slash.");
    add(*folder);
}

void WatchedFoldersViewModel::addChosen(const QUrl& folder) {
    add(pathOf(folder));
}

QString WatchedFoldersViewModel::typedForm(const QUrl& folder) {
    return shown(pathOf(folder).display());
}

void WatchedFoldersViewModel::add(const FilePath& folder) {
    forgetLook();
    emit importingChanged();
    slowLook_.start();
    model_.run(lookAndAdd(model_, QPointer(this), folder, look_));
}

// One task, so that the list of worktrees is asked for only once the folder is there.
Task<> WatchedFoldersViewModel::lookAndAdd(AppModel& model, QPointer<WatchedFoldersViewModel> screen,
                                           FilePath folder, int look) {
    const bool isFolder = co_await model.isDirectory(folder);
    if (!screen || screen->look_ != look) co_return;
    screen->forgetLook();
    if (!isFolder) {
        screen->fail("There is no folder at this path.");
        co_return;
    }
    screen->setImporting(false);
    screen->actionError_.clear();
    co_await model.addWatchedFolder(std::move(folder));
    co_await model.refreshWorktrees(true);
}

void WatchedFoldersViewModel::forgetLook() {
    ++look_;
    slowLook_.stop();
    importError_.clear();
}

void WatchedFoldersViewModel::fail(const char* importError) {
    importError_ = importError;
    emit importingChanged();
}

QUrl WatchedFoldersViewModel::firstFolder() const {
    return QUrl::fromLocalFile(QString::fromStdString(home_.bytes()));
}

void WatchedFoldersViewModel::rescanAll() {
    model_.run(model_.scanAllFolders(true));
}

void WatchedFoldersViewModel::removeSelected() {
    const WatchedFolder* folder = rows_.folderAt(selectedRow_);
    if (!folder) return;
    actionError_.clear();
    model_.run(model_.removeWatchedFolder(*folder));
}

void WatchedFoldersViewModel::rescan(int row) {
    if (const WatchedFolder* folder = rows_.folderAt(row)) model_.run(model_.scan(*folder, true));
}

void WatchedFoldersViewModel::reveal(int row) {
    const WatchedFolder* folder = rows_.folderAt(row);
    if (!folder) return;
    workspace_.reveal(folder->path, [self = QPointer(this)](const std::optional<std::string>& problem) {
        if (!self) return;
        self->actionError_ = shown(problem.value_or(""));
        self->updateNotice();
    });
}

void WatchedFoldersViewModel::select(int row) {
    const WatchedFolder* folder = rows_.folderAt(row);
    if (!folder) return;
    selection_ = folder->id;
    selectedRow_ = row;
    emit selectionChanged();
}

void WatchedFoldersViewModel::moveSelection(int steps) {
    if (selectedRow_ < 0) return selectFirst();
    select(std::clamp(selectedRow_ + steps, 0, rows_.rowCount() - 1));
}

void WatchedFoldersViewModel::selectFirst() {
    select(0);
}

void WatchedFoldersViewModel::selectLast() {
    select(rows_.rowCount() - 1);
}

void WatchedFoldersViewModel::typeAhead(const QString& typed) {
    const auto name = [this](int row) { return std::optional(rows_.folderAt(row)->displayName); };
    const auto row = typeAhead_.find(typed.toStdString(), std::chrono::steady_clock::now(), selectedRow_,
                                     rows_.rowCount(), name);
    if (row) select(*row);
}

void WatchedFoldersViewModel::refreshDates() {
    rows_.refreshDates();
}

}  // namespace cairnfield
