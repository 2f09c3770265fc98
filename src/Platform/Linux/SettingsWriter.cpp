#include "Platform/Linux/SettingsWriter.h"

#include "Shared/Concurrency/RunOn.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield {

SettingsWriter::SettingsWriter(StoredFile& file, Executor& background, ContinuousClock& clock)
    : file_(file), clock_(clock), strand_(background) {}

SettingsWriter::~SettingsWriter() {
    tasks_.cancel();
    tasks_.joinBlocking();
    flushBlocking();
}

void SettingsWriter::write(std::string text) {
    {
        const std::lock_guard lock(mutex_);
        newest_ = std::move(text);
        held_.reset();
    }
    tasks_.add(strand_, writeNewest());
}

void SettingsWriter::writeAfterPause(std::string text) {
    std::uint64_t held = 0;
    {
        const std::lock_guard lock(mutex_);
        held_ = std::move(text);
        held = ++heldCount_;
    }
    pausing_.cancel();
    pausing_ = tasks_.add(strand_, writeAfter(held));
}

void SettingsWriter::writeHeld() {
    promoteHeld();
    tasks_.add(strand_, writeNewest());
}

Task<> SettingsWriter::flush() {
    promoteHeld();
    const auto write = [this] { writeOut(); };
    co_await runOn(strand_, write);
}

void SettingsWriter::flushBlocking() {
    promoteHeld();
    writeOut();
}

Task<> SettingsWriter::writeNewest() {
    writeOut();
    co_return;
}

Task<> SettingsWriter::writeAfter(std::uint64_t held) {
    co_await clock_.sleep(pause);
    {
        const std::lock_guard lock(mutex_);
        if (held != heldCount_) co_return;
    }
    promoteHeld();
    writeOut();
}

void SettingsWriter::promoteHeld() {
    const std::lock_guard lock(mutex_);
    if (held_) newest_ = std::exchange(held_, std::nullopt);
}

void SettingsWriter::writeOut() {
    const std::lock_guard oneAtATime(writing_);
    for (;;) {
        std::optional<std::string> text;
        {
            const std::lock_guard lock(mutex_);
            text = std::exchange(newest_, std::nullopt);
        }
        if (!text) return;
        try {
            file_.replace(*text);
        } catch (const std::exception& failure) {
            Log::persistence().error("Could not write {}: {}", visibleText(file_.path().lastComponent()),
                                     visibleText(describe(failure)));
        }
    }
}

}  // namespace cairnfield
