#pragma once
// What libFuzzer hands to a program, as the targets take it.

#include "fuzz/Fuzzing.h"

#include <cstddef>
#include <cstdint>

namespace cairnfield {

/// What libFuzzer expects back: whether the input is worth keeping at all.
inline int runForFuzzer(FuzzAnswer (*run)(std::string_view), const std::uint8_t* data, std::size_t size) {
    constexpr int keep = 0;
    constexpr int discard = -1;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    return run(input) == FuzzAnswer::ran ? keep : discard;
}

}  // namespace cairnfield
