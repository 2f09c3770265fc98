#include "Main/QuitGate.h"

#include "Shared/Logging/Log.h"

#include <QEvent>

namespace cairnfield {

QuitGate::QuitGate(QCoreApplication& application, const Published<int>& cleanupsUnderWay)
    : application_(application),
      cleanupsUnderWay_(cleanupsUnderWay),
      subscription_(cleanupsUnderWay.observe([this] { cleanupEnded(); })) {
    application_.installEventFilter(this);
}

QuitGate::~QuitGate() {
    application_.removeEventFilter(this);
}

bool QuitGate::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Quit || watched != &application_ || cleanupsUnderWay_.get() == 0)
        return QObject::eventFilter(watched, event);
    Log::app().info("The end waits for the cleanup under way");
    isWanted_ = true;
    emit heldBack();
    return true;
}

void QuitGate::cleanupEnded() {
    if (!isWanted_ || cleanupsUnderWay_.get() > 0) return;
    isWanted_ = false;
    // In its own turn: who ended the cleanup is still at work.
    QMetaObject::invokeMethod(&application_, &QCoreApplication::quit, Qt::QueuedConnection);
}

}  // namespace cairnfield
