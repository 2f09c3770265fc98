#include "Models/UUID.h"

#include <uuid/uuid.h>

namespace cairnfield {

namespace {

constexpr std::size_t textLength = 36;

}  // namespace

UUID UUID::make() {
    UUID made;
    uuid_generate_random(made.bytes_.data());
    return made;
}

std::optional<UUID> UUID::parse(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    UUID read;
    if (uuid_parse(std::string(text).c_str(), read.bytes_.data()) != 0) return std::nullopt;
    return read;
}

std::string UUID::text() const {
    std::array<char, textLength + 1> text{};
    uuid_unparse_upper(bytes_.data(), text.data());
    return text.data();
}

}  // namespace cairnfield
