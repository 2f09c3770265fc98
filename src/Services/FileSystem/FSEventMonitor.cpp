#include "Services/FileSystem/FSEventMonitor.h"

#include "Shared/Concurrency/TaskHandle.h"
#include "Shared/Logging/Log.h"

#include <utility>

namespace cairnfield {

namespace {

Task<> nothing(std::shared_ptr<Strand> /*queue*/) {
    co_return;
}

}  // namespace

FSEventMonitor::FSEventMonitor(Executor& pool, FileEventStreamCreating& streams,
                               std::chrono::milliseconds latency, OnChange onChange)
    : queue_(std::make_shared<Strand>(pool)),
      streams_(streams),
      latency_(latency),
      onChange_(std::move(onChange)) {}

FSEventMonitor::~FSEventMonitor() = default;

void FSEventMonitor::start(std::vector<FilePath> paths) {
    spawn(*queue_, starting(queue_, weak_from_this(), std::move(paths)));
}

void FSEventMonitor::stop() {
    spawn(*queue_, stopping(queue_, weak_from_this()));
}

Task<> FSEventMonitor::finished() {
    const std::shared_ptr<Strand> queue = queue_;
    const TaskHandle<> last = spawn(*queue, nothing(queue));
    co_await last.value();
}

Task<> FSEventMonitor::starting(std::shared_ptr<Strand> /*queue*/, Weak monitor,
                                std::vector<FilePath> paths) {
    const std::shared_ptr<FSEventMonitor> alive = monitor.lock();
    if (alive) alive->replaceStream(std::move(paths));
    co_return;
}

Task<> FSEventMonitor::stopping(std::shared_ptr<Strand> /*queue*/, Weak monitor) {
    const std::shared_ptr<FSEventMonitor> alive = monitor.lock();
    if (alive) alive->dropStream();
    co_return;
}

Task<> FSEventMonitor::telling(std::shared_ptr<Strand> /*queue*/, Weak monitor, std::uint64_t stream,
                               std::vector<FilePath> paths) {
    const std::shared_ptr<FSEventMonitor> alive = monitor.lock();
    if (!alive || !alive->stream_ || stream != alive->streamNumber_ || paths.empty()) co_return;
    alive->onChange_(std::move(paths));
}

void FSEventMonitor::replaceStream(std::vector<FilePath> paths) {
    dropStream();
    if (paths.empty()) return;
    const std::size_t count = paths.size();
    const std::uint64_t number = ++streamNumber_;
    auto tell = [queue = queue_, monitor = weak_from_this(), number](std::vector<FilePath> changed) {
        spawn(*queue, telling(queue, monitor, number, std::move(changed)));
    };
    try {
        stream_ = streams_.create(std::move(paths), latency_, std::move(tell));
    } catch (const std::exception&) {
        Log::events().error("Failed to create FSEvent stream");
        return;
    }
    Log::events().info("Watching {} path(s)", count);
}

void FSEventMonitor::dropStream() {
    stream_.reset();
}

}  // namespace cairnfield
