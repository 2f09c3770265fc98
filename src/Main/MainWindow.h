#pragma once
// The one window, with the QML engine that draws it: made when the window is first shown and released once it
// is closed. Remembers its size and place. Main thread only.

#include "Platform/UserDefaults.h"

#include <QObject>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QVariantMap>

#include <memory>

namespace cairnfield {

class MainWindow final : public QObject {
    Q_OBJECT

public:
    /// `content` are the view models, by the names of the window's properties; they and `defaults` outlive
    /// this.
    MainWindow(QVariantMap content, UserDefaults& defaults);
    ~MainWindow() override;

    /// Brings the window to the front, made anew if there is none. Answers whether there is one now: its
    /// description is part of the program, so that there is none only when the installation is broken.
    bool show();
    /// Without asking anybody.
    void release();

signals:
    /// The person closed it. It is released by the time that the event loop goes on.
    void closed();
    /// The person asked for the end of the program.
    void quitRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void create();
    void restoreFrame();
    void rememberFrame();

    const QVariantMap content_;
    UserDefaults& defaults_;
    std::unique_ptr<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;  ///< the engine's
    QRect normalPlace_;               ///< the last one while not maximized
};

}  // namespace cairnfield
