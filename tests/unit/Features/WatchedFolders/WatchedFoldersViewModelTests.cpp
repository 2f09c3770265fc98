#include "Features/WatchedFolders/WatchedFoldersViewModel.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/EventLoop.h"
#include "support/FakeWorkspace.h"
#include "support/QtApplication.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WatchedFoldersScreen : public testing::Test {
protected:
    AppState& state() { return AppModelStaging::state(*app.model); }

    void stage(std::vector<WatchedFolder> folders) {
        state().watchedFolders.set(std::move(folders));
        screen.flush();
    }

    // Lets the model work until it watches so many folders and has scanned them, then looks at the screen.
    void waitForFolders(std::size_t count) {
        ASSERT_TRUE(app.loop.runUntil([&] {
            return state().watchedFolders.get().size() == count &&
                   state().folderScanResults.get().size() == count && state().scanningFolderIDs.get().empty();
        }));
        screen.flush();
    }

    QtApplication qt;
    AppHarness app;
    FakeWorkspace workspace;
    WatchedFoldersViewModel screen{*app.model, workspace, app.wallClock, app.home.path()};
};

TEST_F(WatchedFoldersScreen, SaysThatNothingIsWatched) {
    EXPECT_FALSE(screen.showsList());
    EXPECT_EQ(screen.emptyTitle(), "Nothing is being watched");
    EXPECT_EQ(screen.emptyMessage(),
              "Cairnfield only scans folders you add here. Point it at the directory that holds your "
              "repositories.");
    EXPECT_EQ(screen.emptySymbolName(), "folder.badge.plus");
    EXPECT_EQ(screen.emptyActionTitle(), "Add folder…");
    EXPECT_FALSE(screen.isImporting());
}

TEST_F(WatchedFoldersScreen, AddsATypedFolderAndScansIt) {
    app.home.write("code/atlas/file", "content");
    screen.setImporting(true);
    screen.addTyped("~/code/");
    waitForFolders(1);
    EXPECT_FALSE(screen.isImporting());
    EXPECT_TRUE(screen.showsList());
    EXPECT_EQ(screen.rows()->item(0).name, "code");
    EXPECT_TRUE(screen.rows()->item(0).isSizeKnown);
    EXPECT_EQ(screen.rows()->item(0).largest[0].toMap()["name"], "atlas");
    EXPECT_EQ(screen.notice(), "");
    ASSERT_TRUE(app.loop.runUntil([&] { return state().worktreeRefreshError.get().has_value(); }))
        << "the worktrees are asked for in the same task; git was not looked for, which a refresh tells";
}

TEST_F(WatchedFoldersScreen, AddsAChosenFolderByteForByte) {
    const std::string name = "a b\xff\n%";
    app.home.makeDirectory(name);
    screen.setImporting(true);
    screen.addChosen(QUrl::fromEncoded(QByteArray("file://") + app.home.path().c_str() + "/a%20b%FF%0A%25"));
    waitForFolders(1);
    EXPECT_FALSE(screen.isImporting());
    EXPECT_EQ(state().watchedFolders.get()[0].path, app.home.path().appending(name));
}

TEST_F(WatchedFoldersScreen, KeepsTheSheetWithTheReasonWhenThereIsNoSuchFolder) {
    const FilePath file = app.home.write("file");
    screen.setImporting(true);
    screen.addTyped("code");
    EXPECT_EQ(screen.importError(), "Type the whole path of a folder, starting with a slash.");
    for (const QString& path : {QString("/no/such/folder"), QString::fromStdString(file.bytes())}) {
        screen.addTyped(path);
        EXPECT_EQ(screen.importError(), "") << "nobody has looked yet";
        ASSERT_TRUE(app.loop.runUntil([&] { return !screen.importError().isEmpty(); }));
        EXPECT_EQ(screen.importError(), "There is no folder at this path.");
    }
    EXPECT_TRUE(screen.isImporting());
    EXPECT_THAT(state().watchedFolders.get(), IsEmpty());
    screen.setImporting(false);
    EXPECT_EQ(screen.importError(), "");
}

/// Keeps the threads that may block busy until it is told to let go.
class BusyThreads {
public:
    BusyThreads(Executor& threads, int count) {
        for (int i = 0; i < count; ++i) held_.push_back(spawn(threads, hold(gate_)));
    }
    void letGo() {
        gate_.count_down();
        for (const TaskHandle<>& task : held_) waitFor(task);
        held_.clear();
    }
    ~BusyThreads() {
        if (!held_.empty()) letGo();
    }
    BusyThreads(const BusyThreads&) = delete;
    BusyThreads& operator=(const BusyThreads&) = delete;

private:
    static Task<> hold(std::latch& gate) {
        gate.wait();
        co_return;
    }

    std::latch gate_{1};
    std::vector<TaskHandle<>> held_;
};

TEST_F(WatchedFoldersScreen, DoesNotWaitForAFolderThatIsSlowToAnswerAndSaysSo) {
    app.home.makeDirectory("code");
    BusyThreads busy(app.blocking, 2);
    screen.setImporting(true);
    screen.addTyped("~/code");
    EXPECT_TRUE(screen.isImporting());
    ASSERT_TRUE(runUntil([&] { return !screen.importError().isEmpty(); }, "a word about the wait"));
    EXPECT_EQ(screen.importError(), "This folder has not answered yet.");
    busy.letGo();
    waitForFolders(1);
    EXPECT_EQ(screen.importError(), "");
    EXPECT_FALSE(screen.isImporting());
}

TEST_F(WatchedFoldersScreen, AddsNothingWhenTheChoosingEndsBeforeTheFolderAnswered) {
    app.home.makeDirectory("code");
    app.home.makeDirectory("other");
    BusyThreads busy(app.blocking, 2);
    screen.setImporting(true);
    screen.addTyped("~/code");
    screen.setImporting(false);
    screen.addTyped("~/other");
    busy.letGo();
    waitForFolders(1);
    EXPECT_EQ(state().watchedFolders.get()[0].path, app.home.path().appending("other"));
}

TEST_F(WatchedFoldersScreen, LetsTheChooserBeginAtHome) {
    EXPECT_EQ(screen.firstFolder().toLocalFile().toStdString(), app.home.path().bytes());
}

TEST_F(WatchedFoldersScreen, ChangesNothingWhenTheChoosingIsCancelled) {
    screen.setImporting(true);
    screen.setImporting(false);
    EXPECT_THAT(state().watchedFolders.get(), IsEmpty());
    EXPECT_EQ(screen.notice(), "");
}

TEST_F(WatchedFoldersScreen, TellsOnTheScreenWhyAFolderCouldNotBeAdded) {
    app.home.makeDirectory("code");
    // A file where the program's folder should be: nothing can be stored.
    app.home.write("data", "in the way");
    screen.addTyped("~/code");
    ASSERT_TRUE(app.loop.runUntil([&] { return state().folderError.get().has_value(); }));
    screen.flush();
    EXPECT_NE(screen.notice(), "");
    EXPECT_FALSE(screen.showsList());
}

TEST_F(WatchedFoldersScreen, RemovesOnlyASelectedFolder) {
    app.home.makeDirectory("code");
    screen.addTyped("~/code");
    waitForFolders(1);
    EXPECT_FALSE(screen.canRemove());
    screen.removeSelected();
    screen.select(0);
    EXPECT_TRUE(screen.canRemove());
    screen.removeSelected();
    waitForFolders(0);
    EXPECT_FALSE(screen.showsList());
    EXPECT_FALSE(screen.canRemove());
    EXPECT_EQ(screen.selection(), std::nullopt);
}

TEST_F(WatchedFoldersScreen, RescansOneFolderOrAllOfThem) {
    const FilePath folder = app.home.makeDirectory("code");
    screen.addTyped("~/code");
    waitForFolders(1);
    const auto count = [&] { return state().folderScanResults.get().begin()->second.fileCount; };
    EXPECT_EQ(count(), 0);
    app.home.write("code/one");
    screen.rescan(0);
    ASSERT_TRUE(app.loop.runUntil([&] { return count() == 1 && state().scanningFolderIDs.get().empty(); }));
    app.home.write("code/two");
    screen.rescanAll();
    ASSERT_TRUE(app.loop.runUntil([&] { return count() == 2; }));
}

TEST_F(WatchedFoldersScreen, RevealsTheFolderOfTheRowOrTellsWhyNot) {
    stage({WatchedFolder::make(FilePath("/code")), WatchedFolder::make(FilePath("/work\xff"))});
    screen.reveal(1);
    EXPECT_THAT(workspace.revealed, ElementsAre(FilePath("/work\xff")));
    EXPECT_EQ(screen.notice(), "");
    workspace.answer = "No file manager was found.";
    screen.reveal(0);
    EXPECT_EQ(screen.notice(), "No file manager was found.");
}

TEST_F(WatchedFoldersScreen, KeepsTheSelectionByIdentity) {
    const WatchedFolder code = WatchedFolder::make(FilePath("/code"));
    const WatchedFolder work = WatchedFolder::make(FilePath("/work"));
    stage({code, work});
    screen.select(1);
    stage({work});
    EXPECT_EQ(screen.selectedRow(), 0);
    stage({code});
    EXPECT_EQ(screen.selectedRow(), -1);
}

TEST_F(WatchedFoldersScreen, MovesTheSelectionByKeys) {
    stage({WatchedFolder::make(FilePath("/alpha")), WatchedFolder::make(FilePath("/beta"))});
    screen.moveSelection(1);
    EXPECT_EQ(screen.selectedRow(), 0);
    screen.moveSelection(1);
    screen.moveSelection(1);
    EXPECT_EQ(screen.selectedRow(), 1);
    screen.selectFirst();
    EXPECT_EQ(screen.selectedRow(), 0);
    screen.typeAhead("b");
    EXPECT_EQ(screen.selectedRow(), 1);
    screen.selectLast();
    EXPECT_EQ(screen.selectedRow(), 1);
}

TEST_F(WatchedFoldersScreen, FollowsTheStateInTheNextTurnOfTheLoop) {
    state().watchedFolders.set({WatchedFolder::make(FilePath("/code"))});
    EXPECT_FALSE(screen.showsList());
    QtApplication::processEvents();
    EXPECT_TRUE(screen.showsList());
}

TEST_F(WatchedFoldersScreen, SaysWhatShouldBeKnownAboutItsFileAndNoOther) {
    EXPECT_EQ(screen.fileNotice(), "");
    state().storedFileNotices.set(
        {{"watched-folders.json", "It is kept."}, {"other.json", "not shown here"}});
    screen.flush();
    EXPECT_EQ(screen.fileNotice(), "It is kept.");
    state().storedFileNotices.set({{"other.json", "not shown here"}});
    screen.flush();
    EXPECT_EQ(screen.fileNotice(), "");
}

}  // namespace
}  // namespace cairnfield
