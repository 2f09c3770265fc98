#pragma once
// Which row of a list is chosen, and how the keyboard moves that. The row is known by its identity, so that
// it stays chosen wherever a reload puts it; with its record goes the selection. Main thread only.

#include "Features/ItemLists/ItemListModel.h"
#include "Features/Lists/TypeAhead.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace cairnfield {

class RowSelection : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to a view model")
    Q_PROPERTY(int row READ row NOTIFY changed)

public:
    /// `rows` outlive the selection.
    explicit RowSelection(const ItemListModel& rows, QObject* parent = nullptr)
        : QObject(parent), rows_(rows) {}

    /// -1 for none.
    [[nodiscard]] int row() const { return row_; }

    /// The model shows other rows than before.
    void rowsChanged();

    /// Of rows that there are not nothing comes.
    Q_INVOKABLE void select(int row);
    /// Stops at either end; the first step chooses the first row.
    Q_INVOKABLE void move(int steps);
    Q_INVOKABLE void selectFirst();
    Q_INVOKABLE void selectLast();
    Q_INVOKABLE void typeAhead(const QString& typed);

signals:
    void changed();

private:
    const ItemListModel& rows_;
    std::optional<RowKey> key_;
    int row_ = -1;
    TypeAhead typeAhead_;
};

}  // namespace cairnfield
