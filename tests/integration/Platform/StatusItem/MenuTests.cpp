#include "HeardSignals.h"
#include "StatusItemFixture.h"

#include <QImage>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class StatusItemMenu : public StatusItemFixture {
protected:
    StatusItemMenu() { makeBoth(); }

    int idOf(const char* label) {
        for (const MenuLayout& entry : panel->menu()) {
            if (entry.properties.value("label") == label) return entry.id;
        }
        ADD_FAILURE() << "no entry " << label;
        return -1;
    }
};

TEST_F(StatusItemMenu, HasTheEntriesInOrderWithSymbols) {
    item->setMenu(actions({"Scan now", "Open Cairnfield", "", "Quit Cairnfield"}));
    EXPECT_THAT(panel->labels(), ElementsAre("Scan now", "Open Cairnfield", "---", "Quit Cairnfield"));
    const MenuLayout first = panel->menu()[0];
    EXPECT_EQ(first.properties.value("enabled"), true);
    EXPECT_EQ(first.properties.value("visible"), true);
    EXPECT_EQ(first.properties.value("icon-name"), "application-exit-symbolic");
    EXPECT_FALSE(QImage::fromData(first.properties.value("icon-data").toByteArray(), "PNG").isNull());
}

TEST_F(StatusItemMenu, DoesWhatWasClicked) {
    panel->click(idOf("Pause monitoring"));
    ASSERT_TRUE(runUntil([this] { return !done.empty(); }, "the action"));
    EXPECT_THAT(done, ElementsAre("Pause monitoring"));
}

TEST_F(StatusItemMenu, IsKeptUpToDate) {
    const uint before = panel->layoutRevision();
    item->setMenu(actions({"Scan now", "Pause monitoring"}));
    EXPECT_EQ(panel->layoutRevision(), before) << "nothing changed";
    const HeardSignals heard(bus.connect(), panel->property("Menu").value<QDBusObjectPath>().path(),
                             "com.canonical.dbusmenu");
    item->setMenu(actions({"Scan now", "Resume monitoring"}));
    ASSERT_TRUE(runUntil([&] { return !heard.names().empty(); }, "the signal"));
    EXPECT_THAT(heard.names(), ElementsAre("LayoutUpdated"));
    EXPECT_EQ(heard.lastArguments().value(0).toUInt(), panel->layoutRevision());
    EXPECT_GT(panel->layoutRevision(), before);
    EXPECT_THAT(panel->labels(), ElementsAre("Scan now", "Resume monitoring"));
}

TEST_F(StatusItemMenu, TakesNoClickForAnotherEntryThanTheOneDrawn) {
    const int scan = idOf("Scan now");
    const int pause = idOf("Pause monitoring");
    item->setMenu(actions({"Resume monitoring", "Scan now"}));
    panel->click(pause);
    panel->click(scan);
    ASSERT_TRUE(runUntil([this] { return !done.empty(); }, "the action"));
    EXPECT_THAT(done, ElementsAre("Scan now")) << "what is gone does nothing, what moved is still itself";
    item->setMenu(actions({"Pause monitoring"}));
    EXPECT_NE(idOf("Pause monitoring"), pause) << "no number means two things";
}

TEST_F(StatusItemMenu, TakesNoUnderscoreForAKey) {
    item->setMenu(actions({"a_b"}));
    EXPECT_THAT(panel->labels(), ElementsAre("a__b"));
}

TEST_F(StatusItemMenu, IgnoresWhatIsNoClick) {
    const int scan = idOf("Scan now");
    (void)panel->callMenu("Event", {scan, "hovered", QVariant::fromValue(QDBusVariant(0)), uint{0}});
    panel->click(0);
    panel->click(-3);
    panel->click(4711);
    panel->click(idOf("Pause monitoring"));
    ASSERT_TRUE(runUntil([this] { return !done.empty(); }, "the one click"));
    EXPECT_THAT(done, ElementsAre("Pause monitoring"));
}

TEST_F(StatusItemMenu, TakesSeveralEventsAtOnce) {
    const QList<MenuEvent> events{{idOf("Scan now"), "clicked", QDBusVariant(0), 0},
                                  {4711, "clicked", QDBusVariant(0), 0}};
    const QDBusMessage answer = panel->callMenu("EventGroup", {QVariant::fromValue(events)});
    EXPECT_THAT(qdbus_cast<QList<int>>(answer.arguments().value(0)), ElementsAre(4711));
    ASSERT_TRUE(runUntil([this] { return !done.empty(); }, "the action"));
    EXPECT_THAT(done, ElementsAre("Scan now"));
}

TEST_F(StatusItemMenu, GivesThePropertiesThatAreAskedFor) {
    const int scan = idOf("Scan now");
    const QDBusMessage answer = panel->callMenu(
        "GetGroupProperties", {QVariant::fromValue(QList<int>{scan, 4711}), QStringList{"label", "enabled"}});
    const auto all = qdbus_cast<QList<MenuItemProperties>>(answer.arguments().value(0));
    ASSERT_EQ(all.size(), 1);
    EXPECT_EQ(all[0].id, scan);
    EXPECT_THAT(all[0].properties.keys(), UnorderedElementsAre("label", "enabled"));
    const QDBusMessage one = panel->callMenu("GetProperty", {scan, "label"});
    EXPECT_EQ(one.arguments().value(0).value<QDBusVariant>().variant(), "Scan now");
}

TEST_F(StatusItemMenu, AnswersThatItIsReadyToBeShown) {
    EXPECT_EQ(panel->callMenu("AboutToShow", {0}).arguments().value(0), false);
    const QDBusMessage group =
        panel->callMenu("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 4711})});
    EXPECT_THAT(qdbus_cast<QList<int>>(group.arguments().value(0)), IsEmpty());
    EXPECT_THAT(qdbus_cast<QList<int>>(group.arguments().value(1)), ElementsAre(4711));
}

}  // namespace
}  // namespace cairnfield
