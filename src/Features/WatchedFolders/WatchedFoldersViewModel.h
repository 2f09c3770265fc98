#pragma once
// What the screen of the watched folders shows and does: reads the model's state, keeps the selection and
// whether a folder is being chosen, and words the rest. Changes of the state reach the screen once for each
// turn of the event loop. Main thread only.

#include "App/AppModel.h"
#include "Features/Lists/TypeAhead.h"
#include "Features/WatchedFolders/WatchedFolderListModel.h"
#include "Platform/Workspace.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <optional>
#include <vector>

namespace cairnfield {

class WatchedFoldersViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(bool showsList READ showsList NOTIFY screenChanged)
    Q_PROPERTY(QString emptyTitle READ emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyMessage READ emptyMessage CONSTANT)
    Q_PROPERTY(QString emptySymbolName READ emptySymbolName CONSTANT)
    Q_PROPERTY(QString emptyActionTitle READ emptyActionTitle CONSTANT)
    Q_PROPERTY(QString notice READ notice NOTIFY screenChanged)
    Q_PROPERTY(QString fileNotice READ fileNotice NOTIFY screenChanged)
    Q_PROPERTY(cairnfield::WatchedFolderListModel* rows READ rows CONSTANT)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(bool canRemove READ canRemove NOTIFY selectionChanged)
    Q_PROPERTY(bool isImporting READ isImporting WRITE setImporting NOTIFY importingChanged)
    Q_PROPERTY(QString importError READ importError NOTIFY importingChanged)
    Q_PROPERTY(QUrl firstFolder READ firstFolder CONSTANT)

public:
    /// The first three outlive the view model. `home` is what "~" stands for.
    WatchedFoldersViewModel(AppModel& model, Workspace& workspace, const WallClock& clock, FilePath home,
                            QObject* parent = nullptr);

    [[nodiscard]] bool showsList() const { return rows_.rowCount() > 0; }
    [[nodiscard]] QString emptyTitle() const;
    [[nodiscard]] QString emptyMessage() const;
    [[nodiscard]] QString emptySymbolName() const;
    [[nodiscard]] QString emptyActionTitle() const;
    /// What went wrong with the last thing asked for; empty when nothing did.
    [[nodiscard]] QString notice() const { return notice_; }
    /// What should be known about the file of the folders; empty while all is well.
    [[nodiscard]] QString fileNotice() const;

    [[nodiscard]] WatchedFolderListModel* rows() { return &rows_; }
    [[nodiscard]] const std::optional<UUID>& selection() const { return selection_; }
    /// -1 for none.
    [[nodiscard]] int selectedRow() const { return selectedRow_; }
    [[nodiscard]] bool canRemove() const { return selectedRow_ >= 0; }

    [[nodiscard]] bool isImporting() const { return isImporting_; }
    void setImporting(bool isImporting);
    /// Why what was typed is no folder to add, or that this is not known yet; empty when it may be.
    [[nodiscard]] QString importError() const { return importError_; }

    /// Where a chooser begins: at home.
    [[nodiscard]] QUrl firstFolder() const;

    /// Adds the folder and ends the choosing, once somebody has looked whether it is there. What names no
    /// folder stays where it was typed, with the reason. Another path, or the end of the choosing, takes the
    /// wish back.
    Q_INVOKABLE void addTyped(const QString& path);
    /// The same for what a chooser gave.
    Q_INVOKABLE void addChosen(const QUrl& folder);
    /// How a chosen folder reads in the field.
    Q_INVOKABLE [[nodiscard]] static QString typedForm(const QUrl& folder);

    Q_INVOKABLE void rescanAll();
    Q_INVOKABLE void removeSelected();
    Q_INVOKABLE void rescan(int row);
    Q_INVOKABLE void reveal(int row);
    Q_INVOKABLE void select(int row);
    /// Stops at either end.
    Q_INVOKABLE void moveSelection(int steps);
    Q_INVOKABLE void selectFirst();
    Q_INVOKABLE void selectLast();
    Q_INVOKABLE void typeAhead(const QString& typed);
    /// The texts that tell time are worded anew: call it when the screen comes into view.
    Q_INVOKABLE void refreshDates();

    /// Brings the screen up to date with the state at once.
    void flush();

signals:
    void screenChanged();
    void selectionChanged();
    void importingChanged();

private:
    void add(const FilePath& folder);
    static Task<> lookAndAdd(AppModel& model, QPointer<WatchedFoldersViewModel> screen, FilePath folder,
                             int look);
    void forgetLook();
    void fail(const char* importError);
    void updateNotice();

    AppModel& model_;
    Workspace& workspace_;
    const FilePath home_;
    WatchedFolderListModel rows_;
    QString notice_;
    QString actionError_;
    std::optional<UUID> selection_;
    int selectedRow_ = -1;
    bool isImporting_ = false;
    QString importError_;
    int look_ = 0;     ///< the number of the look at a path that counts
    QTimer slowLook_;  ///< until it is worth a word
    TypeAhead typeAhead_;
    QTimer updateTimer_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
