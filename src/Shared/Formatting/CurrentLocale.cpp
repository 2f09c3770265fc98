#include "Shared/Formatting/CurrentLocale.h"

#include "Shared/Environment/Environment.h"

namespace cairnfield::detail {

namespace {

const char* variableOf(LocaleCategory category) {
    switch (category) {
        case LocaleCategory::numbers:
            return "LC_NUMERIC";
        case LocaleCategory::dates:
            return "LC_TIME";
        case LocaleCategory::text:
            return "LC_COLLATE";
    }
    return "LANG";
}

}  // namespace

std::string localeNameFromEnvironment(std::string_view value) {
    const std::size_t modifier = value.find('@');
    const std::string_view language = value.substr(0, value.find_first_of(".@"));
    if (language.empty() || language == "C" || language == "POSIX") return "en_US";
    std::string name(language);
    if (modifier != std::string_view::npos) name += value.substr(modifier);
    return name;
}

std::string currentLocaleName(LocaleCategory category) {
    for (const char* variable : {"LC_ALL", variableOf(category), "LANG"}) {
        const std::optional<std::string> value = valueOf(environmentAtStart(), variable);
        if (value && !value->empty()) return localeNameFromEnvironment(*value);
    }
    return localeNameFromEnvironment({});
}

}  // namespace cairnfield::detail
