#include "Platform/Linux/InotifyEventStreams.h"

#include "Platform/Linux/EventWatch.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield {

namespace {

Task<> running(std::shared_ptr<EventWatch> watch) {
    co_await watch->run();
}

void logEnd(std::exception_ptr failure) {
    try {
        std::rethrow_exception(std::move(failure));
    } catch (const std::exception& error) {
        Log::events().error("The watching has ended: {}", visibleText(error.what()));
    }
}

class InotifyEventStream final : public FileEventStream {
public:
    InotifyEventStream(std::shared_ptr<EventWatch> watch, TaskHandle<> task)
        : watch_(std::move(watch)), task_(std::move(task)) {}
    InotifyEventStream(const InotifyEventStream&) = delete;
    InotifyEventStream& operator=(const InotifyEventStream&) = delete;
    ~InotifyEventStream() override {
        watch_->listener().close();
        watch_.reset();  // the task is the one that closes the queue, which takes its time
        task_.cancel();
    }

private:
    std::shared_ptr<EventWatch> watch_;
    const TaskHandle<> task_;
};

}  // namespace

InotifyEventStreams::InotifyEventStreams(Reactor& reactor, Executor& blocking, InotifyLimits limits)
    : reactor_(reactor), blocking_(blocking), limits_(limits), tasks_(&logEnd) {}

InotifyEventStreams::~InotifyEventStreams() {
    tasks_.cancel();
    tasks_.joinBlocking();
}

std::unique_ptr<FileEventStream> InotifyEventStreams::create(std::vector<FilePath> roots,
                                                             std::chrono::milliseconds latency,
                                                             OnChange onChange) {
    auto watch = std::make_shared<EventWatch>(reactor_, roots, latency, std::move(onChange), limits_.watches);
    TaskHandle<> task = tasks_.add(blocking_, running(watch));
    return std::make_unique<InotifyEventStream>(std::move(watch), std::move(task));
}

}  // namespace cairnfield
