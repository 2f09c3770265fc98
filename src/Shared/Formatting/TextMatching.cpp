#include "Shared/Formatting/TextMatching.h"

#include "Shared/Formatting/CurrentLocale.h"
#include "Shared/Text/Text.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

namespace cairnfield {

namespace {

/// Turkish and Azerbaijani tell a dotted from a dotless i.
bool isDottedLocale(std::string_view name) {
    const std::string_view language = name.substr(0, name.find_first_of("_-@"));
    return language == "tr" || language == "az";
}

std::string folded(std::string_view text) {
    const bool dotted = isDottedLocale(detail::currentLocaleName(detail::LocaleCategory::text));
    const bool isASCII =
        std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (isASCII && !dotted) return lowercasedASCII(text);

    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* decomposed = icu::Normalizer2::getNFDInstance(status);
    const icu::Normalizer2* composed = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) return lowercasedASCII(text);
    // Decomposed first, since some letters fold differently with their accents apart.
    icu::UnicodeString work = icu::UnicodeString::fromUTF8(repairedUTF8(text));
    if (!dotted) work = decomposed->normalize(work, status);
    work.foldCase(dotted ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT);
    work = composed->normalize(work, status);
    std::string result;
    work.toUTF8String(result);
    return result;
}

/// That of the present locale, or null without one. Comparing with it is safe from any thread; kept for ever.
const icu::Collator* currentCollator() {
    static std::mutex mutex;
    static auto& kept = *new std::map<std::string, std::unique_ptr<const icu::Collator>>;
    const std::string name = detail::currentLocaleName(detail::LocaleCategory::text);
    const std::lock_guard lock(mutex);
    auto place = kept.find(name);
    if (place == kept.end()) {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> collator(
            icu::Collator::createInstance(icu::Locale::createCanonical(name.c_str()), status));
        if (collator) collator->setStrength(icu::Collator::SECONDARY);
        place = kept.emplace(name, std::move(collator)).first;
    }
    return place->second.get();
}

}  // namespace

FoldedText::FoldedText(std::string_view text) : folded_(folded(text)) {}

int compareIgnoringCase(std::string_view left, std::string_view right) {
    const icu::Collator* collator = currentCollator();
    if (!collator) return lowercasedASCII(left).compare(lowercasedASCII(right));
    UErrorCode status = U_ZERO_ERROR;
    return collator->compareUTF8(left, right, status);
}

}  // namespace cairnfield
