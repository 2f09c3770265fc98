#pragma once
// The visible sections as the rows of the sidebar. They never change.

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace cairnfield {

class SidebarModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")

public:
    enum Role { titleRole = Qt::UserRole, symbolNameRole };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;
};

}  // namespace cairnfield
