#pragma once
// What can be done from the menu bar item, as the rows of its panel. Main thread only.

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <string_view>
#include <vector>

namespace cairnfield {

enum class MenuBarAction {
    scanNow,
    reviewCleanup,
    openCairnfield,
    checkForUpdates,
    pauseMonitoring,
    resumeMonitoring,
    quit,
};

[[nodiscard]] std::string_view title(MenuBarAction action);
[[nodiscard]] std::string_view symbolName(MenuBarAction action);

/// In the order in which they are offered. "Quit" is a group of its own.
[[nodiscard]] std::vector<MenuBarAction> menuBarActions(bool canCheckForUpdates, bool isMonitoring);

class MenuBarActionModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the panel")

public:
    enum Role { titleRole = Qt::UserRole, symbolNameRole, startsGroupRole };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] const std::vector<MenuBarAction>& actions() const { return actions_; }
    /// Rows keep their place, and the keyboard with it, where only their words change. Answers whether
    /// anything changed.
    bool update(std::vector<MenuBarAction> actions);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
    std::vector<MenuBarAction> actions_;
};

}  // namespace cairnfield
