#include "Features/Worktrees/WorktreeDetail.h"

#include "Features/Presentation/QtText.h"
#include "Features/Presentation/Tints.h"

#include <QVariantMap>

namespace cairnfield {

namespace {

bool isSameHeader(const WorktreeDetailText& a, const WorktreeDetailText& b) {
    return a.branch == b.branch && a.path == b.path && a.disposition == b.disposition &&
           a.explanation == b.explanation && a.notes == b.notes;
}

}  // namespace

void WorktreeDetail::show(std::optional<WorktreeDetailText> text) {
    const bool wasPresent = std::exchange(isPresent_, text.has_value());
    const WorktreeDetailText before = std::exchange(text_, std::move(text).value_or(WorktreeDetailText{}));
    if (before.gitState != text_.gitState) emit gitStateChanged();
    if (before.ignored != text_.ignored) emit ignoredChanged();
    if (before.remote != text_.remote || before.remoteMessage != text_.remoteMessage) emit remoteChanged();
    if (before.cleanup != text_.cleanup || before.pinTitle != text_.pinTitle) emit cleanupChanged();
    if (wasPresent != isPresent_ || !isSameHeader(before, text_)) emit headerChanged();
}

QString WorktreeDetail::branch() const {
    return shown(text_.branch);
}
QString WorktreeDetail::path() const {
    return shown(text_.path);
}
QString WorktreeDetail::dispositionTitle() const {
    return shown(title(text_.disposition));
}
QString WorktreeDetail::symbolName() const {
    return shown(cairnfield::symbolName(text_.disposition));
}
QString WorktreeDetail::tint() const {
    return shown(tintName(text_.disposition));
}
QString WorktreeDetail::explanation() const {
    return shown(text_.explanation);
}

QVariantList WorktreeDetail::notes() const {
    QVariantList list;
    for (const SymbolText& note : text_.notes) {
        list << QVariantMap{{"symbolName", shown(note.symbolName)}, {"text", shown(note.text)}};
    }
    return list;
}

QVariantList WorktreeDetail::gitState() const {
    return shownRows(text_.gitState);
}
QString WorktreeDetail::ignoredNotice() const {
    return shown(ignoredFilesNotice);
}

QVariantList WorktreeDetail::ignored() const {
    QVariantList list;
    for (const IgnoredEntryText& entry : text_.ignored) {
        list << QVariantMap{{"name", shown(entry.name)},
                            {"size", shown(entry.size)},
                            {"classification", shown(entry.classification)},
                            {"rebuildHint", shown(entry.rebuildHint)},
                            {"isDirectory", entry.isDirectory}};
    }
    return list;
}

QString WorktreeDetail::remoteMessage() const {
    return shown(text_.remoteMessage);
}
QVariantList WorktreeDetail::remote() const {
    return shownRows(text_.remote);
}
QString WorktreeDetail::cleanupMessage() const {
    return shown(text_.cleanup.message.text);
}
QString WorktreeDetail::cleanupSymbolName() const {
    return shown(text_.cleanup.message.symbolName);
}
QString WorktreeDetail::cleanupNote() const {
    return shown(text_.cleanup.note);
}
QString WorktreeDetail::pinTitle() const {
    return shown(text_.pinTitle);
}

}  // namespace cairnfield
