#include "Shared/Formatting/DateFormatting.h"

#include "Shared/Environment/Environment.h"
#include "Shared/Formatting/CurrentLocale.h"

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/reldatefmt.h>
#include <unicode/timezone.h>

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace cairnfield::DateFormatting {

namespace {

/// The formatters of one locale and time zone. Neither may be used by two threads at a time.
struct Formatters {
    std::unique_ptr<icu::DateFormat> absolute;
    std::unique_ptr<icu::RelativeDateTimeFormatter> relative;
};

Formatters makeFormatters(const std::string& localeName, const std::string& zoneName) {
    const icu::Locale locale = icu::Locale::createCanonical(localeName.c_str());
    UErrorCode status = U_ZERO_ERROR;
    Formatters made;
    made.absolute.reset(
        icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium, icu::DateFormat::kShort, locale));
    made.relative = std::make_unique<icu::RelativeDateTimeFormatter>(locale, nullptr, UDAT_STYLE_SHORT,
                                                                     UDISPCTX_CAPITALIZATION_NONE, status);
    std::unique_ptr<icu::TimeZone> zone;
    if (!zoneName.empty()) zone.reset(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zoneName)));
    if (!zone || *zone == icu::TimeZone::getUnknown()) zone.reset(icu::TimeZone::detectHostTimeZone());
    if (zone && made.absolute) made.absolute->adoptTimeZone(zone.release());
    return made;
}

/// Lets `use` have the formatters of the present locale and time zone to itself. They are kept for ever.
template <class Use>
std::string withCurrentFormatters(Use use) {
    static std::mutex mutex;
    static auto& kept = *new std::map<std::pair<std::string, std::string>, Formatters>;
    const std::pair<std::string, std::string> key(detail::currentLocaleName(detail::LocaleCategory::dates),
                                                  valueOf(environmentAtStart(), "TZ").value_or(""));
    const std::lock_guard lock(mutex);
    auto place = kept.find(key);
    if (place == kept.end()) place = kept.emplace(key, makeFormatters(key.first, key.second)).first;
    icu::UnicodeString text;
    use(place->second, text);
    std::string result;
    text.toUTF8String(result);
    return result;
}

struct Unit {
    double seconds;
    URelativeDateTimeUnit name;
};

/// Largest first; a year and its twelfth are those of the calendar's average.
constexpr std::array<Unit, 7> units{{{31'557'600, UDAT_REL_UNIT_YEAR},
                                     {2'629'800, UDAT_REL_UNIT_MONTH},
                                     {604'800, UDAT_REL_UNIT_WEEK},
                                     {86'400, UDAT_REL_UNIT_DAY},
                                     {3'600, UDAT_REL_UNIT_HOUR},
                                     {60, UDAT_REL_UNIT_MINUTE},
                                     {1, UDAT_REL_UNIT_SECOND}}};

constexpr const char* never = "Never";

}  // namespace

std::string absolute(std::optional<Date> date) {
    if (!date) return never;
    const UDate milliseconds = secondsBetween(Date(), *date) * 1000;
    return withCurrentFormatters([&](Formatters& formatters, icu::UnicodeString& text) {
        if (formatters.absolute) formatters.absolute->format(milliseconds, text);
    });
}

std::string relative(std::optional<Date> date, Date now) {
    if (!date) return never;
    const double seconds = secondsBetween(now, *date);  // negative in the past
    std::size_t unit = 0;
    while (unit + 1 < units.size() && std::fabs(seconds) < units.at(unit).seconds) ++unit;
    const double count = std::trunc(seconds / units.at(unit).seconds);
    return withCurrentFormatters([&](Formatters& formatters, icu::UnicodeString& text) {
        UErrorCode status = U_ZERO_ERROR;
        formatters.relative->formatNumeric(count, units.at(unit).name, text, status);
    });
}

}  // namespace cairnfield::DateFormatting
