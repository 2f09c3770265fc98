#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace cairnfield {

namespace detail {
class ObserverList;
}

/// Keeps an observer attached for as long as it lives. May outlive what it observes, and may go (or be reset)
/// at any moment on the main thread, in the middle of a notification too: the observer is not called
/// afterwards.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    Subscription(std::weak_ptr<detail::ObserverList> list, std::uint64_t id) noexcept;
    Subscription(Subscription&& other) noexcept;
    Subscription& operator=(Subscription&& other) noexcept;
    ~Subscription();

    void reset() noexcept;

private:
    std::weak_ptr<detail::ObserverList> list_;
    std::uint64_t id_ = 0;
};

namespace detail {

/// The observers of one published value. Held by the value, and by a notification while it runs.
class ObserverList : public std::enable_shared_from_this<ObserverList> {
public:
    ObserverList();
    ~ObserverList();

    Subscription add(std::function<void()> observer);
    void remove(std::uint64_t id) noexcept;
    /// Calls those attached before the call began and still attached at their turn, in the order of
    /// attachment.
    void notify();
    /// The value is going: nobody is called any more.
    void close() noexcept;

private:
    struct Observers;
    std::unique_ptr<Observers> observers_;
};

}  // namespace detail

/// A value that tells its observers when, and only when, it changed. It lives on the main thread, observers
/// included. An observer is called after the change, reads what it wants to know, may change the value again
/// (which notifies again, from within), may attach and detach observers, and must not throw.
template <class T>
class Published {
public:
    Published() = default;
    explicit Published(T value) : value_(std::move(value)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;
    ~Published() { observers_->close(); }

    /// Valid until the next change.
    [[nodiscard]] const T& get() const noexcept { return value_; }

    /// Nothing happens when the new value equals the old one.
    void set(T value) {
        if (value_ == value) return;
        value_ = std::move(value);
        observers_->notify();
    }

    /// Changes a large value in place, neither copied nor compared: the function takes `T&` and answers
    /// whether it changed anything.
    template <class F>
    void mutate(F change) {
        if (change(value_)) observers_->notify();
    }

    [[nodiscard]] Subscription observe(std::function<void()> observer) const {
        return observers_->add(std::move(observer));
    }

private:
    T value_{};
    std::shared_ptr<detail::ObserverList> observers_ = std::make_shared<detail::ObserverList>();
};

}  // namespace cairnfield
