#pragma once
// The desktop of a program without a screen: what would be shown is printed as a line. Notifications are
// always allowed and always delivered; their answers come from a script. On the model's thread.

#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Workspace.h"
#include "driver/JsonLines.h"

namespace cairnfield {

/// A "notification" line for each delivery.
class PrintedNotificationCenter final : public NotificationCenter {
public:
    explicit PrintedNotificationCenter(JsonLines& lines) : lines_(lines) {}

    /// As if a person had pressed a button of the notification delivered last.
    void respond(NotificationResponse response) const;

    Task<NotificationAuthorization> authorization() override;
    Task<bool> requestAuthorization() override;
    void setCategories(std::vector<NotificationCategory> categories) override;
    Task<> add(NotificationRequest request) override;
    void removePending(const std::vector<std::string>& identifiers) override;
    void removeAllPending() override;
    [[nodiscard]] std::vector<std::string> pendingIdentifiers() const override;
    void onResponse(std::function<void(NotificationResponse)> observer) override;
    void onServiceAppeared(std::function<void()> /*observer*/) override {}  // it is always there

private:
    JsonLines& lines_;
    std::function<void(NotificationResponse)> observer_;
};

/// An "activated" line; there are no windows.
class PrintedApplication final : public Application {
public:
    explicit PrintedApplication(JsonLines& lines) : lines_(lines) {}

    void activate() override { lines_.print("activated", Json::object()); }
    [[nodiscard]] std::vector<ApplicationWindow*> windows() override { return {}; }

private:
    JsonLines& lines_;
};

/// A "revealed" line for each item, or a "terminal" line.
class PrintedWorkspace final : public Workspace {
public:
    explicit PrintedWorkspace(JsonLines& lines) : lines_(lines) {}

    void revealAll(const std::vector<FilePath>& items, Told told) override;
    std::optional<std::string> openTerminal(const FilePath& directory) override;

private:
    JsonLines& lines_;
};

}  // namespace cairnfield
