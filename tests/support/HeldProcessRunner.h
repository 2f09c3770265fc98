#pragma once
// Passes commands on, but lets some wait at their start until the test lets them go, and answers others in
// their place, held ones too. A command is meant by how its line of arguments begins. From any thread; `next`
// is set before the first command.

#include "Services/Process/ProcessRunning.h"
#include "support/SteppedClock.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace cairnfield {

class HeldProcessRunner final : public ProcessRunning {
public:
    ProcessRunning* next = nullptr;

    /// From now on every such command waits.
    void hold(std::string beginning) {
        const std::lock_guard lock(mutex_);
        held_ = std::move(beginning);
    }
    /// The commands that wait go on, and no later one waits.
    void letGo() {
        {
            const std::lock_guard lock(mutex_);
            held_.reset();
        }
        clock_.advance(patience);
    }
    [[nodiscard]] bool isHolding() const { return clock_.sleepers() > 0; }

    void answer(std::string beginning, CommandResult result) {
        const std::lock_guard lock(mutex_);
        answers_[std::move(beginning)] = std::move(result);
    }

    Task<CommandResult> run(CommandInvocation invocation) override {
        std::string line;
        for (const std::string& argument : invocation.arguments) line += (line.empty() ? "" : " ") + argument;
        if (waits(line)) co_await clock_.sleep(patience);
        std::optional<CommandResult> answer = answerTo(line);
        if (answer) co_return *std::move(answer);
        CommandResult result = co_await next->run(std::move(invocation));
        co_return result;
    }

private:
    static constexpr std::chrono::hours patience{1};

    [[nodiscard]] bool waits(const std::string& line) const {
        const std::lock_guard lock(mutex_);
        return held_ && line.starts_with(*held_);
    }
    [[nodiscard]] std::optional<CommandResult> answerTo(const std::string& line) const {
        const std::lock_guard lock(mutex_);
        for (const auto& [beginning, result] : answers_)
            if (line.starts_with(beginning)) return result;
        return std::nullopt;
    }

    SteppedClock clock_;
    mutable std::mutex mutex_;
    std::optional<std::string> held_;               // guarded by mutex_
    std::map<std::string, CommandResult> answers_;  // guarded by mutex_
};

}  // namespace cairnfield
