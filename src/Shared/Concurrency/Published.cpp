#include "Shared/Concurrency/Published.h"

#include <map>

namespace cairnfield {

namespace detail {

struct ObserverList::Observers {
    using Observer = std::shared_ptr<const std::function<void()>>;

    std::map<std::uint64_t, Observer> attached;  // ids rise, so the order is that of attachment
    std::uint64_t lastId = 0;
};

ObserverList::ObserverList() : observers_(std::make_unique<Observers>()) {}

ObserverList::~ObserverList() = default;

Subscription ObserverList::add(std::function<void()> observer) {
    const std::uint64_t id = ++observers_->lastId;
    observers_->attached.emplace(id, std::make_shared<const std::function<void()>>(std::move(observer)));
    return Subscription(weak_from_this(), id);
}

void ObserverList::remove(std::uint64_t id) noexcept {
    // What the observer holds may itself own subscriptions of this list, so it goes after the list is whole
    // again.
    const auto removed = observers_->attached.extract(id);
}

void ObserverList::notify() {
    const std::shared_ptr<ObserverList> alive = shared_from_this();  // an observer may destroy the value
    const std::uint64_t newest = observers_->lastId;
    for (auto next = observers_->attached.begin();
         next != observers_->attached.end() && next->first <= newest;) {
        const std::uint64_t id = next->first;
        const Observers::Observer observer = next->second;  // it may detach itself
        (*observer)();
        next = observers_->attached.upper_bound(id);
    }
}

void ObserverList::close() noexcept {
    const auto all = std::exchange(observers_->attached, {});
}

}  // namespace detail

Subscription::Subscription(std::weak_ptr<detail::ObserverList> list, std::uint64_t id) noexcept
    : list_(std::move(list)), id_(id) {}

Subscription::Subscription(Subscription&& other) noexcept
    : list_(std::move(other.list_)), id_(std::exchange(other.id_, 0)) {}

Subscription& Subscription::operator=(Subscription&& other) noexcept {
    if (this != &other) {
        reset();
        list_ = std::move(other.list_);
        id_ = std::exchange(other.id_, 0);
    }
    return *this;
}

Subscription::~Subscription() {
    reset();
}

void Subscription::reset() noexcept {
    const std::shared_ptr<detail::ObserverList> list = std::exchange(list_, {}).lock();
    const std::uint64_t id = std::exchange(id_, 0);
    if (list && id != 0) list->remove(id);
}

}  // namespace cairnfield
