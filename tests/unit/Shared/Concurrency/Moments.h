#pragma once

#include <atomic>
#include <thread>

namespace cairnfield {

/// Lets a varying little time pass without sleeping, so that two threads meet at ever different moments.
inline void passMoments(int count) {
    std::atomic<int> passed = 0;
    for (int i = 0; i < count; ++i) {
        passed.fetch_add(1, std::memory_order_relaxed);
        if (i % 64 == 63) std::this_thread::yield();
    }
}

}  // namespace cairnfield
