#include "Platform/Linux/Desktop/LinuxNotificationCenter.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

/// Why a notification was closed, as the interface numbers it.
constexpr uint expiredReason = 1;
constexpr uint dismissedReason = 2;

/// The service may go between two messages; the next one gets the second try.
constexpr int tries = 2;

/// What the service calls the notification; 0 when it did not take it.
uint numberIn(const QDBusMessage& answer) {
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toUInt() : 0;
}

}  // namespace

LinuxNotificationCenter::LinuxNotificationCenter(const QDBusConnection& bus, ContinuousClock& clock,
                                                 Executor& mainThread, const QImage& picture,
                                                 std::chrono::milliseconds limit)
    : Isolated(mainThread),
      picture_(NotificationImage::from(picture)),
      pending_(mainThread, clock, [this](NotificationRequest request) { return post(std::move(request)); }),
      server_(bus, mainThread, limit) {
    QObject::connect(&server_, &NotificationServer::actionInvoked, &server_,
                     [this](uint number, const QString& key) { takeAction(number, key); });
    QObject::connect(&server_, &NotificationServer::activationTokenGiven, &server_,
                     [this](uint number, const QString& token) { takeActivationToken(number, token); });
    QObject::connect(&server_, &NotificationServer::closed, &server_,
                     [this](uint number, uint reason) { takeClosed(number, reason); });
    QObject::connect(&server_, &NotificationServer::left, &server_, [this] { delivered_.clear(); });
    QObject::connect(&server_, &NotificationServer::appeared, &server_, [this] {
        const auto observer = appearanceObserver_;  // it may put another in its place
        if (observer) observer();
    });
}

Task<NotificationAuthorization> LinuxNotificationCenter::authorization() {
    const bool isAvailable = co_await server_.isAvailable();
    co_return isAvailable ? NotificationAuthorization::authorized : NotificationAuthorization::denied;
}

Task<bool> LinuxNotificationCenter::requestAuthorization() {
    const bool isAvailable = co_await server_.isAvailable();
    co_return isAvailable;
}

void LinuxNotificationCenter::setCategories(std::vector<NotificationCategory> categories) {
    assertIsolated();
    categories_.clear();
    for (NotificationCategory& category : categories)
        categories_[category.identifier] = std::move(category.buttons);
}

Task<> LinuxNotificationCenter::add(NotificationRequest request) {
    pending_.remove(request.identifier);
    if (request.delay) {
        pending_.add(std::move(request));
    } else {
        co_await post(std::move(request));
    }
}

Task<> LinuxNotificationCenter::post(NotificationRequest request) {
    Semaphore::Permit permit = co_await turns_.acquire();
    const Turn turn = std::make_shared<Semaphore::Permit>(std::move(permit));
    for (int left = tries; left > 0; --left) {
        co_await server_.reach();
        const QString owner = server_.owner();
        const QDBusMessage answer = co_await send(request, turn);
        if (numberIn(answer) != 0) co_return;
        if (!reachedNobody(answer) || left == 1) refuse(answer);
        server_.forget(owner);
    }
}

Task<QDBusMessage> LinuxNotificationCenter::send(NotificationRequest request, Turn turn) {
    const QVariantList arguments = argumentsFor(request);
    // Recorded even when nobody waits any more, and before anybody else's turn.
    BusCall::Answered answered = [this, owner = server_.owner(), request = std::move(request),
                                  turn = std::move(turn)](const QDBusMessage& answer) {
        record(request, owner, answer);
    };
    const QDBusMessage answer = co_await server_.notify(arguments, std::move(answered));
    co_return answer;
}

void LinuxNotificationCenter::record(const NotificationRequest& request, const QString& owner,
                                     const QDBusMessage& answer) {
    const uint number = numberIn(answer);
    if (number == 0 || owner != server_.owner()) return;
    delivered_[request.identifier] = {.number = number, .userInfo = request.userInfo};
}

QVariantList LinuxNotificationCenter::argumentsFor(const NotificationRequest& request) const {
    const auto category = categories_.find(request.categoryIdentifier);
    const auto earlier = delivered_.find(request.identifier);
    const bool isReplacing = earlier != delivered_.end() && earlier->second.place == Place::onScreen;
    return notifyArguments(
        request, category == categories_.end() ? std::vector<NotificationButton>{} : category->second,
        server_.capabilities(), picture_, isReplacing ? earlier->second.number : 0);
}

void LinuxNotificationCenter::removePending(const std::vector<std::string>& identifiers) {
    for (const std::string& identifier : identifiers) pending_.remove(identifier);
}

void LinuxNotificationCenter::removeAllPending() {
    pending_.removeAll();
}

std::vector<std::string> LinuxNotificationCenter::pendingIdentifiers() const {
    return pending_.identifiers();
}

void LinuxNotificationCenter::onResponse(std::function<void(NotificationResponse)> observer) {
    assertIsolated();
    observer_ = std::move(observer);
}

void LinuxNotificationCenter::onServiceAppeared(std::function<void()> observer) {
    assertIsolated();
    appearanceObserver_ = std::move(observer);
}

void LinuxNotificationCenter::onActivationToken(std::function<void(std::string)> observer) {
    assertIsolated();
    tokenObserver_ = std::move(observer);
}

Task<> LinuxNotificationCenter::stop() {
    co_await pending_.stop();
}

std::vector<std::string> LinuxNotificationCenter::deliveredIdentifiers() const {
    std::vector<std::string> identifiers;
    for (const auto& [identifier, delivered] : delivered_)
        if (delivered.place == Place::onScreen) identifiers.push_back(identifier);
    return identifiers;
}

LinuxNotificationCenter::Deliveries::iterator LinuxNotificationCenter::find(uint number) {
    return std::ranges::find_if(delivered_,
                                [number](const auto& entry) { return entry.second.number == number; });
}

void LinuxNotificationCenter::takeActivationToken(uint number, const QString& token) {
    if (tokenObserver_ && find(number) != delivered_.end()) tokenObserver_(token.toStdString());
}

void LinuxNotificationCenter::takeAction(uint number, const QString& key) {
    const auto found = find(number);
    if (found == delivered_.end()) return;
    const auto answered = delivered_.extract(found);
    server_.close(number);
    respond(key.toStdString(), answered.key(), answered.mapped());
    if (tokenObserver_) tokenObserver_({});
}

void LinuxNotificationCenter::takeClosed(uint number, uint reason) {
    const auto found = find(number);
    if (found == delivered_.end()) return;
    if (reason == expiredReason) {
        found->second.place = Place::expired;
        return;
    }
    const auto closed = delivered_.extract(found);
    if (reason == dismissedReason)
        respond(std::string(NotificationResponse::dismissActionIdentifier), closed.key(), closed.mapped());
}

void LinuxNotificationCenter::respond(std::string actionIdentifier, const std::string& identifier,
                                      const Delivered& delivered) {
    const auto observer = observer_;  // it may put another in its place
    if (observer)
        observer({.actionIdentifier = std::move(actionIdentifier),
                  .requestIdentifier = identifier,
                  .userInfo = delivered.userInfo});
}

}  // namespace cairnfield
