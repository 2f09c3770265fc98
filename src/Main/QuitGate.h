#pragma once
// Holds the end of the program back while a cleanup runs, whoever asks for it: a menu, a key, a signal, the
// desktop. A cleanup is never left in the middle of a step, and none takes longer than its commands may. Main
// thread only.

#include "Shared/Concurrency/Published.h"

#include <QCoreApplication>
#include <QObject>

namespace cairnfield {

class QuitGate final : public QObject {
    Q_OBJECT

public:
    /// Both outlive this.
    QuitGate(QCoreApplication& application, const Published<int>& cleanupsUnderWay);
    ~QuitGate() override;

signals:
    /// Somebody asked for the end, and it will come by itself once no cleanup is under way. At every such
    /// request.
    void heldBack();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void cleanupEnded();

    QCoreApplication& application_;
    const Published<int>& cleanupsUnderWay_;
    const Subscription subscription_;
    bool isWanted_ = false;
};

}  // namespace cairnfield
