#pragma once
// The user's settings in one JSON file, the desktop having no store of its own that keeps types. Main thread
// only. The file is read once, at construction. Every change writes it as a whole, off this thread and in the
// order of the changes (SettingsWriter), safely (Shared/Files/AtomicFile.h), readable by the user alone; what
// is being typed is written after a pause. One writer at a time: a change made by another program is lost
// with the next write.
//
// A value is a JSON value of its kind: true, 30, 0.15 and 7.0 (an integer has no point), "text", and {"data":
// "<base64>"}. Text takes the form of pathToJSONText, so that a path of any bytes comes back as it was. Keys
// that are not ours and values of no known kind are kept as they are and read as absent. A file that cannot
// be read or is not JSON is one log line and reads as empty. What is not JSON is kept beside it before the
// next write replaces it, and what cannot be read is not replaced (Shared/Files/StoredFile.h).

#include "Platform/Linux/SettingsWriter.h"
#include "Platform/UserDefaults.h"
#include "Shared/Files/StoredFile.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace cairnfield {

class FileUserDefaults final : public UserDefaults {
public:
    /// `file` and its folder need not exist; the first write makes them.
    /// The other two outlive the settings. Destroying these blocks until the last change is written.
    FileUserDefaults(FilePath file, Executor& background, ContinuousClock& clock,
                     std::shared_ptr<StoredFileNotices> notices = nullptr);

    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;
    void setWhileTyping(std::string_view key, DefaultsValue value) override;
    void doneTyping() override { writer_.writeHeld(); }
    void remove(std::string_view key) override;

    /// Returns when every change so far is on disk, or could not be written.
    Task<> flush() { return writer_.flush(); }
    /// The same for the moment before the process goes without taking anything down.
    void flushBlocking() { writer_.flushBlocking(); }

private:
    [[nodiscard]] std::string text() const;

    StoredFile file_;
    nlohmann::json values_ = nlohmann::json::object();
    SettingsWriter writer_;
};

}  // namespace cairnfield
