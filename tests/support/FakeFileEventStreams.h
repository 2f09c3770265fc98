#pragma once
// File events that the test makes up. Streams may be made and end on any thread; events come from the test's.

#include "Platform/FileEventStream.h"

#include <algorithm>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace cairnfield {

class FakeFileEventStreams final : public FileEventStreamCreating {
public:
    std::unique_ptr<FileEventStream> create(std::vector<FilePath> roots, std::chrono::milliseconds latency,
                                            OnChange onChange) override {
        const std::lock_guard lock(mutex_);
        if (refuses) throw std::system_error(std::make_error_code(std::errc::too_many_files_open), "events");
        auto stream = std::make_unique<Stream>(*this, std::move(roots), latency, std::move(onChange));
        running_.push_back(stream.get());
        return stream;
    }

    /// Reports the paths to every running stream.
    void report(const std::vector<FilePath>& paths) {
        const std::lock_guard lock(mutex_);
        for (const Stream* stream : running_) stream->onChange(paths);
    }

    /// What the one running stream watches; empty when none or several run.
    [[nodiscard]] std::vector<FilePath> roots() const {
        const std::lock_guard lock(mutex_);
        return running_.size() == 1 ? running_.front()->roots : std::vector<FilePath>{};
    }
    [[nodiscard]] std::size_t running() const {
        const std::lock_guard lock(mutex_);
        return running_.size();
    }
    [[nodiscard]] std::chrono::milliseconds latency() const {
        const std::lock_guard lock(mutex_);
        return running_.empty() ? std::chrono::milliseconds{} : running_.front()->latency;
    }

    bool refuses = false;  ///< set before streams are asked for

private:
    struct Stream final : FileEventStream {
        Stream(FakeFileEventStreams& owner, std::vector<FilePath> paths, std::chrono::milliseconds delay,
               OnChange callback)
            : owner_(owner), roots(std::move(paths)), latency(delay), onChange(std::move(callback)) {}
        ~Stream() override {
            const std::lock_guard lock(owner_.mutex_);
            std::erase(owner_.running_, this);
        }

        FakeFileEventStreams& owner_;
        std::vector<FilePath> roots;
        std::chrono::milliseconds latency;
        OnChange onChange;
    };

    mutable std::mutex mutex_;
    std::vector<Stream*> running_;  // guarded by mutex_
};

}  // namespace cairnfield
