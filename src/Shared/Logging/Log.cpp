#include "Shared/Logging/Log.h"

#include "Shared/Environment/Environment.h"
#include "Shared/Logging/LogOutput.h"

#include <spdlog/sinks/stdout_sinks.h>

#include <unistd.h>

namespace cairnfield::Log {

namespace {

spdlog::sink_ptr makeOutput() {
    const bool journal =
        detail::leadsToJournal(STDERR_FILENO, valueOf(environmentAtStart(), "JOURNAL_STREAM"));
    auto output = std::make_shared<spdlog::sinks::stderr_sink_mt>();
    output->set_formatter(journal ? detail::journalFormatter() : detail::plainFormatter());
    return output;
}

/// All areas of the program. Never destroyed: a thread that still runs while the process exits may log.
struct Areas {
    const spdlog::sink_ptr output = makeOutput();
    spdlog::logger app{"app", output};
    spdlog::logger storage{"storage", output};
    spdlog::logger scanner{"scanner", output};
    spdlog::logger events{"fsevents", output};
    spdlog::logger git{"git", output};
    spdlog::logger github{"github", output};
    spdlog::logger cleanup{"cleanup", output};
    spdlog::logger notifications{"notifications", output};
    spdlog::logger persistence{"persistence", output};
};

Areas& areas() {
    static Areas& all = *new Areas;
    return all;
}

}  // namespace

spdlog::logger& app() {
    return areas().app;
}
spdlog::logger& storage() {
    return areas().storage;
}
spdlog::logger& scanner() {
    return areas().scanner;
}
spdlog::logger& events() {
    return areas().events;
}
spdlog::logger& git() {
    return areas().git;
}
spdlog::logger& github() {
    return areas().github;
}
spdlog::logger& cleanup() {
    return areas().cleanup;
}
spdlog::logger& notifications() {
    return areas().notifications;
}
spdlog::logger& persistence() {
    return areas().persistence;
}

}  // namespace cairnfield::Log
