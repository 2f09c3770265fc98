#pragma once
// What the window's frame shows: which section is chosen, and the storage status below the sidebar while
// space is low. Main thread only. It outlives the window: a window that is opened again shows the section
// that the last one showed.

#include "App/AppModel.h"
#include "Features/Lists/TypeAhead.h"
#include "Features/Root/SidebarModel.h"
#include "Features/Root/SidebarSection.h"
#include "Shared/Concurrency/TaskHandle.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace cairnfield {

class RootViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(cairnfield::SidebarModel* sections READ sections CONSTANT)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(QString section READ section NOTIFY selectionChanged)
    Q_PROPERTY(QString title READ title NOTIFY selectionChanged)
    Q_PROPERTY(QString symbolName READ symbolName NOTIFY selectionChanged)
    Q_PROPERTY(bool showsStorageFooter READ showsStorageFooter NOTIFY storageChanged)
    Q_PROPERTY(QString levelText READ levelText NOTIFY storageChanged)
    Q_PROPERTY(QString levelSymbolName READ levelSymbolName NOTIFY storageChanged)
    Q_PROPERTY(QString levelTint READ levelTint NOTIFY storageChanged)
    Q_PROPERTY(QString freeText READ freeText NOTIFY storageChanged)
    Q_PROPERTY(bool quitsAfterCleanup READ quitsAfterCleanup NOTIFY quitsAfterCleanupChanged)

public:
    /// `model` outlives the view model. `started` is the model's start-up, which the first appearance waits
    /// for.
    RootViewModel(AppModel& model, TaskHandle<> started, QObject* parent = nullptr);

    [[nodiscard]] SidebarModel* sections() { return &sections_; }
    [[nodiscard]] SidebarSection selection() const { return selection_; }
    void setSelection(SidebarSection section);
    /// -1 for a section without a row.
    [[nodiscard]] int selectedRow() const;
    [[nodiscard]] QString section() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString symbolName() const;

    /// Only while space is low: it leads to what can be cleaned.
    [[nodiscard]] bool showsStorageFooter() const;
    [[nodiscard]] QString levelText() const;
    [[nodiscard]] QString levelSymbolName() const;
    [[nodiscard]] QString levelTint() const;
    [[nodiscard]] QString freeText() const;

    /// The person asked for the end, and it waits.
    [[nodiscard]] bool quitsAfterCleanup() const { return quitsAfterCleanup_; }
    void showThatQuitWaits();

    /// The first time, the worktrees are looked for, when there are folders to look in and nothing was found
    /// yet.
    Q_INVOKABLE void appeared();
    /// A row that does not exist changes nothing.
    Q_INVOKABLE void select(int row);
    Q_INVOKABLE void selectWorktrees() { setSelection(SidebarSection::worktrees); }
    Q_INVOKABLE void selectPreferences() { setSelection(SidebarSection::preferences); }
    Q_INVOKABLE void typeAhead(const QString& typed);

signals:
    void selectionChanged();
    void storageChanged();
    void quitsAfterCleanupChanged();

private:
    AppModel& model_;
    const TaskHandle<> started_;
    SidebarModel sections_;
    SidebarSection selection_ = SidebarSection::overview;
    TypeAhead typeAhead_;
    bool hasAppeared_ = false;
    bool quitsAfterCleanup_ = false;
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
