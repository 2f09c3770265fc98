#include "Models/UUID.h"
#include "Platform/Linux/Desktop/FileURI.h"
#include "Shared/Formatting/Characters.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Paths/PathContainment.h"
#include "Shared/Text/Base64.h"
#include "Shared/Text/Text.h"
#include "Shared/Time/Date.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/Targets.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace cairnfield {

namespace {

std::string withoutNul(std::string_view input) {
    std::string text(input);
    std::erase(text, '\0');
    return text;
}

void checkStandardized(const FilePath& path) {
    const FilePath standard = path.standardized();
    promise(standard.standardized() == standard, "the standardized form is its own");
    promise(standard.isAbsolute() == path.isAbsolute(), "a path stays absolute or relative");
    promise(standard.bytes().find("//") == std::string::npos, "no slash twice");
    if (!standard.isAbsolute()) return;
    promise(standard.parent().appending(standard.lastComponent()) == standard || standard.bytes() == "/",
            "a path is in its parent");
    promise(isAtOrBelow(standard, standard.parent()), "a path is below its parent");
    for (const std::string& component : standard.components())
        promise(component != "." && component != "..", "no way back is left");
}

std::string decodedURI(std::string_view uri) {
    std::string bytes;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        if (uri[i] != '%') {
            bytes += uri[i];
            continue;
        }
        bytes += static_cast<char>(std::stoi(std::string(uri.substr(i + 1, 2)), nullptr, 16));
        i += 2;
    }
    return bytes;
}

bool isControl(char c) {
    return (c >= 0 && c < 0x20) || c == 0x7F;
}

/// What may stand before a blank: the date that the first eight bytes are.
void checkDateOfBytes(std::string_view input) {
    std::int64_t count = 0;
    if (input.size() < sizeof(count)) return;
    std::memcpy(&count, input.data(), sizeof(count));
    const Date date{Date::duration(count)};
    if (date < std::chrono::ceil<std::chrono::seconds>(Date::min())) return;  // no whole second before it
    promise(dateFromISO8601(iso8601(date)) == std::chrono::floor<std::chrono::seconds>(date),
            "a date loses its fraction only");
}

}  // namespace

void fuzzPath(std::string_view input) {
    const FilePath path(withoutNul(input));
    const std::string text = pathToJSONText(path);
    promise(isValidUTF8(text), "a path's JSON form is text");
    promise(pathFromJSONText(text) == path, "a path keeps its bytes");

    const FilePath read = pathFromJSONText(repairedUTF8(input));
    promise(read.bytes().find('\0') == std::string::npos, "a path holds no NUL");
    promise(pathFromJSONText(pathToJSONText(read)) == read, "a path that was read keeps its bytes");

    promise(isValidUTF8(path.display()) && std::ranges::none_of(path.display(), isControl),
            "a path is shown on one line");
    checkStandardized(path);
    checkStandardized(FilePath("/" + path.bytes()));
    promise(path.appending("x").lastComponent() == "x", "what is inside is last");
}

void fuzzFileURI(std::string_view input) {
    const FilePath path("/" + std::string(input));
    const std::string uri = fileURI(path);
    promise(std::ranges::all_of(uri, [](char c) { return c > ' ' && c < 0x7F; }),
            "an address is plain ASCII");
    promise(decodedURI(uri) == "file://" + path.bytes(), "an address keeps the path's bytes");
}

void fuzzDate(std::string_view input) {
    checkDateOfBytes(input);
    const std::optional<Date> date = dateFromISO8601(input);
    if (!date) return;
    promise(dateFromISO8601(iso8601(*date)) == date, "a date reads as itself");
    promise(*date <= distantFuture(), "nothing is later than the distant future");
    promise(secondsBetween(*date, *date) == 0, "no time passes in an instant");
    promise(secondsBetween(Date(), *date) == -secondsBetween(*date, Date()), "time passes both ways alike");
    promise(secondsBetween(*date, distantFuture()) >= 0, "the future comes later");
}

void fuzzText(std::string_view input) {
    const std::size_t valid = validUTF8Length(input);
    promise(valid <= input.size() && isValidUTF8(input.substr(0, valid)), "the valid beginning is valid");
    const std::string repaired = repairedUTF8(input);
    promise(isValidUTF8(repaired) && repairedUTF8(repaired) == repaired, "repaired text is valid");
    promise(isValidUTF8(input) == (repaired == input), "valid text stays as it is");

    const std::string_view inner = trimmed(repaired);
    promise(isValidUTF8(inner) && trimmed(inner) == inner, "trimmed text is trimmed");
    (void)trimmed(input);

    const std::string visible = visibleText(input);
    promise(isValidUTF8(visible) && std::ranges::none_of(visible, isControl), "visible text is one line");
    promise(visibleText(visible) == visible, "visible text is visible");

    std::string together;
    for (const std::string& character : userPerceivedCharacters(input)) {
        promise(!character.empty() && isValidUTF8(character), "a character is text");
        together += character;
    }
    promise(together == repaired, "characters make up their text");
    promise(lowercasedASCII(lowercasedASCII(input)) == lowercasedASCII(input), "small letters stay small");
}

void fuzzBase64(std::string_view input) {
    const std::string encoded = base64Encoded(input);
    promise(base64Decoded(encoded) == input, "bytes come back");
    promise(encoded.size() == (input.size() + 2) / 3 * 4, "four letters for three bytes");
    const std::optional<std::string> decoded = base64Decoded(input);
    if (!decoded) return;
    promise(input.size() % 4 == 0 && decoded->size() <= input.size() / 4 * 3, "three bytes for four letters");
    promise(base64Decoded(base64Encoded(*decoded)) == decoded, "bytes that were read come back");
}

void fuzzUUID(std::string_view input) {
    const std::optional<UUID> uuid = UUID::parse(input);
    if (!uuid) return;
    promise(lowercasedASCII(uuid->text()) == lowercasedASCII(input), "an identity keeps its digits");
    promise(UUID::parse(uuid->text()) == uuid, "an identity reads as itself");
}

}  // namespace cairnfield
