#pragma once
// The one place where a person types a byte count. The field is labelled "GB" while its unit is 1,073,741,824
// bytes, so that 10 in the field reads as 10.74 GB elsewhere; that is settled. The text of the field is a
// number of the user's locale. Any thread.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield::GigabyteField {

inline constexpr double bytesPerUnit = 1'073'741'824.0;

/// The sign is left alone.
[[nodiscard]] inline double valueFromBytes(std::int64_t bytes) {
    return static_cast<double>(bytes) * (1 / bytesPerUnit);
}

/// Rounded to the nearest whole byte. A value whose bytes do not fit 64 bits is a programming fault that
/// stops the process.
[[nodiscard]] inline std::int64_t bytesFromValue(double value) {
    const double bytes = std::round(value * bytesPerUnit);
    constexpr double limit = 9'223'372'036'854'775'808.0;  // 2 to the 63rd
    if (!(bytes >= -limit && bytes < limit)) std::abort();
    return static_cast<std::int64_t>(bytes);
}

/// What the field shows: at most one digit after the decimal point.
[[nodiscard]] std::string text(std::int64_t bytes);

/// What a person typed. Absent for what is no number, and for one whose bytes do not fit 64 bits.
[[nodiscard]] std::optional<std::int64_t> bytesFromText(std::string_view typed);

}  // namespace cairnfield::GigabyteField
