#include "Shared/Logging/Log.h"
#include "Shared/Logging/LogOutput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <unistd.h>
#include <vector>

namespace cairnfield {
namespace {

using testing::MatchesRegex;

std::string formatted(spdlog::formatter& formatter, spdlog::level::level_enum level, const char* text) {
    spdlog::memory_buf_t line;
    formatter.format(spdlog::details::log_msg("git", level, text), line);
    return {line.data(), line.size()};
}

TEST(Log, HasOneLoggerForEachArea) {
    const std::vector<std::pair<spdlog::logger&, std::string>> areas{{Log::app(), "app"},
                                                                     {Log::storage(), "storage"},
                                                                     {Log::scanner(), "scanner"},
                                                                     {Log::events(), "fsevents"},
                                                                     {Log::git(), "git"},
                                                                     {Log::github(), "github"},
                                                                     {Log::cleanup(), "cleanup"},
                                                                     {Log::notifications(), "notifications"},
                                                                     {Log::persistence(), "persistence"}};
    for (const auto& [logger, category] : areas) EXPECT_EQ(logger.name(), category);
    EXPECT_EQ(&Log::git(), &Log::git());
}

TEST(Log, WritesOneLineToStandardError) {
    testing::internal::CaptureStderr();
    Log::git().error("Listing {} failed: {}", "/a{}b", "no");
    const std::string line = testing::internal::GetCapturedStderr();
    EXPECT_THAT(line,
                MatchesRegex("[0-9-]+ [0-9:]+\\.[0-9]+ error \\[git\\] Listing /a\\{\\}b failed: no\n"));
}

TEST(Log, KeepsDebugLinesToItself) {
    testing::internal::CaptureStderr();
    Log::scanner().debug("Walked {}", 7);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(LogOutput, TellsThePriorityToTheJournal) {
    const auto formatter = detail::journalFormatter();
    EXPECT_EQ(formatted(*formatter, spdlog::level::err, "failed"), "<3>git: failed\n");
    EXPECT_EQ(formatted(*formatter, spdlog::level::warn, "odd"), "<4>git: odd\n");
    EXPECT_EQ(formatted(*formatter->clone(), spdlog::level::info, "listed"), "<6>git: listed\n");
    EXPECT_EQ(formatted(*formatter, spdlog::level::debug, "detail"), "<7>git: detail\n");
}

TEST(LogOutput, KnowsTheJournalByDeviceAndInode) {
    struct stat status{};
    ASSERT_EQ(fstat(STDERR_FILENO, &status), 0);
    const std::string device = std::to_string(status.st_dev);
    const std::string inode = std::to_string(status.st_ino);
    EXPECT_TRUE(detail::leadsToJournal(STDERR_FILENO, device + ":" + inode));
    EXPECT_FALSE(detail::leadsToJournal(STDERR_FILENO, device + ":" + inode + "1"));
    EXPECT_FALSE(detail::leadsToJournal(STDERR_FILENO, std::nullopt));
    EXPECT_FALSE(detail::leadsToJournal(STDERR_FILENO, ""));
    EXPECT_FALSE(detail::leadsToJournal(-1, device + ":" + inode));
}

}  // namespace
}  // namespace cairnfield
