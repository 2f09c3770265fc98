#include "Shared/Logging/LogOutput.h"

#include <spdlog/pattern_formatter.h>
#include <sys/stat.h>

#include <iterator>
#include <string_view>

namespace cairnfield::detail {

namespace {

/// The levels of syslog, which the journal speaks.
char priorityOf(spdlog::level::level_enum level) {
    switch (level) {
        case spdlog::level::critical:
            return '2';
        case spdlog::level::err:
            return '3';
        case spdlog::level::warn:
            return '4';
        case spdlog::level::info:
            return '6';
        default:
            return '7';
    }
}

class JournalFormatter final : public spdlog::formatter {
public:
    void format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& line) override {
        fmt::format_to(std::back_inserter(line), "<{}>{}: {}\n", priorityOf(message.level),
                       std::string_view(message.logger_name.data(), message.logger_name.size()),
                       std::string_view(message.payload.data(), message.payload.size()));
    }
    [[nodiscard]] std::unique_ptr<spdlog::formatter> clone() const override {
        return std::make_unique<JournalFormatter>();
    }
};

}  // namespace

bool leadsToJournal(int descriptor, const std::optional<std::string>& journalStream) {
    struct stat status{};
    if (!journalStream || fstat(descriptor, &status) != 0) return false;
    return *journalStream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

std::unique_ptr<spdlog::formatter> journalFormatter() {
    return std::make_unique<JournalFormatter>();
}

std::unique_ptr<spdlog::formatter> plainFormatter() {
    return std::make_unique<spdlog::pattern_formatter>("%Y-%m-%d %H:%M:%S.%e %l [%n] %v");
}

}  // namespace cairnfield::detail
