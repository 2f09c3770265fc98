#pragma once
// Reads numbers and pieces from bytes in git's network order, front to back. Running past the end is
// remembered and gives zeros and nothing from then on, so a reader asks once, at the end. Pure, any thread.

#include <cstdint>
#include <string_view>
#include <vector>

namespace cairnfield {

class ByteCursor {
public:
    explicit ByteCursor(std::string_view bytes) : bytes_(bytes) {}

    /// Whether everything so far was there and made sense.
    [[nodiscard]] bool isGood() const { return isGood_; }
    [[nodiscard]] std::size_t position() const { return position_; }
    [[nodiscard]] std::size_t remaining() const { return bytes_.size() - position_; }

    std::string_view take(std::size_t count);
    void skip(std::size_t count) { (void)take(count); }
    /// Without the zero, which is passed over.
    std::string_view takeUntilZero();
    std::uint16_t number16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t number32() { return static_cast<std::uint32_t>(number(4)); }
    /// Of variable length, as git writes the offsets of its packs.
    std::uint64_t offsetNumber();
    /// The positions of the bits that are set, ascending, of a bitmap compressed by runs of words (EWAH).
    std::vector<std::size_t> bitmap();

private:
    std::uint64_t number(std::size_t count);

    std::string_view bytes_;
    std::size_t position_ = 0;
    bool isGood_ = true;
};

}  // namespace cairnfield
