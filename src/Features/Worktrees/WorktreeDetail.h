#pragma once
// The detail pane's words as properties. Each part tells of its own change only, so that a size that arrives
// moves nothing else. Main thread only.

#include "Features/Worktrees/WorktreeDetailText.h"

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace cairnfield {

class WorktreeDetail : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the view model")
    Q_PROPERTY(bool isPresent READ isPresent NOTIFY headerChanged)
    Q_PROPERTY(QString branch READ branch NOTIFY headerChanged)
    Q_PROPERTY(QString path READ path NOTIFY headerChanged)
    Q_PROPERTY(QString disposition READ dispositionTitle NOTIFY headerChanged)
    Q_PROPERTY(QString symbolName READ symbolName NOTIFY headerChanged)
    Q_PROPERTY(QString tint READ tint NOTIFY headerChanged)
    Q_PROPERTY(QString explanation READ explanation NOTIFY headerChanged)
    Q_PROPERTY(QVariantList notes READ notes NOTIFY headerChanged)
    Q_PROPERTY(QVariantList gitState READ gitState NOTIFY gitStateChanged)
    Q_PROPERTY(QString ignoredNotice READ ignoredNotice CONSTANT)
    Q_PROPERTY(QVariantList ignored READ ignored NOTIFY ignoredChanged)
    Q_PROPERTY(QString remoteMessage READ remoteMessage NOTIFY remoteChanged)
    Q_PROPERTY(QVariantList remote READ remote NOTIFY remoteChanged)
    Q_PROPERTY(QString cleanupMessage READ cleanupMessage NOTIFY cleanupChanged)
    Q_PROPERTY(QString cleanupSymbolName READ cleanupSymbolName NOTIFY cleanupChanged)
    Q_PROPERTY(QString cleanupNote READ cleanupNote NOTIFY cleanupChanged)
    Q_PROPERTY(bool offersCleanup READ offersCleanup NOTIFY cleanupChanged)
    Q_PROPERTY(bool isCleanupEnabled READ isCleanupEnabled NOTIFY cleanupChanged)
    Q_PROPERTY(QString pinTitle READ pinTitle NOTIFY cleanupChanged)

public:
    using QObject::QObject;

    /// Absent: there is nothing to show.
    void show(std::optional<WorktreeDetailText> text);

    [[nodiscard]] bool isPresent() const { return isPresent_; }
    [[nodiscard]] const WorktreeDetailText& text() const { return text_; }
    [[nodiscard]] QString branch() const;
    [[nodiscard]] QString path() const;
    [[nodiscard]] QString dispositionTitle() const;
    [[nodiscard]] QString symbolName() const;
    [[nodiscard]] QString tint() const;
    [[nodiscard]] QString explanation() const;
    /// Of {symbolName, text}.
    [[nodiscard]] QVariantList notes() const;
    /// Of {label, value}.
    [[nodiscard]] QVariantList gitState() const;
    [[nodiscard]] QString ignoredNotice() const;
    /// Of {name, size, classification, rebuildHint, isDirectory}.
    [[nodiscard]] QVariantList ignored() const;
    [[nodiscard]] QString remoteMessage() const;
    /// Of {label, value}.
    [[nodiscard]] QVariantList remote() const;
    [[nodiscard]] QString cleanupMessage() const;
    [[nodiscard]] QString cleanupSymbolName() const;
    [[nodiscard]] QString cleanupNote() const;
    [[nodiscard]] bool offersCleanup() const { return text_.cleanup.offersCleanup; }
    [[nodiscard]] bool isCleanupEnabled() const { return text_.cleanup.isCleanupEnabled; }
    [[nodiscard]] QString pinTitle() const;

signals:
    void headerChanged();
    void gitStateChanged();
    void ignoredChanged();
    void remoteChanged();
    void cleanupChanged();

private:
    bool isPresent_ = false;
    WorktreeDetailText text_;
};

}  // namespace cairnfield
