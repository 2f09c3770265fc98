#pragma once
// The user's locale, for this folder alone.

#include <string>
#include <string_view>

namespace cairnfield::detail {

/// What a locale decides; each has an environment variable of its own.
enum class LocaleCategory { numbers, dates, text };

/// The locale that the program was started in, as "en_US" or "de_DE@euro": LC_ALL, else the category's own
/// variable, else LANG. The C locale, which has no texts for people, and no locale at all read as "en_US".
[[nodiscard]] std::string currentLocaleName(LocaleCategory category);

/// The same from a value of one of those variables, by itself.
[[nodiscard]] std::string localeNameFromEnvironment(std::string_view value);

}  // namespace cairnfield::detail
