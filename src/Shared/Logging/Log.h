#pragma once
// One logger for each area of the program, all under the subsystem "com.cairnfield.app". For people; nothing
// reads it. Safe from any thread, cheap when the level is off. Lines go to the journal when standard error is
// connected to it, and to standard error otherwise.
//
//     Log::git().error("Listing {} failed: {}", root.display(), message);
//
// What comes from outside (paths, messages of programs) is passed as an argument, never as the format, and
// goes through visibleText() or FilePath::display() so that one event stays one line.

#include <spdlog/logger.h>

namespace cairnfield::Log {

[[nodiscard]] spdlog::logger& app();
[[nodiscard]] spdlog::logger& storage();
[[nodiscard]] spdlog::logger& scanner();
[[nodiscard]] spdlog::logger& events();  ///< category "fsevents"
[[nodiscard]] spdlog::logger& git();
[[nodiscard]] spdlog::logger& github();
[[nodiscard]] spdlog::logger& cleanup();
[[nodiscard]] spdlog::logger& notifications();
[[nodiscard]] spdlog::logger& persistence();

}  // namespace cairnfield::Log
