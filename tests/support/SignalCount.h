#pragma once
// How often a signal came since this was made, and with what row where it tells of one.

#include <QAbstractItemModel>
#include <QEventLoop>

#include <type_traits>

namespace cairnfield {

class SignalCount {
public:
    template <class Sender, class Signal>
    SignalCount(Sender* sender, Signal signal) {
        connection_ = QObject::connect(sender, signal, [this](const auto&... arguments) {
            isFirst_ = true;
            (note(arguments), ...);
            ++count_;
            if (loop_) loop_->quit();
        });
    }
    ~SignalCount() { QObject::disconnect(connection_); }
    SignalCount(const SignalCount&) = delete;
    SignalCount& operator=(const SignalCount&) = delete;

    [[nodiscard]] int count() const { return count_; }
    /// Of the index that the last signal began with; -1 when it began with none.
    [[nodiscard]] int row() const { return row_; }
    /// Runs the event loop until the signal has come at least once.
    void waitForFirst() {
        if (count_ > 0) return;
        QEventLoop loop;
        loop_ = &loop;
        loop.exec();
        loop_ = nullptr;
    }

private:
    template <class Argument>
    void note(const Argument& argument) {
        if constexpr (std::is_same_v<Argument, QModelIndex>) {
            if (isFirst_) row_ = argument.row();
        }
        isFirst_ = false;
    }

    QMetaObject::Connection connection_;
    QEventLoop* loop_ = nullptr;
    int count_ = 0;
    int row_ = -1;
    bool isFirst_ = true;
};

}  // namespace cairnfield
