#pragma once
// The one window, with the QML engine that draws it: made when the window is first shown and released once it
// is closed, and made anew when it is brought forward again. Remembers its size and place. Main thread only.

#include "Platform/Application.h"
#include "Platform/UserDefaults.h"

#include <QObject>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QVariantMap>

#include <memory>
#include <utility>

namespace cairnfield {

class MainWindow final : public QObject, public ApplicationWindow {
    Q_OBJECT

public:
    /// `defaults` outlive this.
    explicit MainWindow(UserDefaults& defaults) : defaults_(defaults) {}
    ~MainWindow() override;

    /// The view models, by the names of the window's properties; they outlive what is shown. Once, before it
    /// is shown.
    void setContent(QVariantMap content) { content_ = std::move(content); }

    /// Brings the window to the front, made anew if there is none. Answers whether there is one now: its
    /// description is part of the program, so that there is none only when the installation is broken.
    bool show();
    /// Without asking anybody.
    void release();
    [[nodiscard]] bool isOpen() const { return window_ != nullptr; }

    [[nodiscard]] bool canBecomeMain() const override { return true; }
    /// Exits the program with a failure when there is no window to bring forward.
    void bringForward() override;

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

    QVariantMap content_;
    UserDefaults& defaults_;
    std::unique_ptr<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;  ///< the engine's
    bool isClosing_ = false;          ///< released by the next turn of the event loop
    QRect normalPlace_;               ///< the last one while not maximized
};

}  // namespace cairnfield
