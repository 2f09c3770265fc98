#pragma once
// The small window of the status item, with the QML engine that draws it: made when it is opened and released
// once it is closed. Pressing the item again closes it, and so does the keyboard going elsewhere. Main thread
// only.

#include "Platform/Application.h"
#include "Platform/StatusItem.h"

#include <QObject>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QVariantMap>

#include <chrono>
#include <memory>
#include <optional>

namespace cairnfield {

class PanelWindow final : public QObject, public ApplicationWindow {
    Q_OBJECT

public:
    PanelWindow() = default;
    ~PanelWindow() override;

    /// The view models, by the names of the panel's properties; they outlive what is shown. Once, before it
    /// is opened.
    void setContent(QVariantMap content) { content_ = std::move(content); }

    /// The item was pressed.
    void toggle(const StatusItemActivation& activation);
    void close();
    [[nodiscard]] bool isOpen() const { return window_ != nullptr; }

    [[nodiscard]] bool canBecomeMain() const override { return false; }
    /// Nothing while it is not open.
    void bringForward() override;

signals:
    /// The person asked for the end of the program.
    void quitRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;

    void open();
    void create();
    void place();
    void followFocus();

    QVariantMap content_;
    std::unique_ptr<QQmlApplicationEngine> engine_;
    QQuickWindow* window_ = nullptr;  ///< the engine's
    std::optional<ScreenPoint> place_;
    bool hadFocus_ = false;
    std::optional<Clock::time_point> lostFocusAt_;  ///< when that closed it
};

}  // namespace cairnfield
