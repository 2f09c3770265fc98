#pragma once
// The real status item on a bus of the test's own. The test puts up the panel.

#include "Platform/Linux/Desktop/StatusNotifierItem.h"
#include "ScriptedPanel.h"
#include "support/Bus/PrivateBus.h"
#include "support/EventLoop.h"
#include "support/QtApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace cairnfield {

class StatusItemFixture : public testing::Test {
protected:
    using Host = ScriptedPanel::Host;

    static QByteArray picture(const std::string& symbolName) {
        if (symbolName == "unknown") return {};
        return R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 16 16"><rect width="16" height="16"/></svg>)";
    }

    void makeItem() {
        item.emplace(bus.connect(), picture);
        item->setState(healthy);
        item->setMenu(actions({"Scan now", "Pause monitoring"}));
        item->onHostChange([this] { ++hostChanges; });
        item->onActivate([this](StatusItemActivation activation) { activations.push_back(activation); });
    }
    void makePanel(Host host) { panel = std::make_unique<ScriptedPanel>(bus, host); }
    /// With a panel that shows it.
    void makeBoth() {
        makePanel(Host::present);
        makeItem();
        runUntil([this] { return item->hasHost(); }, "a host");
    }

    /// Each notes its title in `done`; an empty title is a separator.
    std::vector<StatusMenuItem> actions(std::vector<std::string> titles) {
        std::vector<StatusMenuItem> items;
        for (const std::string& title : titles) {
            if (title.empty()) {
                items.emplace_back();
                continue;
            }
            items.push_back({title, "power", [this, title] { done.push_back(title); }});
        }
        return items;
    }

    const StatusItemState healthy{"Cairnfield storage status", "internaldrive",
                                  "Cairnfield: 120 GB free, Healthy", false};
    const StatusItemState low{"Cairnfield storage status", "exclamationmark.triangle",
                              "Cairnfield: 9 GB free, Low space", true};

    QtApplication qt;
    PrivateBus bus;
    std::unique_ptr<ScriptedPanel> panel;
    std::optional<StatusNotifierItem> item;
    int hostChanges = 0;
    std::vector<StatusItemActivation> activations;
    std::vector<std::string> done;
};

}  // namespace cairnfield
