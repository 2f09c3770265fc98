#pragma once
// Passes commands on, and lets a test do something right before or right after one, or answer in its place.
// Set up before commands run.

#include "Services/Process/ProcessRunning.h"

#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class InterferingProcessRunner final : public ProcessRunning {
public:
    explicit InterferingProcessRunner(ProcessRunning& runner) : runner_(runner) {}

    /// `beginning` is how the command's line of arguments begins. Each deed is done once, at the first
    /// command from then on that has it, and before the deeds that were added later.
    void before(std::string beginning, std::function<void()> deed) {
        before_.push_back({std::move(beginning), std::move(deed)});
    }
    void after(std::string beginning, std::function<void()> deed) {
        after_.push_back({std::move(beginning), std::move(deed)});
    }
    /// The first such command is not run and gives this instead.
    void answer(std::string beginning, CommandResult result) {
        answers_.push_back({std::move(beginning), std::move(result), nullptr});
    }
    void fail(std::string beginning, std::exception_ptr failure) {
        answers_.push_back({std::move(beginning), {}, std::move(failure)});
    }

    Task<CommandResult> run(CommandInvocation invocation) override {
        std::string line;
        for (const std::string& argument : invocation.arguments) line += (line.empty() ? "" : " ") + argument;
        doFirst(before_, line);
        for (auto found = answers_.begin(); found != answers_.end(); ++found) {
            if (!line.starts_with(found->beginning)) continue;
            const Answer answer = std::move(*found);
            answers_.erase(found);
            if (answer.failure) std::rethrow_exception(answer.failure);
            co_return answer.result;
        }
        CommandResult result = co_await runner_.run(std::move(invocation));
        doFirst(after_, line);
        co_return result;
    }

    /// Whether everything that was set up has come to pass.
    [[nodiscard]] bool isDone() const { return before_.empty() && after_.empty() && answers_.empty(); }

private:
    struct Deed {
        std::string beginning;
        std::function<void()> what;
    };
    struct Answer {
        std::string beginning;
        CommandResult result;
        std::exception_ptr failure;
    };

    static void doFirst(std::vector<Deed>& deeds, const std::string& line) {
        for (auto found = deeds.begin(); found != deeds.end(); ++found) {
            if (!line.starts_with(found->beginning)) continue;
            const std::function<void()> what = std::move(found->what);
            deeds.erase(found);
            what();
            return;
        }
    }

    ProcessRunning& runner_;
    std::vector<Deed> before_;
    std::vector<Deed> after_;
    std::vector<Answer> answers_;
};

}  // namespace cairnfield
