#include "support/ScriptedChildProcess.h"

namespace cairnfield {

namespace {

class ScriptedChildProcess final : public ChildProcess {
public:
    explicit ScriptedChildProcess(ChildProcessScript& script) : script_(script) {}

    Task<ChildProcessWait> waitForEnd(ContinuousClock::Instant deadline, ChildProcessOutput& into) override {
        script_.deadline = deadline;
        script_.whileWaiting();
        if (script_.wait == ChildProcessWait::ended) into = script_.output;
        co_return script_.wait;
    }

    Task<> waitForEndShielded(ChildProcessOutput& into) override {
        ++script_.shieldedWaits;
        into = script_.output;
        co_return;
    }

    void terminate() noexcept override { ++script_.terminations; }
    [[nodiscard]] ChildProcessEnd end() const override { return {script_.status}; }

private:
    ChildProcessScript& script_;
};

}  // namespace

std::unique_ptr<ChildProcess> ScriptedChildProcessStarter::start(const ChildProcessDescription& description) {
    script_.started = description;
    if (script_.launchFailure) throw std::system_error(*script_.launchFailure, "launch");
    return std::make_unique<ScriptedChildProcess>(script_);
}

}  // namespace cairnfield
