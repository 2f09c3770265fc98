#include "Platform/Linux/LargestChildren.h"

#include <algorithm>

namespace cairnfield {

namespace {

bool ranksBefore(const RankedChild& a, const RankedChild& b) {
    return a.bytes != b.bytes ? a.bytes > b.bytes : a.name < b.name;
}

}  // namespace

void LargestChildren::offer(std::string_view name, std::int64_t bytes, bool isDirectory) {
    if (heap_.size() == limit) {
        const RankedChild& least = heap_.front();
        if (bytes < least.bytes || (bytes == least.bytes && name >= least.name)) return;
        std::pop_heap(heap_.begin(), heap_.end(), ranksBefore);
        heap_.pop_back();
    }
    heap_.push_back({std::string(name), bytes, isDirectory});
    std::push_heap(heap_.begin(), heap_.end(), ranksBefore);
}

void LargestChildren::merge(const LargestChildren& others) {
    for (const RankedChild& child : others.heap_) offer(child.name, child.bytes, child.isDirectory);
}

std::vector<RankedChild> LargestChildren::ranked() const {
    std::vector<RankedChild> all = heap_;
    std::sort(all.begin(), all.end(), ranksBefore);
    return all;
}

}  // namespace cairnfield
