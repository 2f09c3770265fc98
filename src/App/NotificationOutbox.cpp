#include "App/NotificationOutbox.h"

#include "Platform/NotificationCenter.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

#include <utility>

namespace cairnfield {

namespace {

/// Without a service there is no leave either, as the desktop tells it.
bool meansThatNobodyServes(const std::exception& error) {
    if (dynamic_cast<const NotificationServiceMissing*>(&error) != nullptr) return true;
    const auto* const known = dynamic_cast<const CairnfieldError*>(&error);
    return known != nullptr && known->as<CairnfieldError::NotificationPermissionDenied>() != nullptr;
}

}  // namespace

NotificationOutbox::NotificationOutbox(Executor& mainThread, TaskScope& tasks,
                                       NotificationDelivering& notifications, NotificationCenter& center,
                                       Judgement judgement)
    : Isolated(mainThread),
      tasks_(tasks),
      notifications_(notifications),
      center_(center),
      judgement_(std::move(judgement)) {
    center_.onServiceAppeared([this] { serviceAppeared(); });
}

void NotificationOutbox::end() {
    center_.onServiceAppeared(nullptr);
}

Task<std::optional<std::string>> NotificationOutbox::deliver(NotificationRequestPayload payload) {
    std::optional<std::string> failure;
    const TaskHandle<> delivery = tasks_.add(executor(), deliverToItsEnd(std::move(payload), failure));
    co_await delivery.value();
    co_return failure;
}

Task<> NotificationOutbox::deliverToItsEnd(NotificationRequestPayload payload,
                                           std::optional<std::string>& failure) {
    std::erase_if(waiting_, [&](const NotificationRequestPayload& earlier) {
        return earlier.identifier == payload.identifier;
    });
    const std::uint64_t appearances = appearances_;
    Try result = co_await tryOnce(payload);
    // A service that came beside the try has told of itself already.
    const bool isThereNow = result.foundNoService && appearances != appearances_;
    if (isThereNow) {
        Try again = co_await tryOnce(std::move(payload));
        result = std::move(again);
    } else if (result.foundNoService) {
        waiting_.push_back(std::move(payload));
    }
    failure = std::move(result.failure);
}

Task<NotificationOutbox::Try> NotificationOutbox::tryOnce(NotificationRequestPayload payload) {
    co_await askForLeave();
    Try result;
    try {
        co_await notifications_.deliver(std::move(payload));
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception& error) {
        result = {describe(error), meansThatNobodyServes(error)};
        Log::notifications().error("Delivery failed: {}", *result.failure);
    }
    judgement_.tried(result.failure);
    co_return result;
}

Task<> NotificationOutbox::askForLeave() {
    const NotificationAuthorization status = co_await notifications_.authorizationStatus();
    if (status != NotificationAuthorization::notDetermined) co_return;
    try {
        co_await notifications_.requestAuthorization();
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception&) {
        // Whether there is leave shows at the delivery, with a text for the person.
    }
    co_await notifications_.registerCategories();
}

void NotificationOutbox::serviceAppeared() {
    assertIsolated();
    ++appearances_;
    if (!waiting_.empty()) tasks_.add(executor(), deliverWhatWaits());
}

Task<> NotificationOutbox::deliverWhatWaits() {
    const std::vector<NotificationRequestPayload> all = std::exchange(waiting_, {});
    for (const NotificationRequestPayload& payload : all) {
        if (!judgement_.isStillNews(payload)) continue;
        const Try result = co_await tryOnce(payload);
        static_cast<void>(result);  // told, and not kept a second time
    }
}

}  // namespace cairnfield
