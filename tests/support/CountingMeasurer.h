#pragma once
// Counts walks, and answers at once with a size that the test sets. Any thread.

#include "Platform/TreeMeasuring.h"

#include <atomic>
#include <string>

namespace cairnfield {

class CountingMeasurer final : public TreeMeasuring {
public:
    explicit CountingMeasurer(const WallClock& clock) : clock_(clock) {}

    DirectoryScanResult measure(const FilePath& root, std::stop_token) override {
        ++walks;
        DirectoryScanResult result;
        result.url = root.standardized();
        result.totalBytes = bytes;
        result.scannedAt = clock_.now();
        for (int item = 0; item < unreadable; ++item)
            result.permissionErrorPaths.push_back(root.appending("locked" + std::to_string(item)));
        return result;
    }
    std::int64_t allocatedSize(const FilePath&) override { return 0; }

    std::atomic<int> walks = 0;
    std::atomic<std::int64_t> bytes = 1000;
    std::atomic<int> unreadable = 0;

private:
    const WallClock& clock_;
};

}  // namespace cairnfield
