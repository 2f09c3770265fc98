#pragma once
// Delivers nothing: remembers what it was asked, in order, and answers what the test says. Like the real one
// it posts nothing without permission. One thread at a time.

#include "Services/Notifications/NotificationDelivering.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Errors/CairnfieldError.h"

#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace cairnfield {

class FakeNotifications final : public NotificationDelivering {
public:
    NotificationAuthorization authorization = NotificationAuthorization::authorized;
    bool grants = true;                       ///< what a request for permission is answered
    std::exception_ptr authorizationFailure;  ///< thrown by the question for it
    std::exception_ptr requestFailure;        ///< thrown by a request for permission
    std::exception_ptr deliveryFailure;       ///< thrown by a delivery that has permission
    std::function<void(const NotificationRequestPayload&)> onDelivery;
    ContinuousClock* slowness =
        nullptr;  ///< each delivery takes a minute of it, and can be cancelled meanwhile

    std::vector<NotificationRequestPayload> deliveries;  ///< all that were posted
    std::vector<std::string> pending;                    ///< identifiers of those with a delay
    std::vector<std::string> calls;                      ///< the names of all operations asked for

    Task<NotificationAuthorization> authorizationStatus() override {
        calls.emplace_back("authorizationStatus");
        if (authorizationFailure) std::rethrow_exception(authorizationFailure);
        co_return authorization;
    }

    Task<bool> requestAuthorization() override {
        calls.emplace_back("requestAuthorization");
        if (requestFailure) std::rethrow_exception(requestFailure);
        co_return grants;
    }

    Task<> registerCategories() override {
        calls.emplace_back("registerCategories");
        co_return;
    }

    Task<> deliver(NotificationRequestPayload payload) override {
        calls.emplace_back("deliver");
        if (slowness) co_await slowness->sleep(std::chrono::minutes(1));
        if (authorization != NotificationAuthorization::authorized &&
            authorization != NotificationAuthorization::provisional)
            throw CairnfieldError(CairnfieldError::NotificationPermissionDenied{});
        if (deliveryFailure) std::rethrow_exception(deliveryFailure);
        if (payload.delay && *payload.delay >= 1.0) pending.push_back(payload.identifier);
        deliveries.push_back(payload);
        if (onDelivery) onDelivery(payload);
        co_return;
    }

    Task<> cancelPending(std::vector<std::string> identifiers) override {
        calls.emplace_back("cancelPending");
        if (identifiers.empty()) pending.clear();
        for (const std::string& identifier : identifiers) std::erase(pending, identifier);
        co_return;
    }

    Task<std::vector<std::string>> pendingIdentifiers() override {
        calls.emplace_back("pendingIdentifiers");
        co_return pending;
    }
};

}  // namespace cairnfield
