#pragma once
// The status item over the session bus. Registers with the desktop's watcher whenever one appears, and
// follows whether a host shows what the watcher knows. Starts no service, waits for none, asks each thing
// once. Main thread only; without a bus it is simply not seen.

#include "Platform/Linux/Desktop/StatusNotifierMenu.h"
#include "Platform/Linux/Desktop/StatusNotifierObject.h"
#include "Platform/Linux/Desktop/StatusPictures.h"
#include "Platform/StatusItem.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <vector>

namespace cairnfield {

class StatusNotifierItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    StatusNotifierItem(const QDBusConnection& bus, StatusPictures::Source pictures);
    ~StatusNotifierItem() override;

    void setState(StatusItemState state) override;
    void setMenu(std::vector<StatusMenuItem> items) override;
    void onActivate(std::function<void(StatusItemActivation)> observer) override;
    [[nodiscard]] bool hasHost() const override { return hasHost_; }
    void onHostChange(std::function<void()> observer) override { hostObserver_ = std::move(observer); }

private slots:
    void hostsChanged();
    void busGone();

private:
    void join();
    void leave();
    void registerWithWatcher();
    void askForHosts();
    void setHasHost(bool hasHost);

    QDBusConnection bus_;
    StatusPictures pictures_;
    StatusNotifierMenu menu_;
    StatusNotifierObject object_;
    QDBusServiceWatcher watcher_;
    std::function<void()> hostObserver_;
    bool isRegistered_ = false;
    bool hasHost_ = false;
    quint64 watcherNumber_ = 0;  ///< of the watcher now on the bus; answers of an earlier one mean nothing
};

}  // namespace cairnfield
