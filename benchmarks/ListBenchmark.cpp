// What a person waits for in a list of 5,000 worktrees: from a keystroke in the search field, another filter
// or another grouping to the list having changed, and to the window having been drawn with it. Beside it the
// plain way to the same rows: copy the records that fit, and roll them up. The window is drawn in software
// and off screen.

#include "Features/Worktrees/WorktreesViewModel.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/FakePasteboard.h"
#include "support/FakeWorkspace.h"
#include "ui/screenshots/SampleState.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/QQmlExtensionPlugin>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>

Q_IMPORT_QML_PLUGIN(Cairnfield_ComponentsPlugin)
Q_IMPORT_QML_PLUGIN(Cairnfield_WorktreesPlugin)

namespace {

using namespace cairnfield;

constexpr std::size_t count = 5000;
constexpr std::array<const char*, 10> typed{"f", "fe", "feat", "feature/co", "feature/copper-w",
                                            "w", "wi", "x",    "12",         ""};

double milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

class Figures {
public:
    void add(double value) { values_.push_back(value); }
    void report(benchmark::State& state, const std::string& name) {
        if (values_.empty()) return;
        std::ranges::sort(values_);
        state.counters[name + "_median_ms"] = values_[values_.size() / 2];
        state.counters[name + "_worst_ms"] = values_.back();
    }

private:
    std::vector<double> values_;
};

// The screen's view model over a staged list, with the view on it when asked.
class Screen {
public:
    Screen() {
        AppState& state = AppModelStaging::state(*app_.model);
        state.watchedFolders.set({WatchedFolder::make(FilePath("/home/ada/code"))});
        state.worktrees.set(worktrees_);
        viewModel.flush();
        viewModel.select(40);
    }

    void openWindow() {
        engine_.addImportPath("qrc:/qt/qml");
        engine_.setInitialProperties({{"viewModel", QVariant::fromValue(&viewModel)}});
        engine_.loadData(
            "import QtQuick\nimport QtQuick.Controls.Basic\nimport Cairnfield.Worktrees\n"
            "ApplicationWindow { id: window; required property WorktreesViewModel viewModel\n"
            "width: 1080; height: 720; visible: true\n"
            "WorktreesView { anchors.fill: parent; viewModel: window.viewModel } }",
            QUrl("qrc:/qt/qml/Cairnfield/benchmark.qml"));
        window_ =
            engine_.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(engine_.rootObjects()[0]);
        draw();
    }
    [[nodiscard]] bool hasWindow() const { return window_ != nullptr; }
    void draw() {
        QCoreApplication::processEvents();
        if (window_) window_->grabWindow();
    }
    [[nodiscard]] const std::vector<Worktree>& worktrees() const { return worktrees_; }
    void setSize(std::size_t position, std::int64_t bytes) {
        AppModelStaging::state(*app_.model).worktrees.mutate([&](std::vector<Worktree>& all) {
            all[position].sizeBytes = bytes;
            return true;
        });
    }
    void beginSizing() { AppModelStaging::state(*app_.model).sizingProgress.set(SizingProgress{0, count}); }

private:
    std::vector<Worktree> worktrees_ = manyWorktrees(count);
    AppHarness app_;
    FakeWorkspace workspace_;
    FakePasteboard pasteboard_;
    CleanupReviewViewModel review_{*app_.model, pasteboard_};

public:
    WorktreesViewModel viewModel{*app_.model, workspace_, app_.wallClock, review_};

private:
    QQmlApplicationEngine engine_;
    QQuickWindow* window_ = nullptr;
};

void takeTurns(benchmark::State& state, Screen& screen) {
    Figures keystroke;
    Figures filter;
    Figures regroup;
    std::size_t turn = 0;
    for (auto _ : state) {
        const double key = milliseconds([&] {
            screen.viewModel.setSearchText(typed[turn % typed.size()]);
            if (screen.hasWindow()) screen.draw();
        });
        keystroke.add(key);
        screen.viewModel.setSearchText("");
        filter.add(milliseconds([&] {
            screen.viewModel.setFilterIndex(static_cast<int>(turn % 7));
            if (screen.hasWindow()) screen.draw();
        }));
        screen.viewModel.setFilterIndex(0);
        regroup.add(milliseconds([&] {
            screen.viewModel.setGroupingIndex(1 - screen.viewModel.groupingIndex());
            if (screen.hasWindow()) screen.draw();
        }));
        ++turn;
        state.SetIterationTime(key / 1e3);
    }
    keystroke.report(state, "keystroke");
    filter.report(state, "filter");
    regroup.report(state, "regroup");
}

void modelOnly(benchmark::State& state) {
    Screen screen;
    takeTurns(state, screen);
    Figures plain;
    for (std::size_t turn = 0; turn < 50; ++turn) {
        plain.add(milliseconds([&] {
            const FoldedText needle(typed[turn % typed.size()]);
            std::vector<Worktree> fitting;
            for (const Worktree& worktree : screen.worktrees()) {
                if (FoldedText(worktree.repositoryName).contains(needle) ||
                    FoldedText(worktree.displayBranch()).contains(needle) ||
                    FoldedText(worktree.path.bytes()).contains(needle)) {
                    fitting.push_back(worktree);
                }
            }
            benchmark::DoNotOptimize(ProjectUsage::rollUp(fitting));
        }));
    }
    plain.report(state, "plain");
}

void withWindow(benchmark::State& state) {
    Screen screen;
    screen.openWindow();
    if (!screen.hasWindow()) return state.SkipWithError("the window cannot be made");
    takeTurns(state, screen);
}

// A thousand sizes arriving one by one, as sizing brings them.
void sizesArriving(benchmark::State& state) {
    Screen screen;
    screen.openWindow();
    screen.beginSizing();
    Figures update;
    std::int64_t size = 1;
    for (auto _ : state) {
        const double taken = milliseconds([&] {
            screen.setSize(static_cast<std::size_t>(size) % count, size * 1'000'000);
            ++size;
            screen.viewModel.flush();
            screen.draw();
        });
        update.add(taken);
        state.SetIterationTime(taken / 1e3);
    }
    update.report(state, "update");
}

}  // namespace

BENCHMARK(modelOnly)
    ->Name("5000 worktrees, list changed")
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(withWindow)
    ->Name("5000 worktrees, window drawn")
    ->Iterations(60)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(sizesArriving)
    ->Name("5000 worktrees, a size arrives")
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    QQuickStyle::setStyle("Basic");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
