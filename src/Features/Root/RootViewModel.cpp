#include "Features/Root/RootViewModel.h"

#include "Features/Presentation/QtText.h"
#include "Features/Presentation/Tints.h"
#include "Shared/Formatting/ByteFormatting.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

Task<> refreshAtFirstAppearance(AppModel& model, TaskHandle<> started) {
    co_await started.value();
    if (model.state().watchedFolders.get().empty() || !model.state().worktrees.get().empty()) co_return;
    co_await model.refreshWorktrees(true);
}

}  // namespace

RootViewModel::RootViewModel(AppModel& model, TaskHandle<> started, QObject* parent)
    : QObject(parent), model_(model), started_(std::move(started)) {
    const auto changed = [this] { emit storageChanged(); };
    subscriptions_.push_back(model.state().storage.observe(changed));
    SettingsStore& settings = model.settings();
    subscriptions_.push_back(settings.thresholdMode.observe(changed));
    subscriptions_.push_back(settings.warningPercentage.observe(changed));
    subscriptions_.push_back(settings.criticalPercentage.observe(changed));
    subscriptions_.push_back(settings.warningAbsoluteBytes.observe(changed));
    subscriptions_.push_back(settings.criticalAbsoluteBytes.observe(changed));
}

void RootViewModel::setSelection(SidebarSection section) {
    if (section == selection_) return;
    selection_ = section;
    emit selectionChanged();
}

int RootViewModel::selectedRow() const {
    const auto* const place = std::ranges::find(visibleSections, selection_);
    return place == visibleSections.end() ? -1 : static_cast<int>(place - visibleSections.begin());
}

QString RootViewModel::section() const {
    return shown(rawValue(selection_));
}

QString RootViewModel::title() const {
    return shown(cairnfield::title(selection_));
}

QString RootViewModel::symbolName() const {
    return shown(cairnfield::symbolName(selection_));
}

bool RootViewModel::showsStorageFooter() const {
    return model_.storageLevel() != StorageLevel::normal;
}

QString RootViewModel::levelText() const {
    return shown(cairnfield::title(model_.storageLevel()));
}

QString RootViewModel::levelSymbolName() const {
    return shown(cairnfield::symbolName(model_.storageLevel()));
}

QString RootViewModel::levelTint() const {
    return shown(tintName(model_.storageLevel()));
}

QString RootViewModel::freeText() const {
    const std::optional<StorageSnapshot>& snapshot = model_.state().storage.get();
    if (!snapshot) return QStringLiteral("— free");
    return shown(ByteFormatting::string(snapshot->availableCapacity)) + QStringLiteral(" free");
}

void RootViewModel::showThatQuitWaits() {
    quitsAfterCleanup_ = true;
    emit quitsAfterCleanupChanged();
}

void RootViewModel::appeared() {
    if (std::exchange(hasAppeared_, true)) return;
    model_.run(refreshAtFirstAppearance(model_, started_));
}

void RootViewModel::select(int row) {
    if (row < 0 || row >= static_cast<int>(visibleSections.size())) return;
    setSelection(visibleSections.at(static_cast<std::size_t>(row)));
}

void RootViewModel::typeAhead(const QString& typed) {
    const auto name = [](int row) {
        return std::optional(
            std::string(cairnfield::title(visibleSections.at(static_cast<std::size_t>(row)))));
    };
    const std::optional<int> row =
        typeAhead_.find(typed.toStdString(), TypeAhead::Instant::clock::now(), selectedRow(),
                        static_cast<int>(visibleSections.size()), name);
    if (row) select(*row);
}

}  // namespace cairnfield
