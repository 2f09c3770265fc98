#pragma once
// A Qt application without a window, for as long as a test lives: timers and queued signals need one.

#include <QCoreApplication>

namespace cairnfield {

class QtApplication {
public:
    /// Delivers what is due now; does not wait for what is due later.
    static void processEvents() { QCoreApplication::processEvents(); }

private:
    int argumentCount_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_{argumentCount_, arguments_};
};

}  // namespace cairnfield
