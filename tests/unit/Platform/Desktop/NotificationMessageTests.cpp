#include "Platform/Linux/Desktop/NotificationMessage.h"

#include <QMetaType>

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

const std::vector<NotificationButton> buttons{
    {.identifier = "action.review", .title = "Review cleanup"},
    {.identifier = "action.ignore", .title = "Ignore this incident"}};

NotificationRequest request() {
    return {
        .identifier = "storage.warning", .title = "Storage <i>low</i>", .body = "2 GB free on <b>x</b>&."};
}

/// Named by their places in the interface's call.
struct Call {
    explicit Call(const QVariantList& arguments) : arguments_(arguments) {}
    [[nodiscard]] uint replaced() const { return arguments_[1].toUInt(); }
    [[nodiscard]] QString title() const { return arguments_[3].toString(); }
    [[nodiscard]] QString body() const { return arguments_[4].toString(); }
    [[nodiscard]] QStringList actions() const { return arguments_[5].toStringList(); }
    [[nodiscard]] QVariant hint(const char* name) const { return arguments_[6].toMap().value(name); }

private:
    QVariantList arguments_;
};

Call callFor(const NotificationRequest& request, const NotificationCapabilities& capabilities,
             const NotificationImage& image = {}, uint replaced = 0) {
    return Call(notifyArguments(request, buttons, capabilities, image, replaced));
}

TEST(NotificationMessage, HasTheTypesThatTheInterfaceAsksFor) {
    const QVariantList arguments = notifyArguments(request(), buttons, {}, {}, 0);
    const std::vector<int> expected{QMetaType::QString,     QMetaType::UInt,    QMetaType::QString,
                                    QMetaType::QString,     QMetaType::QString, QMetaType::QStringList,
                                    QMetaType::QVariantMap, QMetaType::Int};
    std::vector<int> types;
    for (const QVariant& argument : arguments) types.push_back(argument.metaType().id());
    EXPECT_EQ(types, expected);
    EXPECT_EQ(arguments[0].toString(), "Cairnfield");
    EXPECT_EQ(arguments[2].toString(), "com.cairnfield.app");
    EXPECT_EQ(arguments[7].toInt(), -1) << "how long it stays is the desktop's choice";
}

TEST(NotificationMessage, NamesWhatItReplaces) {
    EXPECT_EQ(callFor(request(), {}, {}, 17).replaced(), 17U);
}

TEST(NotificationMessage, EscapesTheBodyOnlyWhereMarkupIsRendered) {
    EXPECT_EQ(callFor(request(), {}).body(), "2 GB free on <b>x</b>&.");
    const Call rendered = callFor(request(), {.rendersMarkup = true});
    EXPECT_EQ(rendered.body(), "2 GB free on &lt;b&gt;x&lt;/b&gt;&amp;.");
    EXPECT_EQ(rendered.title(), "Storage <i>low</i>") << "titles are plain everywhere";
}

TEST(NotificationMessage, EscapesWhatIsEscapedAlready) {
    EXPECT_EQ(escapedMarkup("&lt; &amp;"), "&amp;lt; &amp;amp;");
}

TEST(NotificationMessage, OffersTheDefaultActionAndTheButtonsWhereThereAreActions) {
    const QStringList offered{"default",        "Open Cairnfield", "action.review",
                              "Review cleanup", "action.ignore",   "Ignore this incident"};
    EXPECT_EQ(callFor(request(), {.hasActions = true}).actions(), offered);
    EXPECT_EQ(callFor(request(), {}).actions(), QStringList());
}

TEST(NotificationMessage, IsCriticalOnlyWhenItIsTimeSensitiveAndSaysSoInAByte) {
    EXPECT_EQ(callFor(request(), {}).hint("urgency"), QVariant::fromValue(uchar(1)));
    NotificationRequest loud = request();
    loud.interruptionLevel = InterruptionLevel::timeSensitive;
    const QVariant urgency = callFor(loud, {}).hint("urgency");
    EXPECT_EQ(urgency, QVariant::fromValue(uchar(2)));
    EXPECT_EQ(urgency.metaType().id(), QMetaType::UChar);
}

TEST(NotificationMessage, NamesTheProgramsDesktopEntry) {
    EXPECT_EQ(callFor(request(), {}).hint("desktop-entry").toString(), "com.cairnfield.app");
}

TEST(NotificationMessage, AsksForASoundAndAPictureOnlyWhereTheyAreKnown) {
    QImage red(2, 3, QImage::Format_RGB32);
    red.fill(Qt::red);
    const NotificationImage image = NotificationImage::from(red);
    EXPECT_FALSE(callFor(request(), {}, image).hint("sound-name").isValid());
    EXPECT_FALSE(callFor(request(), {}, image).hint("image-data").isValid());
    EXPECT_FALSE(callFor(request(), {.showsImages = true}).hint("image-data").isValid()) << "there is none";
    const Call full = callFor(request(), {.playsSound = true, .showsImages = true}, image);
    EXPECT_EQ(full.hint("sound-name").toString(), "message-new-instant");
    EXPECT_TRUE(full.hint("image-data").isValid());
}

TEST(NotificationMessage, RepairsWhatIsNoText) {
    NotificationRequest odd = request();
    odd.title = "a\xff";
    EXPECT_EQ(callFor(odd, {}).title(), QString::fromUtf8("a\uFFFD"));
}

TEST(NotificationImage, HoldsRedGreenBlueAndAlpha) {
    QImage picture(2, 1, QImage::Format_ARGB32);
    picture.setPixelColor(0, 0, QColor(1, 2, 3, 4));
    picture.setPixelColor(1, 0, QColor(5, 6, 7, 255));
    const NotificationImage image = NotificationImage::from(picture);
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.height, 1);
    EXPECT_EQ(image.rowStride, 8);
    EXPECT_EQ(image.pixels, QByteArray("\x01\x02\x03\x04\x05\x06\x07\xff", 8));
    EXPECT_TRUE(NotificationImage::from(QImage()).isEmpty());
}

TEST(NotificationCapabilities, AreReadFromTheirNames) {
    EXPECT_EQ(NotificationCapabilities::named({"body", "persistence"}), NotificationCapabilities{});
    const NotificationCapabilities all{
        .hasActions = true, .rendersMarkup = true, .playsSound = true, .showsImages = true};
    EXPECT_EQ(NotificationCapabilities::named({"sound", "actions", "icon-static", "body-markup"}), all);
}

}  // namespace
}  // namespace cairnfield
