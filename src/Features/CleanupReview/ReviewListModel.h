#pragma once
// One list on the review sheet: its head, and its rows once somebody unfolds it. Of thousands of paths only
// those that are looked at become text. Main thread only.

#include <QAbstractListModel>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <string>
#include <vector>

namespace cairnfield {

class ReviewListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the view model")
    Q_PROPERTY(QString title READ title NOTIFY shownAnew)
    Q_PROPERTY(int count READ count NOTIFY shownAnew)
    Q_PROPERTY(bool isUnfolded READ isUnfolded WRITE setUnfolded NOTIFY folded)
    Q_PROPERTY(QString foldedText READ foldedText NOTIFY folded)

public:
    enum Role { lineRole = Qt::UserRole + 1 };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// Folded again. `lines` may hold anything that a path may.
    void show(const std::string& title, std::vector<std::string> lines);

    [[nodiscard]] QString title() const { return title_; }
    [[nodiscard]] int count() const { return static_cast<int>(lines_.size()); }

    [[nodiscard]] bool isUnfolded() const { return isUnfolded_; }
    void setUnfolded(bool isUnfolded);
    /// How it stands, for assistive technology.
    [[nodiscard]] QString foldedText() const;

signals:
    void shownAnew();
    void folded();

private:
    QString title_;
    std::vector<std::string> lines_;
    bool isUnfolded_ = false;
};

}  // namespace cairnfield
