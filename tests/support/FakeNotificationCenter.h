#pragma once
// A desktop without a screen: remembers the requests and answers what the test says. A request replaces an
// earlier one of its identifier, as on any desktop. One thread at a time.

#include "Platform/NotificationCenter.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace cairnfield {

class FakeNotificationCenter final : public NotificationCenter {
public:
    NotificationAuthorization status = NotificationAuthorization::authorized;
    bool grants = true;
    std::exception_ptr requestFailure;
    std::exception_ptr addFailure;

    int authorizationQuestions = 0;
    std::vector<NotificationCategory> categories;
    std::vector<NotificationRequest> shown;    ///< one an identifier, in the order they came
    std::vector<NotificationRequest> waiting;  ///< the same, for those with a delay

    /// A person does something with a notification.
    void respond(NotificationResponse response) const {
        if (observer_) observer_(std::move(response));
    }

    Task<NotificationAuthorization> authorization() override {
        ++authorizationQuestions;
        co_return status;
    }
    Task<bool> requestAuthorization() override {
        if (requestFailure) std::rethrow_exception(requestFailure);
        co_return grants;
    }
    void setCategories(std::vector<NotificationCategory> given) override { categories = std::move(given); }

    Task<> add(NotificationRequest request) override {
        if (addFailure) std::rethrow_exception(addFailure);
        std::vector<NotificationRequest>& place = request.delay ? waiting : shown;
        const auto isSame = [&request](const NotificationRequest& other) {
            return other.identifier == request.identifier;
        };
        std::erase_if(waiting, isSame);
        std::erase_if(place, isSame);
        place.push_back(std::move(request));
        co_return;
    }
    void removePending(const std::vector<std::string>& identifiers) override {
        std::erase_if(waiting, [&identifiers](const NotificationRequest& request) {
            return std::ranges::find(identifiers, request.identifier) != identifiers.end();
        });
    }
    void removeAllPending() override { waiting.clear(); }
    [[nodiscard]] std::vector<std::string> pendingIdentifiers() const override {
        std::vector<std::string> identifiers;
        for (const NotificationRequest& request : waiting) identifiers.push_back(request.identifier);
        return identifiers;
    }

    void onResponse(std::function<void(NotificationResponse)> observer) override {
        observer_ = std::move(observer);
    }
    void onServiceAppeared(std::function<void()> observer) override { appeared_ = std::move(observer); }

    /// A service has come to be.
    void appear() const {
        if (appeared_) appeared_();
    }

private:
    std::function<void()> appeared_;
    std::function<void(NotificationResponse)> observer_;
};

}  // namespace cairnfield
