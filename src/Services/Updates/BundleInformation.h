#pragma once
// What the build says about itself, under the keys that are looked up at run time. A plain value.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace cairnfield {

class BundleInformation {
public:
    using Value = std::variant<std::string, std::int64_t, bool>;

    BundleInformation() = default;
    explicit BundleInformation(std::map<std::string, Value, std::less<>> values)
        : values_(std::move(values)) {}

    /// Of this program: its version. It carries neither a feed of updates nor a key to verify them.
    [[nodiscard]] static BundleInformation ofThisProgram();

    /// Absent when there is no value, and when it is not text.
    [[nodiscard]] std::optional<std::string> text(std::string_view key) const;

private:
    std::map<std::string, Value, std::less<>> values_;
};

}  // namespace cairnfield
