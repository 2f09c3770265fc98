#pragma once
// What the worktree screen shows and does: reads the model's state, keeps the search, the filter, the
// grouping and the selection, and words everything else. Changes of the state reach the screen at most ten
// times a second, however fast sizes come in; what the person does on the screen takes effect at once. Main
// thread only.

#include "App/AppModel.h"
#include "Features/CleanupReview/CleanupReviewViewModel.h"
#include "Features/Lists/TypeAhead.h"
#include "Features/Worktrees/WorktreeDetail.h"
#include "Features/Worktrees/WorktreeListModel.h"
#include "Platform/Workspace.h"

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <optional>
#include <vector>

namespace cairnfield {

class WorktreesViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(bool showsList READ showsList NOTIFY screenChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY screenChanged)
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY screenChanged)
    Q_PROPERTY(QString emptySymbolName READ emptySymbolName NOTIFY screenChanged)
    Q_PROPERTY(QString emptyActionTitle READ emptyActionTitle NOTIFY screenChanged)
    Q_PROPERTY(QString progressText READ progressText NOTIFY screenChanged)
    Q_PROPERTY(double progressFraction READ progressFraction NOTIFY screenChanged)
    Q_PROPERTY(bool canScan READ canScan NOTIFY screenChanged)
    Q_PROPERTY(bool canCheckPullRequests READ canCheckPullRequests NOTIFY screenChanged)
    Q_PROPERTY(QString notice READ notice NOTIFY screenChanged)
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY queryChanged)
    Q_PROPERTY(QStringList filterTitles READ filterTitles CONSTANT)
    Q_PROPERTY(int filterIndex READ filterIndex WRITE setFilterIndex NOTIFY queryChanged)
    Q_PROPERTY(QList<QString> groupingTitles READ groupingTitles CONSTANT)
    Q_PROPERTY(int groupingIndex READ groupingIndex WRITE setGroupingIndex NOTIFY queryChanged)
    Q_PROPERTY(cairnfield::WorktreeListModel* rows READ rows CONSTANT)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(cairnfield::WorktreeDetail* detail READ detail CONSTANT)

public:
    /// All four outlive the view model.
    WorktreesViewModel(AppModel& model, Workspace& workspace, const WallClock& clock,
                       CleanupReviewViewModel& review, QObject* parent = nullptr);

    [[nodiscard]] bool showsList() const { return screen_.showsList; }
    [[nodiscard]] QString emptyTitle() const { return screen_.emptyTitle; }
    [[nodiscard]] QString emptyMessage() const { return screen_.emptyMessage; }
    [[nodiscard]] QString emptySymbolName() const { return screen_.emptySymbolName; }
    /// Empty texts stand for no button, no progress and nothing wrong.
    [[nodiscard]] QString emptyActionTitle() const { return screen_.emptyActionTitle; }
    [[nodiscard]] QString progressText() const { return screen_.progressText; }
    [[nodiscard]] double progressFraction() const { return screen_.progressFraction; }
    [[nodiscard]] bool canScan() const { return screen_.canScan; }
    [[nodiscard]] bool canCheckPullRequests() const { return screen_.canCheckPullRequests; }
    [[nodiscard]] QString notice() const { return screen_.notice; }

    [[nodiscard]] QString searchText() const { return searchText_; }
    void setSearchText(const QString& text);
    [[nodiscard]] QStringList filterTitles() const;
    /// 0 for all, else 1 more than the disposition's place.
    [[nodiscard]] int filterIndex() const;
    void setFilterIndex(int index);
    [[nodiscard]] QStringList groupingTitles() const;
    [[nodiscard]] int groupingIndex() const;
    void setGroupingIndex(int index);

    [[nodiscard]] WorktreeListModel* rows() { return &rows_; }
    [[nodiscard]] const std::optional<FilePath>& selection() const { return selection_; }
    /// -1 with no selection or while the filter hides it.
    [[nodiscard]] int selectedRow() const { return selectedRow_; }
    [[nodiscard]] WorktreeDetail* detail() { return &detail_; }
    /// The worktree under review, as it was when the review began.
    [[nodiscard]] const std::optional<Worktree>& cleanupTarget() const { return review_.worktree(); }

    Q_INVOKABLE void scan();
    Q_INVOKABLE void checkPullRequests();
    /// A header cannot be selected.
    Q_INVOKABLE void select(int row);
    /// To the worktree so many rows of worktrees further on, headers passed over; stops at either end.
    Q_INVOKABLE void moveSelection(int steps);
    Q_INVOKABLE void selectFirst();
    Q_INVOKABLE void selectLast();
    Q_INVOKABLE void typeAhead(const QString& typed);
    // For the selected worktree; without one they do nothing.
    Q_INVOKABLE void reveal();
    Q_INVOKABLE void openTerminal();
    Q_INVOKABLE void togglePin();
    Q_INVOKABLE void preserveAndClean();
    /// The texts that tell time are worded anew: call it when the screen comes into view.
    Q_INVOKABLE void refreshDates();

    /// Brings the screen up to date with the state at once.
    void flush();

signals:
    void screenChanged();
    void queryChanged();
    void selectionChanged();
    void reviewEnded();

private:
    struct Screen {
        bool showsList = false;
        QString emptyTitle, emptyMessage, emptySymbolName, emptyActionTitle;
        QString progressText, notice;
        double progressFraction = 0;
        bool canScan = true;
        bool canCheckPullRequests = false;
        bool operator==(const Screen&) const = default;
    };

    void scheduleFlush();
    void setQuery(WorktreeQuery query);
    [[nodiscard]] Screen screenNow() const;
    void updateScreen();
    void updateSelection();
    void selectRowFrom(int row, int direction);
    [[nodiscard]] const ListedWorktree* selected() const;

    AppModel& model_;
    Workspace& workspace_;
    const WallClock& clock_;
    CleanupReviewViewModel& review_;
    QString searchText_;
    WorktreeListModel rows_;
    WorktreeDetail detail_;
    Screen screen_;
    QString actionError_;
    std::optional<FilePath> selection_;
    int selectedRow_ = -1;
    TypeAhead typeAhead_;
    QTimer updateTimer_;
    std::chrono::steady_clock::time_point lastUpdate_{};
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
