#pragma once
// The user's settings in one JSON file, the desktop having no store of its own that keeps types. Main thread
// only. The file is read once, at construction, and written as a whole on every change, safely
// (Shared/Files/AtomicFile.h), readable by the user alone. One writer at a time: a change made by another
// program is lost with the next write.
//
// A value is a JSON value of its kind: true, 30, 0.15 and 7.0 (an integer has no point), "text", and {"data":
// "<base64>"}. Text takes the form of pathToJSONText, so that a path of any bytes comes back as it was. Keys
// that are not ours and values of no known kind are kept as they are and read as absent. A file that cannot
// be read or is not JSON is one log line and reads as empty; it stays on disk until the next write replaces
// it.

#include "Platform/UserDefaults.h"
#include "Shared/Paths/FilePath.h"

#include <nlohmann/json.hpp>

namespace cairnfield {

class FileUserDefaults final : public UserDefaults {
public:
    /// `file` and its folder need not exist; the first write makes them.
    explicit FileUserDefaults(FilePath file);

    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;
    void remove(std::string_view key) override;

private:
    void write() const;

    const FilePath file_;
    nlohmann::json values_ = nlohmann::json::object();
};

}  // namespace cairnfield
