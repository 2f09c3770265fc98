#include "fuzz/FuzzProgram.h"

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return cairnfield::runForFuzzer(cairnfield::fuzzPullRequests, data, size);
}
