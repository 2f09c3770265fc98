#include "Features/Root/SidebarModel.h"

#include "Features/Presentation/QtText.h"
#include "Features/Root/SidebarSection.h"

namespace cairnfield {

int SidebarModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(visibleSections.size());
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    const SidebarSection section = visibleSections.at(static_cast<std::size_t>(index.row()));
    switch (role) {
        case Qt::DisplayRole:
        case titleRole:
            return shown(title(section));
        case symbolNameRole:
            return shown(symbolName(section));
        default:
            return {};
    }
}

QHash<int, QByteArray> SidebarModel::roleNames() const {
    return {{titleRole, "title"}, {symbolNameRole, "symbolName"}};
}

}  // namespace cairnfield
