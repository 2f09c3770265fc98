#include "Shared/Files/StoredFileNotices.h"

#include <utility>

namespace cairnfield {

void StoredFileNotices::set(const std::string& fileName, std::string text) {
    const std::lock_guard lock(mutex_);
    const auto known = texts_.find(fileName);
    if (text == (known == texts_.end() ? "" : known->second)) return;
    if (text.empty()) {
        texts_.erase(known);
    } else {
        texts_.insert_or_assign(fileName, std::move(text));
    }
    if (listener_) listener_();
}

StoredFileNotices::ByFile StoredFileNotices::all() const {
    const std::lock_guard lock(mutex_);
    return texts_;
}

void StoredFileNotices::onChange(std::function<void()> listener) {
    const std::lock_guard lock(mutex_);
    listener_ = std::move(listener);
}

}  // namespace cairnfield
