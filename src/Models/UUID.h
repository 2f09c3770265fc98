#pragma once
// A random identity of 128 bits. Its one text form is the canonical one in upper case. A plain value, any
// thread.

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

class UUID {
public:
    /// All zero: names nothing.
    UUID() = default;

    /// A new identity from the system's random source.
    [[nodiscard]] static UUID make();

    /// Reads the canonical form in either case; absent for anything else.
    [[nodiscard]] static std::optional<UUID> parse(std::string_view text);

    /// "6F9619FF-8B86-D011-B42D-00C04FC964FF".
    [[nodiscard]] std::string text() const;

    friend auto operator<=>(const UUID&, const UUID&) = default;
    friend bool operator==(const UUID&, const UUID&) = default;

private:
    std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace cairnfield
