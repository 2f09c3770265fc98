#pragma once
// A desktop's panel: the watcher that items register with, a host that the test puts up and takes away, and
// the person who looks at the items and presses them. On a connection of its own, in the test's thread; it
// answers while the event loop runs.

#include "Platform/Linux/Desktop/StatusNotifierTypes.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <string>
#include <vector>

namespace cairnfield {

class PrivateBus;

class ScriptedPanel final : public QDBusVirtualObject {
public:
    enum class Host { none, present };
    enum class Conduct { takesItems, refusesItems };

    /// Takes the watcher's name on the bus.
    ScriptedPanel(PrivateBus& bus, Host host, Conduct conduct = Conduct::takesItems);
    /// The panel's process ends.
    ~ScriptedPanel() override;

    /// The items that registered, by the names they gave, in order.
    [[nodiscard]] const std::vector<std::string>& items() const { return items_; }
    [[nodiscard]] int refusals() const { return refusals_; }
    void setConduct(Conduct conduct) { conduct_ = conduct; }
    void addHost();
    void removeHost();

    // About the last item that registered. Each waits for the answer.
    [[nodiscard]] QVariant property(const char* name);
    [[nodiscard]] QDBusMessage callItem(const char* method, const QVariantList& arguments);
    [[nodiscard]] QDBusMessage callMenu(const char* method, const QVariantList& arguments);
    [[nodiscard]] uint layoutRevision();
    [[nodiscard]] std::vector<MenuLayout> menu();
    [[nodiscard]] std::vector<std::string> labels();
    void click(int id);

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    [[nodiscard]] QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                                    const QVariantList& arguments);
    void tell(const char* signal);

    QDBusConnection connection_;
    Host host_;
    Conduct conduct_;
    std::vector<std::string> items_;
    int refusals_ = 0;
};

}  // namespace cairnfield
