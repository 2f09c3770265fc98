#include "HeardSignals.h"
#include "StatusItemFixture.h"

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using StatusItemContent = StatusItemFixture;

TEST_F(StatusItemContent, TellsWhatItIsAndWhatItSays) {
    makeBoth();
    EXPECT_EQ(panel->property("Title"), "Cairnfield storage status");
    EXPECT_EQ(panel->property("Id"), "com.cairnfield.app");
    EXPECT_EQ(panel->property("Status"), "Active");
    EXPECT_EQ(panel->property("Category"), "SystemServices");
    EXPECT_EQ(panel->property("IconName"), "drive-harddisk-symbolic");
    EXPECT_EQ(panel->property("IconAccessibleDesc"), "Cairnfield: 120 GB free, Healthy");
    EXPECT_EQ(panel->property("ItemIsMenu"), false);
    const auto tip = qdbus_cast<StatusToolTip>(panel->property("ToolTip"));
    EXPECT_EQ(tip.title, "Cairnfield: 120 GB free, Healthy");
    EXPECT_EQ(tip.text, "");
}

TEST_F(StatusItemContent, AsksForAttentionAboveTheNormalLevel) {
    makeBoth();
    item->setState(low);
    ASSERT_TRUE(runUntil([this] { return panel->property("Status") == "NeedsAttention"; }, "the new state"));
    EXPECT_EQ(panel->property("IconName"), "dialog-warning-symbolic");
    EXPECT_EQ(panel->property("AttentionIconName"), "dialog-warning-symbolic");
    EXPECT_EQ(panel->property("AttentionAccessibleDesc"), "Cairnfield: 9 GB free, Low space");
    StatusItemState critical = low;
    critical.symbolName = "exclamationmark.octagon";
    item->setState(critical);
    EXPECT_EQ(panel->property("AttentionIconName"), "dialog-error-symbolic");
}

TEST_F(StatusItemContent, HasPixelsBesideEachName) {
    makeBoth();
    for (const char* name : {"IconPixmap", "AttentionIconPixmap"}) {
        const auto pixmaps = qdbus_cast<QList<StatusPixmap>>(panel->property(name));
        std::vector<int> sizes;
        for (const StatusPixmap& pixmap : pixmaps) {
            sizes.push_back(pixmap.width);
            EXPECT_EQ(pixmap.height, pixmap.width);
            ASSERT_EQ(pixmap.pixels.size(), qsizetype{4} * pixmap.width * pixmap.height);
            EXPECT_EQ(pixmap.pixels.first(4), QByteArray::fromHex("ff808087")) << "alpha first";
        }
        EXPECT_THAT(sizes, ElementsAre(16, 22, 24, 32, 48));
    }
}

TEST_F(StatusItemContent, TellsHostsOnlyWhatChanged) {
    makeBoth();
    HeardSignals heard(bus.connect(), "/StatusNotifierItem", "org.kde.StatusNotifierItem");
    item->setState(healthy);
    StatusItemState other = healthy;
    other.accessibilityValue = "Cairnfield: 119 GB free, Healthy";
    item->setState(other);
    ASSERT_TRUE(runUntil([&] { return heard.names().size() >= 3; }, "the signals"));
    EXPECT_THAT(heard.names(), ElementsAre("NewIcon", "NewAttentionIcon", "NewToolTip"));
    heard.forget();
    other.needsAttention = true;
    item->setState(other);
    ASSERT_TRUE(runUntil([&] { return !heard.names().empty(); }, "the signal"));
    EXPECT_THAT(heard.names(), ElementsAre("NewStatus"));
    EXPECT_EQ(heard.lastArguments().value(0), "NeedsAttention");
}

TEST_F(StatusItemContent, SaysWhereItWasPressedAndWithWhichLeave) {
    makeBoth();
    (void)panel->callItem("ProvideXdgActivationToken", {"token-1"});
    (void)panel->callItem("Activate", {700, 20});
    ASSERT_TRUE(runUntil([this] { return activations.size() == 1; }, "the press"));
    EXPECT_EQ(activations[0].place, (ScreenPoint{700, 20}));
    EXPECT_EQ(activations[0].activationToken, "token-1");
    (void)panel->callItem("ContextMenu", {5, 6});
    ASSERT_TRUE(runUntil([this] { return activations.size() == 2; }, "the other press"));
    EXPECT_EQ(activations[1].place, (ScreenPoint{5, 6}));
    EXPECT_EQ(activations[1].activationToken, "") << "a leave holds for one press";
}

TEST_F(StatusItemContent, KnowsNoPlaceWhereTheHostKnowsNone) {
    makeBoth();
    (void)panel->callItem("Activate", {0, 0});
    ASSERT_TRUE(runUntil([this] { return activations.size() == 1; }, "the press"));
    EXPECT_EQ(activations[0].place, std::nullopt);
}

TEST_F(StatusItemContent, DoesNothingForTheOtherGestures) {
    makeBoth();
    EXPECT_EQ(panel->callItem("SecondaryActivate", {1, 2}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(panel->callItem("Scroll", {120, "vertical"}).type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(activations, IsEmpty());
}

TEST_F(StatusItemContent, IsShownWithoutAPictureOfItsSymbol) {
    makeBoth();
    StatusItemState odd = healthy;
    odd.symbolName = "unknown";
    item->setState(odd);
    EXPECT_EQ(panel->property("IconName"), "");
    EXPECT_THAT(qdbus_cast<QList<StatusPixmap>>(panel->property("IconPixmap")), IsEmpty());
}

}  // namespace
}  // namespace cairnfield
