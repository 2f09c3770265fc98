// What every fuzz program does at its start. The names of such functions are libFuzzer's.

#include "fuzz/FuzzProgram.h"

#include "Shared/Logging/Log.h"

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerInitialize(int* /*argumentCount*/, char*** /*arguments*/) {
    // Nearly every input of a store is a line otherwise.
    cairnfield::Log::persistence().set_level(spdlog::level::off);
    cairnfield::Log::cleanup().set_level(spdlog::level::off);
    return 0;
}
