#pragma once
// SIGINT, SIGTERM and SIGHUP as an event of the Qt loop. Made before any thread is started, since it blocks
// the signals for the calling thread and what that starts; children of the program are given the usual
// signals again. From then on these signals do nothing by themselves.

#include "Shared/Concurrency/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace cairnfield {

class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    /// Throws std::system_error.
    TerminationSignals();

    /// Once there is an event loop.
    void listen();

signals:
    /// Somebody wants the program to end.
    void received();

private:
    const FileDescriptor descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace cairnfield
