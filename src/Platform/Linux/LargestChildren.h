#pragma once
// The twelve largest of the children offered so far, in a room that does not grow with their number. Each
// child is offered once, when its sum is final. Equal sizes rank by name, so that the choice does not depend
// on the order of the offers. Not shared between threads.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

struct RankedChild {
    std::string name;
    std::int64_t bytes = 0;
    bool isDirectory = false;
};

class LargestChildren {
public:
    static constexpr std::size_t limit = 12;

    void offer(std::string_view name, std::int64_t bytes, bool isDirectory);
    void merge(const LargestChildren& others);

    /// Largest first.
    [[nodiscard]] std::vector<RankedChild> ranked() const;

private:
    std::vector<RankedChild> heap_;  ///< the least of them in front
};

}  // namespace cairnfield
