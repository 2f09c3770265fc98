#pragma once
// What the whole test program holds on the heap. Replaces the global operator new, for this program alone.

#include <cstddef>

namespace cairnfield {

/// The most bytes held at a time since the object was made, beside those held then. One at a time.
class AllocationPeak {
public:
    AllocationPeak();
    [[nodiscard]] std::ptrdiff_t bytes() const;

private:
    std::ptrdiff_t before_;
};

}  // namespace cairnfield
