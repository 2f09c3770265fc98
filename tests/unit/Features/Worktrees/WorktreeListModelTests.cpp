#include "Features/Worktrees/WorktreeListModel.h"
#include "SampleWorktrees.h"
#include "support/SettableWallClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Writes down each signal as a word with its rows, and keeps its own list as a view would.
class SignalLog : public QObject {
public:
    explicit SignalLog(WorktreeListModel& model) : model_(model), mirror_(titles()) {
        connect(&model, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex&, int first, int last) {
                    note("insert", first, last);
                    for (int row = first; row <= last; ++row)
                        mirror_.insert(mirror_.begin() + row, title(row));
                });
        connect(&model, &QAbstractItemModel::rowsRemoved, this,
                [this](const QModelIndex&, int first, int last) {
                    note("remove", first, last);
                    mirror_.erase(mirror_.begin() + first, mirror_.begin() + last + 1);
                });
        connect(&model, &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex& first, const QModelIndex& last) {
                    note("change", first.row(), last.row());
                });
        connect(&model, &QAbstractItemModel::layoutChanged, this, [this] {
            lines.emplace_back("reorder");
            mirror_.clear();
            for (int row = 0; row < model_.rowCount(); ++row) mirror_.push_back(title(row));
        });
        connect(&model, &QAbstractItemModel::modelReset, this, [this] {
            lines.emplace_back("reset");
            mirror_ = titles();
        });
    }

    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> result;
        for (int row = 0; row < model_.rowCount(); ++row) result.push_back(title(row));
        return result;
    }
    [[nodiscard]] const std::vector<std::string>& mirror() const { return mirror_; }

    std::vector<std::string> lines;

private:
    [[nodiscard]] std::string title(int row) const { return model_.item(row).title.toStdString(); }
    void note(const char* word, int first, int last) {
        lines.push_back(std::string(word) + " " + std::to_string(first) + "-" + std::to_string(last));
    }

    WorktreeListModel& model_;
    std::vector<std::string> mirror_;
};

class WorktreeListModelTest : public testing::Test {
protected:
    WorktreeListModelTest() { clock_.set(sampleNow); }

    SettableWallClock clock_;
    WorktreeListModel model_{clock_};
};

TEST_F(WorktreeListModelTest, ShowsEachProjectsHeaderAndThenItsWorktrees) {
    model_.update(
        {worktree({.branch = "main", .size = 2'000'000'000, .isMain = true}), worktree({.branch = "fix"})},
        std::nullopt);
    ASSERT_EQ(model_.rowCount(), 3);
    EXPECT_EQ(model_.index(0).data(WorktreeListModel::rowKindRole).value<WorktreeListModel::RowKind>(),
              WorktreeListModel::RowKind::header);
    const WorktreeListItem header = model_.item(0);
    EXPECT_TRUE(header.isHeader);
    EXPECT_EQ(header.title, "atlas");
    EXPECT_EQ(header.summary, "2 GB total, 2 worktrees");
    EXPECT_EQ(header.details, " · 1 linked");
    const auto item = model_.index(1).data(WorktreeListModel::itemRole).value<WorktreeListItem>();
    EXPECT_FALSE(item.isHeader);
    EXPECT_EQ(item.title, "main");
    EXPECT_EQ(item.size, "2 GB");
    EXPECT_EQ(item.symbolName, "checkmark.circle");
    EXPECT_EQ(item.tint, "green");
    EXPECT_EQ(model_.worktreeAt(0), nullptr);
    EXPECT_EQ(model_.worktreeAt(2)->id, FilePath("/code/atlas/fix"));
    EXPECT_EQ(model_.worktreeAt(3), nullptr);
    EXPECT_EQ(model_.worktreeAt(-1), nullptr);
}

TEST_F(WorktreeListModelTest, HeadsASafetySectionWithTheDispositionAlone) {
    model_.setQuery({.grouping = WorktreeGrouping::safety});
    model_.update({worktree({.safety = WorktreeSafety::activeOrLocked})}, std::nullopt);
    const WorktreeListItem header = model_.item(0);
    EXPECT_EQ(header.title, "In use");
    EXPECT_EQ(header.symbolName, "person.fill.checkmark");
    EXPECT_EQ(header.tint, "purple");
    EXPECT_EQ(header.summary, "");
}

TEST_F(WorktreeListModelTest, TellsOnlyTheRowAndItsHeaderWhenASizeArrives) {
    std::vector<Worktree> worktrees{worktree({.branch = "a"}), worktree({.branch = "b"}),
                                    worktree({.branch = "c"}),
                                    worktree({.repository = "zoo", .branch = "d"})};
    model_.update(worktrees, SizingProgress{0, 4});
    SignalLog log(model_);
    worktrees[2].sizeBytes = 5;
    model_.update(worktrees, SizingProgress{0, 4});
    EXPECT_THAT(log.lines, ElementsAre("change 0-0", "change 3-3"));
    EXPECT_EQ(model_.item(1).size, "—");
    EXPECT_FALSE(model_.item(1).isSizeKnown);
}

TEST_F(WorktreeListModelTest, MovesNoRowUntilMeasuringHasEnded) {
    std::vector<Worktree> worktrees{worktree({.branch = "a"}), worktree({.branch = "b"})};
    model_.update(worktrees, SizingProgress{0, 2});
    worktrees[1].sizeBytes = 9;
    model_.update(worktrees, SizingProgress{1, 2});
    SignalLog log(model_);
    EXPECT_THAT(log.titles(), ElementsAre("atlas", "a", "b"));
    model_.update(worktrees, std::nullopt);
    EXPECT_THAT(log.titles(), ElementsAre("atlas", "b", "a"));
    EXPECT_THAT(log.lines, testing::Contains("reorder"));
    EXPECT_EQ(log.mirror(), log.titles());
}

TEST_F(WorktreeListModelTest, InsertsAndRemovesTheRowsThatComeAndGo) {
    model_.update({worktree({.branch = "a", .size = 3}), worktree({.branch = "b", .size = 2})}, std::nullopt);
    SignalLog log(model_);
    model_.update({worktree({.branch = "a", .size = 3}), worktree({.branch = "new", .size = 2}),
                   worktree({.branch = "b", .size = 2})},
                  std::nullopt);
    EXPECT_THAT(log.lines, ElementsAre("insert 2-2", "change 0-0"));
    log.lines.clear();
    model_.update({worktree({.branch = "new", .size = 2}), worktree({.branch = "b", .size = 2})},
                  std::nullopt);
    EXPECT_THAT(log.lines, ElementsAre("remove 1-1", "change 0-0"));
    EXPECT_EQ(log.mirror(), log.titles());
    EXPECT_EQ(model_.item(0).summary, "4 bytes total, 2 worktrees");
}

TEST_F(WorktreeListModelTest, KeepsAViewThatFollowsItsSignalsInStep) {
    std::vector<Worktree> worktrees;
    for (int count = 0; count < 60; ++count) {
        worktrees.push_back(worktree({.repository = "r" + std::to_string(count % 5),
                                      .branch = "b" + std::to_string(count),
                                      .size = (count * 37) % 11,
                                      .safety = static_cast<WorktreeSafety>(count % 18)}));
    }
    model_.update(worktrees, std::nullopt);
    SignalLog log(model_);
    for (const char* text : {"b1", "b12", "b", "r3", "nothing", "", "5"}) {
        for (const WorktreeGrouping grouping : {WorktreeGrouping::project, WorktreeGrouping::safety}) {
            model_.setQuery({.searchText = text, .grouping = grouping});
            EXPECT_EQ(log.mirror(), log.titles()) << text;
        }
    }
    worktrees.erase(worktrees.begin() + 3, worktrees.begin() + 20);
    for (Worktree& changed : worktrees) changed.sizeBytes = 100 - changed.sizeBytes;
    model_.update(worktrees, std::nullopt);
    EXPECT_EQ(log.mirror(), log.titles());
}

TEST_F(WorktreeListModelTest, KeepsPersistentPlacesThroughAnotherOrder) {
    std::vector<Worktree> worktrees{worktree({.branch = "a", .size = 2}),
                                    worktree({.branch = "b", .size = 1})};
    model_.update(worktrees, std::nullopt);
    const QPersistentModelIndex place(model_.index(1));
    worktrees[1].sizeBytes = 3;
    model_.update(worktrees, std::nullopt);
    EXPECT_EQ(place.row(), 2);
}

TEST_F(WorktreeListModelTest, LeavesAnEmptyListWhenTheFilterHidesEverything) {
    model_.update({worktree({})}, std::nullopt);
    model_.setQuery({.disposition = SafetyDisposition::inUse});
    EXPECT_EQ(model_.rowCount(), 0);
    EXPECT_EQ(model_.rowOf(FilePath("/code/atlas/main")), -1);
    EXPECT_NE(model_.find(FilePath("/code/atlas/main")), nullptr);
}

TEST_F(WorktreeListModelTest, WordsTimeAnewWhenAsked) {
    model_.update({worktree({})}, std::nullopt);
    EXPECT_EQ(model_.item(1).remarks, "· 5 min. ago");
    SignalLog log(model_);
    clock_.set(sampleNow + std::chrono::minutes(1));
    model_.refreshDates();
    EXPECT_THAT(log.lines, ElementsAre("change 0-1"));
    EXPECT_EQ(model_.item(1).remarks, "· 6 min. ago");
}

TEST_F(WorktreeListModelTest, SaysNothingOfAListThatIsTheSame) {
    model_.update({worktree({})}, std::nullopt);
    SignalLog log(model_);
    model_.update({worktree({})}, std::nullopt);
    EXPECT_THAT(log.lines, IsEmpty());
}

}  // namespace
}  // namespace cairnfield
