#pragma once
// What one logger says while this lives, as "level: text" lines, in place of where it goes otherwise.

#include <spdlog/logger.h>
#include <spdlog/sinks/ostream_sink.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace cairnfield {

class CapturedLog {
public:
    explicit CapturedLog(spdlog::logger& logger) : logger_(logger), level_(logger.level()) {
        sink_->set_pattern("%l: %v");
        sinks_.swap(logger_.sinks());
        logger_.sinks().push_back(sink_);
        logger_.set_level(spdlog::level::debug);
    }
    ~CapturedLog() {
        sinks_.swap(logger_.sinks());
        logger_.set_level(level_);
    }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// Once nobody logs any more.
    [[nodiscard]] std::string text() const { return stream_.str(); }

private:
    spdlog::logger& logger_;
    const spdlog::level::level_enum level_;
    std::ostringstream stream_;
    std::vector<spdlog::sink_ptr> sinks_;
    const std::shared_ptr<spdlog::sinks::ostream_sink_mt> sink_ =
        std::make_shared<spdlog::sinks::ostream_sink_mt>(stream_, true);
};

}  // namespace cairnfield
