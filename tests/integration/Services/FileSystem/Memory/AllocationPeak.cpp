#include "AllocationPeak.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::ptrdiff_t> held = 0;
std::atomic<std::ptrdiff_t> most = 0;

}  // namespace

void* operator new(std::size_t size) {
    void* memory = std::malloc(size);
    if (!memory) throw std::bad_alloc();
    const std::ptrdiff_t now = held += static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    std::ptrdiff_t peak = most;
    while (now > peak && !most.compare_exchange_weak(peak, now)) {
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    held -= static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

namespace cairnfield {

AllocationPeak::AllocationPeak() : before_(held) {
    most = before_;
}

std::ptrdiff_t AllocationPeak::bytes() const {
    return most - before_;
}

}  // namespace cairnfield
