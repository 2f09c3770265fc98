#include "Features/CleanupReview/CleanupReviewViewModel.h"

#include "Features/CleanupReview/ReviewListText.h"
#include "Features/Presentation/QtText.h"

#include <array>
#include <utility>

namespace cairnfield {

namespace {

constexpr std::array phaseNames{"checking", "review", "blocked", "running", "finished"};

QStringList shownLines(const std::vector<std::string>& lines) {
    QStringList list;
    for (const std::string& line : lines) list << shown(line);
    return list;
}

QVariantMap shownFiles(const NamedFilesText& files) {
    return {{"statement", shown(files.statement)}, {"lines", shownLines(files.lines)}};
}

}  // namespace

CleanupReviewViewModel::CleanupReviewViewModel(AppModel& model, Pasteboard& pasteboard, QObject* parent)
    : QObject(parent), model_(model), pasteboard_(pasteboard) {
    const AppState& state = model_.state();
    subscriptions_.push_back(state.activeCleanup.observe([this] { followCleanup(); }));
    subscriptions_.push_back(state.githubStatus.observe([this] { emit signedInChanged(); }));
}

CleanupReviewViewModel::~CleanupReviewViewModel() {
    abandoning_.request_stop();
}

void CleanupReviewViewModel::open(Worktree worktree) {
    if (!canClose()) return;
    ++opening_;
    abandoning_.request_stop();
    abandoning_ = std::stop_source();
    worktree_ = std::move(worktree);
    phase_ = Phase::checking;
    plan_ = model_.makePlan(*worktree_);
    report_.reset();
    receipt_.reset();
    choices_ = CleanupChoices::proposed(*plan_);
    showLists();
    emit choicesChanged();
    emit phaseChanged();
    emit nestedThatGoChanged();
    model_.run(runPreflight(model_, *worktree_, this, opening_, abandoning_.get_token()));
}

void CleanupReviewViewModel::close() {
    if (!isOpen() || !canClose()) return;
    ++opening_;
    abandoning_.request_stop();
    worktree_.reset();
    plan_.reset();
    report_.reset();
    receipt_.reset();
    showLists();
    emit phaseChanged();
    emit nestedThatGoChanged();
}

void CleanupReviewViewModel::showLists() {
    const Worktree shown = worktree_.value_or(Worktree());
    std::vector<std::string> ignored;
    ignored.reserve(shown.ignoredEntries.size());
    for (const IgnoredEntry& entry : shown.ignoredEntries) ignored.push_back(ignoredEntryLine(entry));
    changed_.show(changedFilesTitle(shown.status.changedPaths.size()), shown.status.changedPaths);
    untracked_.show(untrackedFilesTitle(shown.status.untrackedPaths.size()), shown.status.untrackedPaths);
    ignored_.show(ignoredEntriesTitle(ignored.size()), std::move(ignored));
}

// The person may have closed the sheet or even ended the program while it looked. The sheet shows nothing to
// start before both have answered: what it does not know of, it cannot offer to keep.
Task<> CleanupReviewViewModel::runPreflight(AppModel& model, Worktree worktree,
                                            QPointer<CleanupReviewViewModel> sheet, std::uint64_t opening,
                                            std::stop_token abandoned) {
    CleanupPreflightReport report = co_await model.preflight(worktree);
    ReviewLook look;
    if (report.passed) {
        ReviewLook found = co_await model.lookForReview(std::move(worktree), std::move(abandoned));
        look = std::move(found);
    }
    if (sheet && sheet->opening_ == opening) sheet->preflightEnded(std::move(report), std::move(look));
}

void CleanupReviewViewModel::preflightEnded(CleanupPreflightReport report, ReviewLook look) {
    if (report.passed && look.nested.failure) report = CleanupPreflightReport::failed(*look.nested.failure);
    if (look.missing && look.missing->areMost())
        report.warnings.insert(report.warnings.begin(), missingFilesText(*look.missing));
    phase_ = report.passed ? Phase::review : Phase::blocked;
    report_ = std::move(report);
    if (plan_) plan_->nested = std::move(look.nested);
    emit phaseChanged();
    emit nestedThatGoChanged();
}

void CleanupReviewViewModel::start() {
    if (!plan_ || phase_ != Phase::review) return;
    phase_ = Phase::running;
    stages_.moveTo(CleanupStage::preparing);
    emit phaseChanged();
    model_.run(runCleanup(model_, applied(*plan_, choices_, isSignedIn()), this));
}

Task<> CleanupReviewViewModel::runCleanup(AppModel& model, CleanupPlan plan,
                                          QPointer<CleanupReviewViewModel> sheet) {
    std::optional<CleanupReceipt> receipt = co_await model.execute(std::move(plan));
    if (sheet) sheet->cleanupEnded(std::move(receipt));
}

void CleanupReviewViewModel::cleanupEnded(std::optional<CleanupReceipt> receipt) {
    receipt_ = std::move(receipt);
    phase_ = Phase::finished;
    emit phaseChanged();
}

// The model forgets the stage when the pipeline is through, and then has the lists to bring up to date: until
// that is done the last stage stays.
void CleanupReviewViewModel::followCleanup() {
    const std::optional<CleanupProgress>& progress = model_.state().activeCleanup.get();
    if (phase_ == Phase::running && progress) stages_.moveTo(progress->stage);
}

void CleanupReviewViewModel::copyRecoverySummary() {
    if (receipt_) pasteboard_.clearAndWrite(receipt_->recoverySummary());
}

QString CleanupReviewViewModel::phaseName() const {
    return QString::fromLatin1(phaseNames[static_cast<std::size_t>(phase_)]);
}

QString CleanupReviewViewModel::subtitle() const {
    return worktree_ ? shown(reviewSubtitle(*worktree_)) : QString();
}

QString CleanupReviewViewModel::blockedMessage() const {
    return phase_ == Phase::blocked && report_ ? shown(blockedText(*report_)) : QString();
}

QStringList CleanupReviewViewModel::warnings() const {
    return report_ ? shownLines(warningLines(*report_)) : QStringList();
}

QVariantList CleanupReviewViewModel::found() const {
    return worktree_ ? shownRows(foundRows(*worktree_)) : QVariantList();
}

QVariantMap CleanupReviewViewModel::preserved() const {
    const PreservedText text = plan_ && report_ ? preservedText(*plan_, *report_) : PreservedText{};
    return {{"isPushed", text.isPushed},
            {"text", shown(text.statement.text)},
            {"symbolName", shown(text.statement.symbolName)},
            {"rows", shownRows(text.rows)}};
}

QStringList CleanupReviewViewModel::sensitiveLines() const {
    return worktree_ ? shownLines(cairnfield::sensitiveLines(*worktree_)) : QStringList();
}

QString CleanupReviewViewModel::worktreePath() const {
    return worktree_ ? shown(worktree_->path.display()) : QString();
}

QStringList CleanupReviewViewModel::rebuildableLines() const {
    return worktree_ ? shownLines(cairnfield::rebuildableLines(*worktree_)) : QStringList();
}

QVariantMap CleanupReviewViewModel::nested() const {
    return shownFiles(plan_ ? nestedFilesText(plan_->nested) : NamedFilesText());
}

QVariantMap CleanupReviewViewModel::nestedThatGo() const {
    if (!plan_) return shownFiles({});
    return shownFiles(nestedFilesThatGoText(plan_->nested, choices_.includeNestedInVault));
}

QVariantMap CleanupReviewViewModel::outcome() const {
    ReceiptText text;
    if (isOpen() && phase_ == Phase::finished)
        text = receipt_ ? receiptText(*receipt_) : neverBegunText(model_.state().gitStatusMessage.get());
    return {{"title", shown(text.title.text)}, {"symbolName", shown(text.title.symbolName)},
            {"tint", shown(text.tint)},        {"failure", shown(text.failure)},
            {"note", shown(text.note)},        {"whereabouts", shownRows(text.whereabouts)}};
}

bool CleanupReviewViewModel::isSignedIn() const {
    return !model_.state().githubStatus.get().authenticatedHosts.empty();
}

QString CleanupReviewViewModel::commitMessage() const {
    return shown(choices_.commitMessage);
}

void CleanupReviewViewModel::setIncludeUntracked(bool isOn) {
    CleanupChoices choices = choices_;
    choices.includeUntracked = isOn;
    choose(choices);
}

void CleanupReviewViewModel::setIncludeSensitiveInVault(bool isOn) {
    CleanupChoices choices = choices_;
    choices.includeSensitiveInVault = isOn;
    choose(choices);
}

void CleanupReviewViewModel::setIncludeNestedInVault(bool isOn) {
    CleanupChoices choices = choices_;
    choices.includeNestedInVault = isOn;
    choose(choices);
}

void CleanupReviewViewModel::setCreatePullRequest(bool isOn) {
    CleanupChoices choices = choices_;
    choices.createPullRequest = isOn;
    choose(choices);
}

void CleanupReviewViewModel::setCommitMessage(const QString& text) {
    CleanupChoices choices = choices_;
    choices.commitMessage = text.toStdString();
    choose(choices);
}

void CleanupReviewViewModel::choose(const CleanupChoices& choices) {
    if (choices == choices_) return;
    const bool nestedChanges = choices.includeNestedInVault != choices_.includeNestedInVault;
    choices_ = choices;
    emit choicesChanged();
    if (nestedChanges) emit nestedThatGoChanged();
}

}  // namespace cairnfield
