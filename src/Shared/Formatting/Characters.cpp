#include "Shared/Formatting/Characters.h"

#include "Shared/Text/Text.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <memory>

namespace cairnfield {

std::vector<std::string> userPerceivedCharacters(std::string_view text) {
    const icu::UnicodeString work = icu::UnicodeString::fromUTF8(repairedUTF8(text));
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> boundaries(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) std::abort();  // the library's own data is missing
    boundaries->setText(work);
    std::vector<std::string> characters;
    std::int32_t start = boundaries->first();
    for (std::int32_t end = boundaries->next(); end != icu::BreakIterator::DONE; end = boundaries->next()) {
        work.tempSubStringBetween(start, end).toUTF8String(characters.emplace_back());
        start = end;
    }
    return characters;
}

}  // namespace cairnfield
