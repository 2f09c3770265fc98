#pragma once
// One program for each session by its name on the session bus, and one for each data folder by a lock on a
// file in it, which also holds between two sessions and where there is no bus. A later start asks the first
// one over org.freedesktop.Application. Main thread only.

#include "Platform/Linux/Desktop/ApplicationObject.h"
#include "Platform/Linux/InstanceLock.h"
#include "Platform/SingleInstance.h"

#include <QDBusConnection>

#include <chrono>

namespace cairnfield {

class BusSingleInstance final : public SingleInstance {
public:
    static constexpr std::chrono::milliseconds usualPatience{5000};

    /// A start waits at most for `patience` for the one before it to answer or to end.
    BusSingleInstance(const QDBusConnection& bus, FilePath lockFile,
                      std::chrono::milliseconds patience = usualPatience);
    /// The next start may have the name.
    ~BusSingleInstance() override;

    [[nodiscard]] InstanceClaim claim(const std::string& activationToken) override;
    void onActivate(std::function<void(std::string activationToken)> observer) override;

private:
    enum class Name { owned, handedOver, unreachable, withoutBus };

    [[nodiscard]] Name claimName(const std::string& activationToken);
    /// Whether the first one took the request.
    [[nodiscard]] bool askFirst(const std::string& activationToken);
    /// Whether it went in time. Runs the event loop meanwhile.
    [[nodiscard]] bool waitForEndOfFirst(std::chrono::milliseconds limit);
    void giveUpName();

    QDBusConnection bus_;
    const FilePath lockFile_;
    const std::chrono::milliseconds patience_;
    ApplicationObject object_;
    InstanceLock lock_;
    bool ownsName_ = false;
};

}  // namespace cairnfield
