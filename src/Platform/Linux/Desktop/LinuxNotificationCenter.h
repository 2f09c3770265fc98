#pragma once
// Notifications over org.freedesktop.Notifications. Main thread only; never blocks it.
//
// Permission: the desktop asks nobody, so whoever has a service that runs or can be started has permission,
// and nobody else. Asking starts no service; the first delivery does.
//
// Replacing: a request takes the place of what is shown under its identifier, as long as the service that
// shows it lives. A notification is taken off the screen once it was answered, since not every service does
// so itself. Whether the program is in front makes no difference, and bringing it forward is left to whoever
// gets the response. Buttons, markup, sound and pictures only go to services that know them; relevance has no
// counterpart.
//
// Waiting: a delayed request is a timer of ours, and ends with the program.

#include "Platform/Linux/Desktop/NotificationServer.h"
#include "Platform/Linux/Desktop/PendingNotifications.h"
#include "Platform/NotificationCenter.h"
#include "Shared/Concurrency/Semaphore.h"

#include <map>
#include <memory>
#include <string>

namespace cairnfield {

class LinuxNotificationCenter final : public Isolated, public NotificationCenter {
public:
    static constexpr std::chrono::milliseconds answerLimit{10'000};

    /// The picture stands beside the icon's name, for desktops where that is not installed; it may be empty.
    LinuxNotificationCenter(const QDBusConnection& bus, ContinuousClock& clock, Executor& mainThread,
                            const QImage& picture = {}, std::chrono::milliseconds limit = answerLimit);

    Task<NotificationAuthorization> authorization() override;
    Task<bool> requestAuthorization() override;
    void setCategories(std::vector<NotificationCategory> categories) override;

    /// A cancelled one may still come to be shown, and is then replaced like any other.
    Task<> add(NotificationRequest request) override;
    void removePending(const std::vector<std::string>& identifiers) override;
    void removeAllPending() override;
    [[nodiscard]] std::vector<std::string> pendingIdentifiers() const override;
    void onResponse(std::function<void(NotificationResponse)> observer) override;
    void onServiceAppeared(std::function<void()> observer) override;

    /// Told of the leave to bring a window forward that comes with an answer, before the answer itself, and
    /// of an empty one after it: the leave was for what the answer starts. At most one observer.
    void onActivationToken(std::function<void(std::string)> observer);

    /// At the program's end: drops what is pending and returns when none of it runs any more. Before
    /// destruction, with no `add` under way.
    Task<> stop();

    /// The identifiers of what is on screen: shown, and not closed yet.
    [[nodiscard]] std::vector<std::string> deliveredIdentifiers() const;

private:
    enum class Place { onScreen, expired };
    /// An expired one may still be answered from the service's history, so it is kept until its identifier is
    /// used again.
    struct Delivered {
        uint number = 0;
        std::map<std::string, std::string> userInfo;
        Place place = Place::onScreen;
    };
    using Turn = std::shared_ptr<Semaphore::Permit>;

    using Deliveries = std::map<std::string, Delivered>;

    Task<> post(NotificationRequest request);
    Task<QDBusMessage> send(NotificationRequest request, Turn turn);
    void record(const NotificationRequest& request, const QString& owner, const QDBusMessage& answer);
    [[nodiscard]] QVariantList argumentsFor(const NotificationRequest& request) const;
    void takeActivationToken(uint number, const QString& token);
    void takeAction(uint number, const QString& key);
    void takeClosed(uint number, uint reason);
    [[nodiscard]] Deliveries::iterator find(uint number);
    void respond(std::string actionIdentifier, const std::string& identifier, const Delivered& delivered);

    const NotificationImage picture_;
    std::map<std::string, std::vector<NotificationButton>> categories_;
    Deliveries delivered_;  ///< by the request's identifier
    std::function<void(NotificationResponse)> observer_;
    std::function<void(std::string)> tokenObserver_;
    std::function<void()> appearanceObserver_;
    Semaphore turns_{1};  ///< one at a time, since the next may replace what the last one becomes
    PendingNotifications pending_;
    NotificationServer server_;
};

}  // namespace cairnfield
