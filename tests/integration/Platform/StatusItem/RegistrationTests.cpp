#include "StatusItemFixture.h"

namespace cairnfield {
namespace {

using testing::SizeIs;

using StatusItemRegistration = StatusItemFixture;

TEST_F(StatusItemRegistration, TakesPlaceWithAPanelThatIsThere) {
    makeBoth();
    EXPECT_THAT(panel->items(), SizeIs(1));
    EXPECT_EQ(hostChanges, 1);
}

TEST_F(StatusItemRegistration, TakesPlaceWithAPanelThatComesLate) {
    makeItem();
    for (int i = 0; i < 20; ++i) QtApplication::processEvents();
    EXPECT_FALSE(item->hasHost());
    EXPECT_EQ(hostChanges, 0) << "there was none, and there is none";
    makePanel(Host::present);
    ASSERT_TRUE(runUntil([this] { return item->hasHost(); }, "a host"));
    EXPECT_THAT(panel->items(), SizeIs(1));
}

TEST_F(StatusItemRegistration, IsRepeatedWhenThePanelRestarts) {
    makeBoth();
    for (int restart = 0; restart < 3; ++restart) {
        panel.reset();
        ASSERT_TRUE(runUntil([this] { return !item->hasHost(); }, "the host to go"));
        makePanel(Host::present);
        ASSERT_TRUE(runUntil([this] { return item->hasHost(); }, "the host to come back"));
        EXPECT_THAT(panel->items(), SizeIs(1));
        EXPECT_EQ(panel->property("Title"), "Cairnfield storage status");
    }
    EXPECT_EQ(hostChanges, 7);
}

TEST_F(StatusItemRegistration, IsNotEnoughWithoutAHost) {
    makePanel(Host::none);
    makeItem();
    ASSERT_TRUE(runUntil([this] { return !panel->items().empty(); }, "the registration"));
    EXPECT_FALSE(item->hasHost());
    panel->addHost();
    ASSERT_TRUE(runUntil([this] { return item->hasHost(); }, "a host"));
    panel->removeHost();
    ASSERT_TRUE(runUntil([this] { return !item->hasHost(); }, "the host to go"));
    EXPECT_EQ(hostChanges, 2);
    EXPECT_THAT(panel->items(), SizeIs(1)) << "hosts come and go without the item";
}

TEST_F(StatusItemRegistration, IsTriedAgainWithTheNextHostWhenItWasRefused) {
    panel = std::make_unique<ScriptedPanel>(bus, Host::present, ScriptedPanel::Conduct::refusesItems);
    makeItem();
    ASSERT_TRUE(runUntil([this] { return panel->refusals() == 1; }, "the refusal"));
    EXPECT_FALSE(item->hasHost()) << "a host does not show what the watcher did not take";
    panel->setConduct(ScriptedPanel::Conduct::takesItems);
    panel->addHost();
    ASSERT_TRUE(runUntil([this] { return item->hasHost(); }, "a host"));
    EXPECT_THAT(panel->items(), SizeIs(1));
}

TEST_F(StatusItemRegistration, EndsWithTheBus) {
    makeBoth();
    bus.kill();
    ASSERT_TRUE(runUntil([this] { return !item->hasHost(); }, "the host to go with the bus"));
}

TEST_F(StatusItemRegistration, IsNoTroubleWithoutABus) {
    item.emplace(QDBusConnection("there is none"), picture);
    item->setState(low);
    item->setMenu(actions({"Scan now"}));
    EXPECT_FALSE(item->hasHost());
}

TEST_F(StatusItemRegistration, LeavesNothingOnTheBusBehind) {
    makeBoth();
    item.reset();
    EXPECT_EQ(panel->callItem("Activate", {1, 1}).type(), QDBusMessage::ErrorMessage);
}

}  // namespace
}  // namespace cairnfield
