#include "Main/PanelWindow.h"

#include "Main/PanelPlacement.h"
#include "Shared/Logging/Log.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace cairnfield {

namespace {

/// A press on the item first takes the keyboard away, which closes the panel; the press that then arrives
/// meant that, not to open it again.
constexpr std::chrono::milliseconds samePress{300};

std::vector<PanelScreen> screens() {
    std::vector<PanelScreen> all;
    for (const QScreen* screen : QGuiApplication::screens())
        all.push_back({screen->geometry(), screen->availableGeometry(), screen->devicePixelRatio()});
    return all;
}

}  // namespace

PanelWindow::~PanelWindow() {
    close();
}

void PanelWindow::toggle(const StatusItemActivation& activation) {
    const auto lostFocusAt = std::exchange(lostFocusAt_, std::nullopt);
    if (window_) return close();
    if (lostFocusAt && Clock::now() - *lostFocusAt < samePress) return;
    place_ = activation.place;
    open();
}

void PanelWindow::open() {
    create();
    if (!window_) return;
    place();
    window_->show();
    bringForward();
}

void PanelWindow::bringForward() {
    if (!window_) return;
    window_->raise();
    window_->requestActivate();
}

void PanelWindow::create() {
    engine_ = std::make_unique<QQmlApplicationEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/qt/qml"));
    QVariantMap properties = content_;
    // Behind a window without a compositor there is nothing but black. On Wayland there always is one.
    properties.insert(QStringLiteral("hasRoundCorners"),
                      QGuiApplication::platformName().startsWith(QLatin1String("wayland")));
    engine_->setInitialProperties(properties);
    connect(engine_.get(), &QQmlEngine::quit, this, &PanelWindow::quitRequested);
    engine_->load(QUrl(QStringLiteral("qrc:/qt/qml/Cairnfield/MenuBar/MenuBarPanel.qml")));
    if (!engine_->rootObjects().isEmpty())
        window_ = qobject_cast<QQuickWindow*>(engine_->rootObjects().constFirst());
    if (!window_) {
        Log::app().critical("The panel cannot be made");
        engine_.reset();
        return;
    }
    hadFocus_ = false;
    window_->installEventFilter(this);
    connect(window_, &QWindow::activeChanged, this, &PanelWindow::followFocus);
    connect(window_, &QWindow::heightChanged, this, &PanelWindow::place);
}

void PanelWindow::place() {
    if (!place_) return;
    const std::vector<PanelScreen> all = screens();
    const std::optional<QPoint> point = programPoint(*place_, all);
    const std::optional<QPoint> corner = point ? panelCorner(*point, window_->size(), all) : std::nullopt;
    if (corner) window_->setPosition(*corner);
}

void PanelWindow::followFocus() {
    if (window_->isActive()) {
        hadFocus_ = true;
    } else if (hadFocus_) {
        lostFocusAt_ = Clock::now();
        window_->close();
    }
}

void PanelWindow::close() {
    if (!window_) return;
    window_->removeEventFilter(this);
    disconnect(window_, nullptr, this, nullptr);
    window_ = nullptr;
    engine_.reset();
}

bool PanelWindow::eventFilter(QObject* watched, QEvent* event) {
    // Not within the window's own event: the engine goes with it.
    if (watched == window_ && event->type() == QEvent::Close)
        QTimer::singleShot(0, this, &PanelWindow::close);
    return false;
}

}  // namespace cairnfield
