#pragma once
// What the menu bar item says and offers, in its panel and in the menu that some desktops show instead. Reads
// the model's state; changes reach the panel and the item once for each turn of the event loop, and the texts
// are worked out when they are read. Main thread only.

#include "App/AppModel.h"
#include "Features/MenuBar/MenuBarActionModel.h"
#include "Platform/Application.h"
#include "Platform/StatusItem.h"

#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace cairnfield {

class MenuBarViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the panel")
    Q_PROPERTY(QString availableText READ availableText NOTIFY changed)
    Q_PROPERTY(QString totalText READ totalText NOTIFY changed)
    Q_PROPERTY(QString levelText READ levelText NOTIFY changed)
    Q_PROPERTY(QString levelSymbolName READ levelSymbolName NOTIFY changed)
    Q_PROPERTY(QString levelTint READ levelTint NOTIFY changed)
    Q_PROPERTY(QString fileNotice READ fileNotice NOTIFY changed)
    Q_PROPERTY(QString reclaimableText READ reclaimableText NOTIFY changed)
    Q_PROPERTY(QString attentionText READ attentionText NOTIFY changed)
    Q_PROPERTY(bool showsFolder READ showsFolder NOTIFY changed)
    Q_PROPERTY(QString folderName READ folderName NOTIFY changed)
    Q_PROPERTY(QString folderSizeText READ folderSizeText NOTIFY changed)
    Q_PROPERTY(cairnfield::MenuBarActionModel* actions READ actions CONSTANT)

public:
    /// Both outlive the view model.
    MenuBarViewModel(AppModel& model, Application& application, QObject* parent = nullptr);

    // The header.
    [[nodiscard]] QString availableText() const;  ///< a dash before the first reading
    [[nodiscard]] QString totalText() const;
    [[nodiscard]] QString levelText() const;
    [[nodiscard]] QString levelSymbolName() const;
    [[nodiscard]] QString levelTint() const;
    /// What should be known about the file of the readings; empty while all is well.
    [[nodiscard]] QString fileNotice() const;

    // The summary.
    [[nodiscard]] QString reclaimableText() const;
    [[nodiscard]] QString attentionText() const;
    /// Only for a folder whose size is known.
    [[nodiscard]] bool showsFolder() const { return model_.largestWatchedFolder().has_value(); }
    [[nodiscard]] QString folderName() const;
    [[nodiscard]] QString folderSizeText() const;

    [[nodiscard]] MenuBarActionModel* actions() { return &actions_; }
    Q_INVOKABLE void perform(int row);
    void perform(MenuBarAction action);

    /// The item itself, and the actions for a menu of the desktop.
    [[nodiscard]] StatusItemState itemState() const;
    [[nodiscard]] std::vector<StatusMenuItem> menu();

    /// Brings the screen up to date with the state at once.
    void flush();

signals:
    void changed();
    /// Another set of actions, or other words for them.
    void actionsChanged();
    /// The person went on to the window: the panel is in the way.
    void leftForWindow();
    void quitRequested();

private:
    void openWindow();

    AppModel& model_;
    Application& application_;
    MenuBarActionModel actions_;
    QTimer updateTimer_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace cairnfield
