#include "Shared/Formatting/ByteFormatting.h"

#include "Shared/Formatting/CurrentLocale.h"

#include <unicode/locid.h>
#include <unicode/measunit.h>
#include <unicode/numberformatter.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <memory>
#include <mutex>

namespace cairnfield::ByteFormatting {

namespace {

using icu::number::LocalizedNumberFormatter;

/// Steps of a thousand, and how many digits after the decimal point each shows at most.
constexpr std::array<int, 6> digitsOfUnit{0, 0, 1, 2, 2, 2};
constexpr std::size_t byteUnit = 0;
constexpr std::size_t kilobyteUnit = 1;

LocalizedNumberFormatter formatterOf(std::size_t unit, const icu::Locale& locale) {
    const std::array units{icu::MeasureUnit::getByte(),     icu::MeasureUnit::getKilobyte(),
                           icu::MeasureUnit::getMegabyte(), icu::MeasureUnit::getGigabyte(),
                           icu::MeasureUnit::getTerabyte(), icu::MeasureUnit::getPetabyte()};
    // The short name of the byte knows no plural in English.
    const UNumberUnitWidth width = unit == byteUnit ? UNUM_UNIT_WIDTH_FULL_NAME : UNUM_UNIT_WIDTH_SHORT;
    return icu::number::NumberFormatter::withLocale(locale)
        .unit(units.at(unit))
        .unitWidth(width)
        .roundingMode(UNUM_ROUND_HALFUP)
        .precision(icu::number::Precision::minMaxFraction(0, digitsOfUnit.at(unit)));
}

/// The formatters of one locale. Formatting with one is safe from any thread.
struct Formatters {
    explicit Formatters(const icu::Locale& locale)
        : units{formatterOf(0, locale), formatterOf(1, locale), formatterOf(2, locale),
                formatterOf(3, locale), formatterOf(4, locale), formatterOf(5, locale)},
          percent(icu::number::NumberFormatter::withLocale(locale)
                      .unit(icu::NoUnit::percent())
                      .scale(icu::number::Scale::powerOfTen(2))
                      .roundingMode(UNUM_ROUND_HALFUP)
                      .precision(icu::number::Precision::minMaxFraction(0, 1))) {}

    const std::array<LocalizedNumberFormatter, 6> units;
    const LocalizedNumberFormatter percent;
};

/// Those of the present locale; kept for ever, since a person changes locales a few times at most.
const Formatters& currentFormatters() {
    static std::mutex mutex;
    static auto& kept = *new std::map<std::string, std::unique_ptr<const Formatters>>;
    const std::string name = detail::currentLocaleName(detail::LocaleCategory::numbers);
    const std::lock_guard lock(mutex);
    std::unique_ptr<const Formatters>& formatters = kept[name];
    if (!formatters)
        formatters = std::make_unique<const Formatters>(icu::Locale::createCanonical(name.c_str()));
    return *formatters;
}

std::string formatted(const LocalizedNumberFormatter& formatter, double value) {
    UErrorCode status = U_ZERO_ERROR;
    std::string text;
    formatter.formatDouble(value, status).toString(status).toUTF8String(text);
    return text;
}

double roundedTo(int digits, double value) {
    const double power = std::pow(10, digits);
    return std::round(value * power) / power;
}

}  // namespace

std::string string(std::int64_t bytes) {
    if (bytes < 0) bytes = 0;
    auto value = static_cast<double>(bytes);
    // Zero reads "0 kB".
    std::size_t unit = bytes == 0 ? kilobyteUnit : byteUnit;
    // What rounds to a thousand of one unit is one of the next: "1 MB" rather than "1,000 kB".
    while (unit + 1 < digitsOfUnit.size() && roundedTo(digitsOfUnit.at(unit), value) >= 1000) {
        value /= 1000;
        ++unit;
    }
    return formatted(currentFormatters().units.at(unit), value);
}

std::string estimatedString(std::int64_t bytes) {
    return "~" + string(bytes);
}

std::string signedString(std::int64_t bytes) {
    if (bytes == std::numeric_limits<std::int64_t>::min()) std::abort();
    if (bytes == 0) return string(0);
    return bytes > 0 ? "+" + string(bytes) : "-" + string(-bytes);
}

std::string percentString(double fraction) {
    // Written so that what is not a number reads as nothing.
    const double clamped = fraction > 0 ? std::min(fraction, 1.0) : 0;
    return formatted(currentFormatters().percent, clamped);
}

}  // namespace cairnfield::ByteFormatting
