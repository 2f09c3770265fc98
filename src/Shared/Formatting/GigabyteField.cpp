#include "Shared/Formatting/GigabyteField.h"

#include "Shared/Formatting/CurrentLocale.h"
#include "Shared/Text/Text.h"

#include <unicode/locid.h>
#include <unicode/numberformatter.h>
#include <unicode/numfmt.h>

#include <memory>

namespace cairnfield::GigabyteField {

namespace {

icu::Locale currentLocale() {
    return icu::Locale::createCanonical(detail::currentLocaleName(detail::LocaleCategory::numbers).c_str());
}

std::optional<double> numberFromText(std::string_view typed) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createInstance(currentLocale(), status));
    if (U_FAILURE(status)) return std::nullopt;
    // So that "1.5" is nothing, rather than 15, where the point separates thousands.
    format->setLenient(false);
    const std::string plain = repairedUTF8(typed);
    const std::string_view number = trimmed(plain);
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(
        icu::StringPiece(number.data(), static_cast<std::int32_t>(number.size())));
    icu::Formattable parsed;
    icu::ParsePosition position(0);
    format->parse(text, parsed, position);
    if (position.getIndex() == 0 || position.getIndex() != text.length()) return std::nullopt;
    const double value = parsed.getDouble(status);
    if (U_FAILURE(status)) return std::nullopt;
    return value;
}

}  // namespace

std::string text(std::int64_t bytes) {
    UErrorCode status = U_ZERO_ERROR;
    std::string text;
    icu::number::NumberFormatter::withLocale(currentLocale())
        .roundingMode(UNUM_ROUND_HALFUP)
        .precision(icu::number::Precision::minMaxFraction(0, 1))
        .formatDouble(valueFromBytes(bytes), status)
        .toString(status)
        .toUTF8String(text);
    return text;
}

std::optional<std::int64_t> bytesFromText(std::string_view typed) {
    constexpr double limit = 8'589'934'592.0;  // units: 2 to the 63rd bytes
    const std::optional<double> value = numberFromText(typed);
    if (!value || !(*value > -limit && *value < limit)) return std::nullopt;
    return bytesFromValue(*value);
}

}  // namespace cairnfield::GigabyteField
