#include "Services/Updates/UpdateService.h"

#include <utility>

namespace cairnfield {

namespace {

std::optional<std::string> textOrNone(const BundleInformation& bundle, std::string_view key) {
    std::optional<std::string> text = bundle.text(key);
    if (text && text->empty()) return std::nullopt;
    return text;
}

}  // namespace

struct UpdateService::State {
    bool canCheck = false;
    Published<std::uint64_t> changes{0};
};

/// Carries one answer of the updater to the main thread.
struct UpdateService::Hop : Work {
    Hop(std::weak_ptr<State> to, bool answer) : state(std::move(to)), canCheck(answer) {
        run = [](Work* work) noexcept {
            const std::unique_ptr<Hop> hop(static_cast<Hop*>(work));
            const std::shared_ptr<State> state = hop->state.lock();
            if (!state || state->canCheck == hop->canCheck) return;
            state->canCheck = hop->canCheck;
            state->changes.set(state->changes.get() + 1);
        };
    }

    std::weak_ptr<State> state;
    bool canCheck;
};

UpdateService::UpdateService(Updater& updater, BundleInformation bundle, Executor& mainThread)
    : updater_(updater), bundle_(std::move(bundle)), state_(std::make_shared<State>()) {
    if (!isConfigured()) return;
    updater_.start();
    updater_.observeCanCheckForUpdates([state = std::weak_ptr(state_), &mainThread](bool canCheck) {
        mainThread.post(new Hop(state, canCheck));
    });
}

UpdateService::~UpdateService() = default;

bool UpdateService::canCheckForUpdates() const {
    return state_->canCheck;
}

bool UpdateService::automaticallyChecksForUpdates() const {
    return updater_.automaticallyChecksForUpdates();
}

void UpdateService::setAutomaticallyChecksForUpdates(bool isOn) {
    updater_.setAutomaticallyChecksForUpdates(isOn);
    changed();
}

bool UpdateService::automaticallyDownloadsUpdates() const {
    return updater_.automaticallyDownloadsUpdates();
}

void UpdateService::setAutomaticallyDownloadsUpdates(bool isOn) {
    updater_.setAutomaticallyDownloadsUpdates(isOn);
    changed();
}

std::optional<Date> UpdateService::lastUpdateCheckDate() const {
    return updater_.lastUpdateCheckDate();
}

std::optional<std::string> UpdateService::feedURLString() const {
    return textOrNone(bundle_, "SUFeedURL");
}

std::optional<std::string> UpdateService::publicKey() const {
    return textOrNone(bundle_, "SUPublicEDKey");
}

bool UpdateService::isConfigured() const {
    return feedURLString() && publicKey();
}

std::optional<std::string> UpdateService::configurationProblem() const {
    const bool hasFeed = feedURLString().has_value();
    const bool hasKey = publicKey().has_value();
    if (hasFeed && hasKey) return std::nullopt;
    if (hasFeed)
        return "No update signing key is configured (SUPublicEDKey). Updates would be unverifiable, so "
               "checking is disabled.";
    if (hasKey) return "No appcast feed URL is configured (SUFeedURL).";
    return "No appcast feed or signing key is configured yet, so Cairnfield cannot check for updates.";
}

void UpdateService::checkForUpdates() {
    if (isConfigured()) updater_.checkForUpdates();
}

Subscription UpdateService::observe(std::function<void()> observer) const {
    return state_->changes.observe(std::move(observer));
}

void UpdateService::changed() {
    state_->changes.set(state_->changes.get() + 1);
}

}  // namespace cairnfield
