#pragma once
// Byte counts and shares as a person reads them, in the user's locale and in decimal units. Every size on a
// screen, in a notification or in an error goes through here. Any thread; the locale is looked up at each
// call, the formatters are kept.

#include <cstdint>
#include <string>

namespace cairnfield::ByteFormatting {

/// "1.5 GB". A negative count reads as zero.
[[nodiscard]] std::string string(std::int64_t bytes);

/// "~1.5 GB", for sizes that no one has counted to the last byte.
[[nodiscard]] std::string estimatedString(std::int64_t bytes);

/// "+1.5 GB", "-1.5 GB", and no sign for exactly zero. The most negative value is a programming fault.
[[nodiscard]] std::string signedString(std::int64_t bytes);

/// "12.5%": a fraction held between 0 and 1, with at most one digit after the decimal point.
[[nodiscard]] std::string percentString(double fraction);

}  // namespace cairnfield::ByteFormatting
