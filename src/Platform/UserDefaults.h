#pragma once
// The user's settings as the desktop keeps them: values with a type under text keys. Main thread only. Reads
// never fail; writes report nothing to the caller, and a failure is one line in the log. What is written is
// in force at once, and on disk soon, in the order of the calls, none of which waits for the disk.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace cairnfield {

/// Bytes kept as data, as opposed to text.
struct DefaultsData {
    std::string bytes;
    friend bool operator==(const DefaultsData&, const DefaultsData&) = default;
};

using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, DefaultsData>;

class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// The value with the type it was written with; absent when there is none.
    [[nodiscard]] virtual std::optional<DefaultsValue> value(std::string_view key) const = 0;
    virtual void set(std::string_view key, DefaultsValue value) = 0;
    /// The same for one of many values that follow each other as a person types: it need not be on disk
    /// before they pause, or doneTyping() is called.
    virtual void setWhileTyping(std::string_view key, DefaultsValue value) = 0;
    virtual void doneTyping() = 0;
    virtual void remove(std::string_view key) = 0;
};

}  // namespace cairnfield
