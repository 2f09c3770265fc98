#include "Features/SavePanel/SheetSavePanel.h"

#include "Features/SavePanel/SavePlace.h"
#include "Shared/Paths/TypedPath.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield {

SheetSavePanel::SheetSavePanel(FilePath home, QObject* parent)
    : QObject(parent), home_(std::move(home)), folder_(home_) {}

QString SheetSavePanel::name() const {
    return QString::fromStdString(visibleText(name_));
}

QString SheetSavePanel::folder() const {
    return QString::fromStdString(folder_.display());
}

QUrl SheetSavePanel::folderAddress() const {
    return QUrl::fromLocalFile(QString::fromStdString(folder_.bytes()));
}

void SheetSavePanel::show(std::string suggestedName, Finished finished) {
    cancel();
    name_ = std::move(suggestedName);
    finished_ = std::move(finished);
    emit openChanged();
    emit folderChanged();
}

void SheetSavePanel::save(const QString& name, const QString& folder) {
    if (!isOpen()) return;
    const std::string chosenName = name == this->name() ? name_ : name.toStdString();
    const std::optional<FilePath> chosenFolder =
        folder == this->folder() ? std::optional(folder_) : pathFromTyped(folder.toStdString(), home_);
    if (!chosenFolder) return say(QStringLiteral("Type the whole path of a folder, starting with a slash."));
    const std::string reason = whyNotSavedAt(*chosenFolder, chosenName);
    if (!reason.empty()) return say(QString::fromStdString(reason));
    folder_ = *chosenFolder;
    finish(folder_.appending(chosenName));
}

void SheetSavePanel::pickFolder(const QUrl& folder) {
    folder_ = pathFromEncoded(folder.path(QUrl::FullyEncoded).toStdString()).standardized();
    say({});
    emit folderChanged();
}

void SheetSavePanel::cancel() {
    if (isOpen()) finish(std::nullopt);
}

void SheetSavePanel::finish(const std::optional<FilePath>& place) {
    const Finished finished = std::exchange(finished_, nullptr);
    say({});
    emit openChanged();
    finished(place);
}

void SheetSavePanel::say(QString problem) {
    if (problem == problem_) return;
    problem_ = std::move(problem);
    emit problemChanged();
}

}  // namespace cairnfield
