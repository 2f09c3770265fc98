#include "Services/Cleanup/ByteCursor.h"

#include <algorithm>

namespace cairnfield {

namespace {

/// More bits than an index has entries is not a bitmap of positions in one. A few bytes can set them all, at
/// eight bytes of memory for each.
constexpr std::size_t mostBits = std::size_t(1) << 24U;
constexpr std::size_t wordBits = 64;

}  // namespace

std::string_view ByteCursor::take(std::size_t count) {
    if (!isGood_ || count > remaining()) {
        isGood_ = false;
        return {};
    }
    const std::string_view piece = bytes_.substr(position_, count);
    position_ += count;
    return piece;
}

std::string_view ByteCursor::takeUntilZero() {
    const std::size_t zero = bytes_.find('\0', position_);
    if (zero == std::string_view::npos) {
        isGood_ = false;
        return {};
    }
    const std::string_view piece = take(zero - position_);
    skip(1);
    return piece;
}

std::uint64_t ByteCursor::number(std::size_t count) {
    std::uint64_t value = 0;
    for (const char byte : take(count)) value = value << 8U | static_cast<unsigned char>(byte);
    return value;
}

std::uint64_t ByteCursor::offsetNumber() {
    constexpr std::uint64_t tooLarge = std::uint64_t(1) << 48U;
    std::uint64_t byte = number(1);
    std::uint64_t value = byte & 0x7FU;
    while ((byte & 0x80U) != 0 && isGood_) {
        if (value > tooLarge) isGood_ = false;
        byte = number(1);
        value = ((value + 1) << 7U) | (byte & 0x7FU);
    }
    return value;
}

std::vector<std::size_t> ByteCursor::bitmap() {
    std::vector<std::size_t> set;
    const std::size_t bits = number32();
    std::size_t words = number32();
    if (bits > mostBits || words > remaining() / 8) isGood_ = false;
    std::size_t position = 0;
    while (isGood_ && words > 0) {
        const std::uint64_t marker = number(8);
        --words;
        const bool runBit = (marker & 1U) != 0;
        const std::size_t run = (marker >> 1U) & 0xFFFFFFFFU;
        const std::size_t literals = marker >> 33U;
        if (run > mostBits / wordBits || literals > words || position > bits) {
            isGood_ = false;
            break;
        }
        const std::size_t runEnd = std::min(position + run * wordBits, bits);
        for (std::size_t bit = position; runBit && bit < runEnd; ++bit) set.push_back(bit);
        position += run * wordBits;
        for (std::size_t i = 0; i < literals; ++i, position += wordBits) {
            const std::uint64_t word = number(8);
            for (std::size_t bit = 0; bit < wordBits; ++bit) {
                if ((word >> bit & 1U) != 0 && position + bit < bits) set.push_back(position + bit);
            }
        }
        words -= literals;
    }
    skip(4);  // where the last marker stands
    return set;
}

}  // namespace cairnfield
