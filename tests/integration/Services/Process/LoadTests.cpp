// Many commands at once: none gets lost, nothing stays open, no thread is taken.

#include "Platform/Linux/DescriptorLimit.h"
#include "ProcessRunnerFixture.h"
#include "Shared/Concurrency/Cancelled.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>
#include <random>
#include <set>
#include <thread>

using namespace cairnfield;
using namespace std::chrono_literals;

namespace {

class LoadTest : public ProcessRunnerFixture {
protected:
    void TearDown() override {
        EXPECT_EQ(openDescriptors(), descriptors_);
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child was not waited for";
        EXPECT_EQ(errno, ECHILD);
    }

    const std::ptrdiff_t descriptors_ = [] {
        raiseDescriptorLimit();
        return openDescriptors();
    }();
};

}  // namespace

TEST_F(LoadTest, RunsTwoHundredCommandsAtOnce) {
    constexpr int count = 200;
    {
        NamedPipe news = makePipe("news");
        NamedPipe gate = makePipe("gate");
        std::vector<TaskHandle<CommandResult>> running;
        for (int i = 0; i < count; ++i) {
            const char* script = "echo $1 > \"$2\"; read -r line < \"$3\"; echo out $1; echo err $1 >&2";
            running.push_back(start(shell(script, {std::to_string(i), news.path(), gate.path()})));
        }
        std::set<std::string> started;
        for (int i = 0; i < count; ++i) started.insert(news.line());
        EXPECT_EQ(started.size(), 200U) << "all are alive together now";
        EXPECT_EQ(run(command("/bin/echo", {"room for more"})).standardOutput, "room for more\n");
        for (int i = 0; i < count; ++i) EXPECT_FALSE(running[static_cast<std::size_t>(i)].done());

        for (int i = 0; i < count; ++i) gate.write("go\n");
        for (int i = 0; i < count; ++i) {
            const CommandResult result = waitFor(running[static_cast<std::size_t>(i)]);
            EXPECT_EQ(result.standardOutput, "out " + std::to_string(i) + "\n");
            EXPECT_EQ(result.standardError, "err " + std::to_string(i));
        }
    }
}

TEST_F(LoadTest, SurvivesAStormOfCancellations) {
    constexpr int count = 300;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> milliseconds(0, 40);
    std::vector<TaskHandle<CommandResult>> running;
    for (int i = 0; i < count; ++i) {
        const std::string duration = "0.0" + std::to_string(10 + milliseconds(random));
        CommandInvocation invocation = shell("sleep " + duration + "; echo done");
        invocation.timeout = std::chrono::milliseconds(5 + milliseconds(random) * 10);
        running.push_back(start(std::move(invocation)));
        // Some at their very start, so that even on a machine that is late with everything a few are in time.
        if (i % 6 == 0) running.back().cancel();
    }
    std::thread forwards([&running] {
        for (std::size_t i = 1; i < running.size(); i += 3) running[i].cancel();
    });
    std::thread backwards([&running] {
        for (std::size_t i = running.size(); i-- > 0;) {
            if (i % 3 == 2) running[i].cancel();
        }
    });
    forwards.join();
    backwards.join();

    int results = 0;
    int cancelled = 0;
    int timedOut = 0;
    for (const TaskHandle<CommandResult>& task : running) {
        try {
            const CommandResult result = waitFor(task);
            EXPECT_EQ(result.standardOutput, "done\n");
            ++results;
        } catch (const Cancelled&) {
            ++cancelled;
        } catch (const CairnfieldError& error) {
            EXPECT_EQ(error.caseName(), "commandTimedOut");
            ++timedOut;
        }
    }
    EXPECT_EQ(results + cancelled + timedOut, count);
    EXPECT_GT(cancelled, 0) << results << " results, " << timedOut << " at their limit";
}

TEST_F(LoadTest, RunsOnWhenDescriptorsRunOut) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    {
        NamedPipe news = makePipe("news");
        NamedPipe gate = makePipe("gate");
        rlimit tight = before;
        tight.rlim_cur = static_cast<rlim_t>(openDescriptors()) + 12;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &tight), 0);
        std::vector<TaskHandle<CommandResult>> running;
        const char* script = "read -r line < \"$1\"; echo done";
        for (int i = 0; i < 10; ++i) running.push_back(start(shell(script, {gate.path()})));
        for (int i = 0; i < 10; ++i) gate.write("go\n");
        int failed = 0;
        for (const TaskHandle<CommandResult>& task : running) {
            try {
                EXPECT_EQ(waitFor(task).standardOutput, "done\n");
            } catch (const CairnfieldError& error) {
                const auto* failure = error.as<CairnfieldError::CommandFailed>();
                ASSERT_NE(failure, nullptr);
                EXPECT_EQ(failure->exitCode, -1);
                EXPECT_TRUE(failure->message.ends_with("Too many open files")) << failure->message;
                ++failed;
            }
        }
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
        EXPECT_GT(failed, 0);
        EXPECT_LT(failed, 10);
    }
    EXPECT_EQ(run(command("/bin/echo", {"again"})).standardOutput, "again\n");
}

TEST(DescriptorLimit, IsRaisedAndNeverLowered) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit low = before;
    low.rlim_cur = 512;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
    const std::uint64_t raised = raiseDescriptorLimit();
    EXPECT_EQ(raised, std::min<rlim_t>(8192, before.rlim_max));
    rlimit now{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &now), 0);
    EXPECT_EQ(now.rlim_cur, raised);
    if (before.rlim_max > 10'000) {
        now.rlim_cur = 10'000;
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &now), 0);
        EXPECT_EQ(raiseDescriptorLimit(), 10'000U);
    }
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
}
