#pragma once
// Writes a file of settings off the thread that changes them: whole texts, one after another, each newer than
// the last. A text that is overtaken before its turn is never written, so the order on disk is that of the
// changes, and the newest one is there in the end. A write that fails is one log line; the next one tries
// anew.
//
// Handed over on one thread, written on the threads of the executor.

#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/Strand.h"
#include "Shared/Concurrency/TaskScope.h"
#include "Shared/Files/StoredFile.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

namespace cairnfield {

class SettingsWriter {
public:
    /// So long nothing more is typed before what was typed is written.
    static constexpr std::chrono::seconds pause{1};

    /// Everything outlives the writer. `file` has been read, and is the writer's from now on.
    SettingsWriter(StoredFile& file, Executor& background, ContinuousClock& clock);
    /// Blocks until the newest text is on disk, or could not be written.
    ~SettingsWriter();
    SettingsWriter(const SettingsWriter&) = delete;
    SettingsWriter& operator=(const SettingsWriter&) = delete;

    /// Begins to write it at once; returns at once.
    void write(std::string text);
    /// Writes it when nothing came after it for as long as the pause; sooner with writeHeld() or write().
    void writeAfterPause(std::string text);
    void writeHeld();
    /// Returns when all that was handed over so far is on disk, or could not be written.
    Task<> flush();
    /// The same for a thread that may block; no executor is needed for it.
    void flushBlocking();

private:
    Task<> writeNewest();
    Task<> writeAfter(std::uint64_t held);
    void promoteHeld();
    void writeOut();

    StoredFile& file_;
    ContinuousClock& clock_;
    std::mutex writing_;  ///< of the one who writes; never taken by who hands over
    std::mutex mutex_;
    std::optional<std::string> newest_;  // guarded by mutex_
    std::optional<std::string> held_;    // guarded by mutex_; newer than newest_ while it is there
    std::uint64_t heldCount_ = 0;        // guarded by mutex_
    Strand strand_;                      ///< so that writes that wait for their turn block no thread
    TaskHandle<> pausing_;
    TaskScope tasks_;
};

}  // namespace cairnfield
