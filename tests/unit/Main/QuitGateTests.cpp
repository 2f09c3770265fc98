#include "Main/QuitGate.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

/// An application that is asked to end, with a number of cleanups under way.
class Ending : public testing::Test {
protected:
    Ending() {
        QObject::connect(&gate, &QuitGate::heldBack, &application, [this] { ++timesHeldBack; });
    }
    /// One after another, each in a turn of its own; the loop must still run for each of them.
    void run(std::vector<std::function<void()>> steps) {
        for (std::function<void()>& step : steps) {
            const auto counted = [this, step = std::move(step)] {
                ++stepsRun;
                step();
            };
            QMetaObject::invokeMethod(&application, counted, Qt::QueuedConnection);
        }
        EXPECT_EQ(QCoreApplication::exec(), 0);
    }

    int argc = 1;
    std::string name = "ending";
    char* argv = name.data();
    QCoreApplication application{argc, &argv};
    Published<int> cleanups{0};
    QuitGate gate{application, cleanups};
    int timesHeldBack = 0;
    int stepsRun = 0;
};

TEST_F(Ending, ComesAtOnceWithoutACleanup) {
    run({[] { QCoreApplication::quit(); }});
    EXPECT_EQ(timesHeldBack, 0);
}

TEST_F(Ending, WaitsForTheCleanupUnderWay) {
    cleanups.set(1);
    run({[] { QCoreApplication::quit(); }, [this] { EXPECT_EQ(timesHeldBack, 1); },
         [this] { cleanups.set(0); }});
    EXPECT_EQ(stepsRun, 3);
}

TEST_F(Ending, WaitsForTheLastOfSeveralCleanups) {
    cleanups.set(2);
    run({[] { QCoreApplication::quit(); }, [this] { cleanups.set(1); }, [] { QCoreApplication::quit(); },
         [this] { EXPECT_EQ(timesHeldBack, 2); }, [this] { cleanups.set(0); }});
    EXPECT_EQ(stepsRun, 5);
}

TEST_F(Ending, IsNotBroughtAboutByTheEndOfACleanupAlone) {
    cleanups.set(1);
    run({[this] { cleanups.set(0); }, [] {}, [] { QCoreApplication::quit(); }});
    EXPECT_EQ(stepsRun, 3);
    EXPECT_EQ(timesHeldBack, 0);
}

}  // namespace
}  // namespace cairnfield
