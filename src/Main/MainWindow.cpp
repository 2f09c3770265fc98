#include "Main/MainWindow.h"

#include "Main/WindowFrame.h"
#include "Shared/Logging/Log.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QTimer>
#include <QUrl>

#include <cstdlib>

namespace cairnfield {

namespace {

constexpr std::string_view frameKey = "mainWindowFrame";

std::vector<QRect> usableScreens() {
    std::vector<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens()) areas.push_back(screen->availableGeometry());
    return areas;
}

}  // namespace

MainWindow::~MainWindow() {
    release();
}

bool MainWindow::show() {
    if (isClosing_) release();
    if (!window_) create();
    if (!window_) return false;
    if (window_->windowStates().testFlag(Qt::WindowMinimized))
        window_->setWindowStates(window_->windowStates() & ~Qt::WindowStates(Qt::WindowMinimized));
    window_->show();
    window_->raise();
    window_->requestActivate();
    return true;
}

void MainWindow::bringForward() {
    if (!show()) QCoreApplication::exit(EXIT_FAILURE);
}

void MainWindow::create() {
    engine_ = std::make_unique<QQmlApplicationEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine_->setInitialProperties(content_);
    connect(engine_.get(), &QQmlEngine::quit, this, &MainWindow::quitRequested);
    engine_->load(QUrl(QStringLiteral("qrc:/qt/qml/Cairnfield/Root/MainWindow.qml")));
    if (!engine_->rootObjects().isEmpty())
        window_ = qobject_cast<QQuickWindow*>(engine_->rootObjects().constFirst());
    if (!window_) {
        Log::app().critical("The window cannot be made");
        engine_.reset();
        return;
    }
    restoreFrame();
    window_->installEventFilter(this);
}

void MainWindow::release() {
    if (!window_) return;
    rememberFrame();
    window_->removeEventFilter(this);
    window_ = nullptr;
    isClosing_ = false;
    engine_.reset();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched != window_) return false;
    const bool isNormal = window_->visibility() == QWindow::Windowed;
    if ((event->type() == QEvent::Resize || event->type() == QEvent::Move) && isNormal)
        normalPlace_ = window_->geometry();
    if (event->type() == QEvent::Close) {
        isClosing_ = true;
        // Not within the window's own event: the engine goes with it.
        QTimer::singleShot(0, this, [this] {
            if (!isClosing_) return;  // it was asked for again meanwhile
            release();
            emit closed();
        });
    }
    return false;
}

void MainWindow::restoreFrame() {
    normalPlace_ = window_->geometry();
    const std::optional<DefaultsValue> stored = defaults_.value(frameKey);
    const std::string* const text = stored ? std::get_if<std::string>(&*stored) : nullptr;
    const std::optional<WindowFrame> frame = text ? windowFrameFromText(*text) : std::nullopt;
    const std::vector<QRect> screens = usableScreens();
    if (!frame || screens.empty()) return;
    const WindowFrame fitting = fitted(*frame, window_->minimumSize(), screens);
    window_->setGeometry(fitting.place);
    normalPlace_ = fitting.place;
    if (fitting.isMaximized) window_->setWindowStates(Qt::WindowMaximized);
}

void MainWindow::rememberFrame() {
    const bool isMaximized = window_->windowStates().testFlag(Qt::WindowMaximized);
    defaults_.set(frameKey, toText({.place = normalPlace_, .isMaximized = isMaximized}));
}

}  // namespace cairnfield
