#pragma once
// The one gate between "Preserve & Clean…" and anything that changes a repository: looks at one worktree,
// tells what would happen, takes the person's choices, runs the cleanup once and shows how it ended. It keeps
// the worktree as it was when the review began, whatever a refresh finds meanwhile. What was started goes on
// without a window. An answer that comes after the review was closed changes nothing. Main thread only.

#include "App/AppModel.h"
#include "Features/CleanupReview/CleanupReviewText.h"
#include "Features/CleanupReview/CleanupStageModel.h"
#include "Features/CleanupReview/ReviewListModel.h"
#include "Platform/Pasteboard.h"
#include "Services/Cleanup/CleanupChoices.h"
#include "Services/Cleanup/ReviewLook.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <optional>
#include <stop_token>
#include <vector>

namespace cairnfield {

class CleanupReviewViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY phaseChanged)
    Q_PROPERTY(QString phase READ phaseName NOTIFY phaseChanged)
    Q_PROPERTY(bool canClose READ canClose NOTIFY phaseChanged)
    Q_PROPERTY(bool canStart READ canStart NOTIFY phaseChanged)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY phaseChanged)
    Q_PROPERTY(QString blockedMessage READ blockedMessage NOTIFY phaseChanged)
    Q_PROPERTY(QStringList warnings READ warnings NOTIFY phaseChanged)
    Q_PROPERTY(QVariantList found READ found NOTIFY phaseChanged)
    Q_PROPERTY(QVariantMap preserved READ preserved NOTIFY phaseChanged)
    Q_PROPERTY(QStringList sensitiveLines READ sensitiveLines NOTIFY phaseChanged)
    Q_PROPERTY(QString worktreePath READ worktreePath NOTIFY phaseChanged)
    Q_PROPERTY(QStringList rebuildableLines READ rebuildableLines NOTIFY phaseChanged)
    Q_PROPERTY(QVariantMap nested READ nested NOTIFY phaseChanged)
    Q_PROPERTY(QVariantMap nestedThatGo READ nestedThatGo NOTIFY nestedThatGoChanged)
    Q_PROPERTY(QVariantMap outcome READ outcome NOTIFY phaseChanged)
    Q_PROPERTY(bool canCopySummary READ canCopySummary NOTIFY phaseChanged)
    Q_PROPERTY(bool isSignedIn READ isSignedIn NOTIFY signedInChanged)
    Q_PROPERTY(bool includeUntracked READ includeUntracked WRITE setIncludeUntracked NOTIFY choicesChanged)
    Q_PROPERTY(bool includeSensitiveInVault READ includeSensitiveInVault WRITE setIncludeSensitiveInVault
                   NOTIFY choicesChanged)
    Q_PROPERTY(bool includeNestedInVault READ includeNestedInVault WRITE setIncludeNestedInVault NOTIFY
                   choicesChanged)
    Q_PROPERTY(bool createPullRequest READ createPullRequest WRITE setCreatePullRequest NOTIFY choicesChanged)
    Q_PROPERTY(QString commitMessage READ commitMessage WRITE setCommitMessage NOTIFY choicesChanged)
    Q_PROPERTY(cairnfield::CleanupStageModel* stages READ stages CONSTANT)
    Q_PROPERTY(QList<QObject*> lists READ lists CONSTANT)

public:
    enum class Phase { checking, review, blocked, running, finished };

    /// Both outlive the view model.
    CleanupReviewViewModel(AppModel& model, Pasteboard& pasteboard, QObject* parent = nullptr);
    ~CleanupReviewViewModel() override;

    /// Begins the review of a worktree: plan, preflight and a look inside. Refused while a cleanup runs.
    void open(Worktree worktree);
    /// Refused while a cleanup runs.
    Q_INVOKABLE void close();
    /// Runs the cleanup as it was reviewed; only out of a review, and so only once.
    Q_INVOKABLE void start();
    Q_INVOKABLE void copyRecoverySummary();

    /// Absent: there is no review.
    [[nodiscard]] const std::optional<Worktree>& worktree() const { return worktree_; }
    [[nodiscard]] Phase phase() const { return phase_; }
    [[nodiscard]] const std::optional<CleanupReceipt>& receipt() const { return receipt_; }

    [[nodiscard]] bool isOpen() const { return worktree_.has_value(); }
    [[nodiscard]] QString phaseName() const;
    [[nodiscard]] bool canClose() const { return !isOpen() || phase_ != Phase::running; }
    [[nodiscard]] bool canStart() const { return plan_.has_value(); }
    [[nodiscard]] QString subtitle() const;
    [[nodiscard]] QString blockedMessage() const;
    [[nodiscard]] QStringList warnings() const;
    /// Of {label, value}.
    [[nodiscard]] QVariantList found() const;
    /// {isPushed, text, symbolName, rows of {label, value}}.
    [[nodiscard]] QVariantMap preserved() const;
    [[nodiscard]] QStringList sensitiveLines() const;
    [[nodiscard]] QString worktreePath() const;
    [[nodiscard]] QStringList rebuildableLines() const;
    /// {statement, lines} of what looks sensitive below the top, and of what of it disappears; empty or full.
    [[nodiscard]] QVariantMap nested() const;
    [[nodiscard]] QVariantMap nestedThatGo() const;
    /// {title, symbolName, tint, failure, note, whereabouts of {label, value}}; texts may be empty.
    [[nodiscard]] QVariantMap outcome() const;
    [[nodiscard]] bool canCopySummary() const { return receipt_.has_value(); }
    [[nodiscard]] bool isSignedIn() const;
    [[nodiscard]] bool includeUntracked() const { return choices_.includeUntracked; }
    void setIncludeUntracked(bool isOn);
    [[nodiscard]] bool includeSensitiveInVault() const { return choices_.includeSensitiveInVault; }
    void setIncludeSensitiveInVault(bool isOn);
    [[nodiscard]] bool includeNestedInVault() const { return choices_.includeNestedInVault; }
    void setIncludeNestedInVault(bool isOn);
    /// As the control shows it. A pull request is only made for who is signed in.
    [[nodiscard]] bool createPullRequest() const { return choices_.createPullRequest; }
    void setCreatePullRequest(bool isOn);
    [[nodiscard]] QString commitMessage() const;
    void setCommitMessage(const QString& text);
    [[nodiscard]] CleanupStageModel* stages() { return &stages_; }
    /// Every path that the review knows of: the changed, the untracked and the ignored ones.
    [[nodiscard]] QList<QObject*> lists() { return {&changed_, &untracked_, &ignored_}; }

signals:
    void phaseChanged();
    void choicesChanged();
    void nestedThatGoChanged();
    void signedInChanged();

private:
    friend class CleanupReviewStaging;  // pictures set the phase that they show

    static Task<> runPreflight(AppModel& model, Worktree worktree, QPointer<CleanupReviewViewModel> sheet,
                               std::uint64_t opening, std::stop_token abandoned);
    static Task<> runCleanup(AppModel& model, CleanupPlan plan, QPointer<CleanupReviewViewModel> sheet);
    void choose(const CleanupChoices& choices);
    void showLists();
    void preflightEnded(CleanupPreflightReport report, ReviewLook look = {});
    void cleanupEnded(std::optional<CleanupReceipt> receipt);
    void followCleanup();

    AppModel& model_;
    Pasteboard& pasteboard_;
    std::uint64_t opening_ = 0;  ///< of the review that an answer may change
    std::optional<Worktree> worktree_;
    Phase phase_ = Phase::checking;
    std::stop_source abandoning_;  ///< of the look that is under way
    std::optional<CleanupPlan> plan_;
    std::optional<CleanupPreflightReport> report_;
    CleanupChoices choices_;
    std::optional<CleanupReceipt> receipt_;
    CleanupStageModel stages_;
    ReviewListModel changed_;
    ReviewListModel untracked_;
    ReviewListModel ignored_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
