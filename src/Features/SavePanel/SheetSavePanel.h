#pragma once
// The save panel as a sheet over the window: a name, a folder, and what speaks against them. It refuses a
// name that is taken, and remembers the folder for the next time. Main thread only.

#include "Platform/SavePanel.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace cairnfield {

class SheetSavePanel : public QObject, public SavePanel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the window")
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY openChanged)
    Q_PROPERTY(QString name READ name NOTIFY openChanged)
    Q_PROPERTY(QString folder READ folder NOTIFY folderChanged)
    Q_PROPERTY(QUrl folderAddress READ folderAddress NOTIFY folderChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)

public:
    /// Begins in the home, for which "~" stands too.
    explicit SheetSavePanel(FilePath home, QObject* parent = nullptr);

    void show(std::string suggestedName, Finished finished) override;

    [[nodiscard]] bool isOpen() const { return finished_ != nullptr; }
    /// As the fields show them first.
    [[nodiscard]] QString name() const;
    [[nodiscard]] QString folder() const;
    [[nodiscard]] QUrl folderAddress() const;
    /// Why the last place was refused; empty when none was.
    [[nodiscard]] QString problem() const { return problem_; }

    /// Answers with the place that the fields name, or says what speaks against it. A text that is as it was
    /// shown stands for the bytes that it was shown for.
    Q_INVOKABLE void save(const QString& name, const QString& folder);
    /// A folder that was picked in the desktop's own chooser.
    Q_INVOKABLE void pickFolder(const QUrl& folder);
    Q_INVOKABLE void cancel();

signals:
    void openChanged();
    void folderChanged();
    void problemChanged();

private:
    void finish(const std::optional<FilePath>& place);
    void say(QString problem);

    const FilePath home_;
    FilePath folder_;
    std::string name_;
    QString problem_;
    Finished finished_;
};

}  // namespace cairnfield
