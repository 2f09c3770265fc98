#pragma once
// What the fuzz targets have in common. A target is one function over any bytes: it hands them to the code
// under test as that code would get them, and checks what must hold for whatever they are. It keeps nothing
// from one call to the next, so that every input can be replayed alone.
//
// The first byte of an input is the letter of its target, so that one program covers many small ones, and the
// letters never change their meaning: the corpora depend on them.

#include <span>
#include <stdexcept>
#include <string_view>

namespace cairnfield {

/// Something did not hold. The fuzzer stops at it as at a crash; a replay names the input.
class BrokenPromise : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

inline void promise(bool holds, const char* what) {
    if (!holds) throw BrokenPromise(what);
}

struct FuzzTarget {
    char letter;
    void (*run)(std::string_view input);
};

/// Whether an input was for any of the targets; one that was not is no use in a corpus.
enum class FuzzAnswer { ran, notForUs };

[[nodiscard]] inline FuzzAnswer runTarget(std::span<const FuzzTarget> targets, std::string_view input) {
    if (input.empty()) return FuzzAnswer::notForUs;
    for (const FuzzTarget& target : targets) {
        if (target.letter != input.front()) continue;
        target.run(input.substr(1));
        return FuzzAnswer::ran;
    }
    return FuzzAnswer::notForUs;
}

// The three programs. Each runs one input.
[[nodiscard]] FuzzAnswer fuzzParsers(std::string_view input);
[[nodiscard]] FuzzAnswer fuzzStores(std::string_view input);
[[nodiscard]] FuzzAnswer fuzzPullRequests(std::string_view input);

/// The letters of the targets, as many as there are.
[[nodiscard]] std::string_view parserLetters();
[[nodiscard]] std::string_view storeLetters();

}  // namespace cairnfield
