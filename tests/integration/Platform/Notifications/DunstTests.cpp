// A real notification service on a real display. It is started by the bus, and each test begins without it.

#include "EventLoopFixture.h"
#include "Platform/Linux/Desktop/LinuxNotificationCenter.h"
#include "Services/Notifications/SystemNotificationService.h"
#include "support/SteppedClock.h"
#include "support/TemporaryDirectory.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QProcess>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const QString serviceName = QStringLiteral("org.freedesktop.Notifications");

constexpr const char* configuration = R"([global]
    markup = full
    format = "<b>%s</b>\n%b"
    width = 420
    sort = no
    dmenu = HOME/pick
[urgency_low]
    timeout = 0
[urgency_normal]
    timeout = 0
[urgency_critical]
    timeout = 0
[note]
    summary = "*"
    script = HOME/note
)";

/// What a person picks from the menu that the service opens.
constexpr const char* pick = "#!/bin/sh\ngrep -m1 -F \"$(cat HOME/choice)\"\n";
constexpr const char* note = "#!/bin/sh\necho \"$DUNST_URGENCY\" >>HOME/urgencies\n";

class Dunst : public EventLoopFixture {
protected:
    Dunst() {
        place(scratch.path().bytes() + "/pick", pick);
        place(scratch.path().bytes() + "/note", note);
        const std::string folder = std::string(std::getenv("HOME")) + "/.config/dunst";
        std::filesystem::create_directories(folder);
        place(folder + "/dunstrc", configuration);
        run(service.registerCategories());
        center.onResponse(
            [this](NotificationResponse response) { responses.push_back(std::move(response)); });
    }
    ~Dunst() override {
        run(center.stop());
        kill();
    }

    /// A program or a configuration, with the test's own directory in it.
    void place(const std::string& file, const char* text) const {
        const QString filled = QString::fromLatin1(text).replace(
            QLatin1String("HOME"), QString::fromStdString(scratch.path().bytes()));
        std::ofstream(file) << filled.toStdString();
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    void deliver(NotificationKind kind, std::string identifier, std::string title,
                 std::string body = "Body") {
        run(service.deliver({.kind = kind,
                             .title = std::move(title),
                             .body = std::move(body),
                             .identifier = std::move(identifier),
                             .userInfo = {{"path", "/p"}}}));
    }
    [[nodiscard]] bool isRunning() const {
        return connection.interface()->isServiceRegistered(serviceName).value();
    }
    void kill() {
        if (!isRunning()) return;
        ::kill(static_cast<pid_t>(connection.interface()->servicePid(serviceName).value()), SIGKILL);
        until([this] { return !isRunning(); }, "dunst to be gone");
    }
    static QImage redSquare() {
        QImage picture(48, 48, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        return picture;
    }
    static std::string contentIfAny(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static std::string control(const QStringList& arguments) {
        QProcess process;
        process.start(QStringLiteral("dunstctl"), arguments);
        EXPECT_TRUE(process.waitForFinished());
        return process.readAllStandardOutput().trimmed().toStdString();
    }
    void untilDisplayed(const char* count) {
        until([count] { return control({"count", "displayed"}) == count; }, "so many on screen");
    }
    void picture(const std::string& name) const {
        QProcess::execute(QStringLiteral("import"),
                          {QStringLiteral("-window"), QStringLiteral("root"), QStringLiteral("-crop"),
                           QStringLiteral("600x300+1000+0"),
                           QString::fromStdString(std::getenv("CAIRNFIELD_UI_PICTURES") + ("/" + name))});
    }
    void untilResponse() {
        until([this] { return !responses.empty(); }, "the response");
    }

    const TemporaryDirectory scratch;
    QDBusConnection connection = QDBusConnection::sessionBus();
    SteppedClock clock;
    LinuxNotificationCenter center{connection, clock, mainThread, redSquare()};
    SystemNotificationService service{center};
    std::vector<NotificationResponse> responses;
};

TEST_F(Dunst, IsNotStartedByTheQuestionWhetherThereIsOne) {
    EXPECT_EQ(run(service.authorizationStatus()), NotificationAuthorization::authorized);
    EXPECT_FALSE(isRunning());
}

TEST_F(Dunst, IsStartedByADelivery) {
    deliver(NotificationKind::storageWarning, "storage.warning", "Storage running low");
    EXPECT_TRUE(isRunning());
    untilDisplayed("1");
    picture("notification.png");
}

TEST_F(Dunst, ShowsTheSecondInPlaceOfTheFirst) {
    deliver(NotificationKind::storageWarning, "storage.warning", "first");
    deliver(NotificationKind::storageWarning, "storage.warning", "second");
    untilDisplayed("1");
    control({"close-all"});
    untilDisplayed("0");
    const std::string history = control({"history"});
    EXPECT_THAT(history, HasSubstr("second"));
    EXPECT_THAT(history, testing::Not(HasSubstr("first")));
}

TEST_F(Dunst, ShowsAWarningBesideACriticalAlert) {
    deliver(NotificationKind::storageWarning, "storage.warning", "warning");
    deliver(NotificationKind::storageCritical, "storage.critical", "critical");
    untilDisplayed("2");
}

TEST_F(Dunst, TakesOnlyACriticalAlertForUrgent) {
    deliver(NotificationKind::storageWarning, "storage.warning", "warning");
    const std::string urgencies = scratch.path().bytes() + "/urgencies";
    const auto noted = [&urgencies] { return contentIfAny(urgencies); };
    until([&noted] { return noted() == "NORMAL\n"; }, "the warning's urgency");
    deliver(NotificationKind::storageCritical, "storage.critical", "critical");
    until([&noted] { return noted() == "NORMAL\nCRITICAL\n"; }, "the critical alert's urgency");
}

TEST_F(Dunst, ShowsMarkupAsItStands) {
    deliver(NotificationKind::storageWarning, "storage.warning", "<i>T</i>&amp;",
            "2 GB free on <b>x</b>&. 1 GB looks reclaimable.");
    untilDisplayed("1");
    picture("markup.png");
    control({"close-all"});
    untilDisplayed("0");
    // The text as it was laid out, with what is markup to it.
    EXPECT_THAT(control({"history"}), HasSubstr("2 GB free on &lt;b&gt;x&lt;/b&gt;&amp;. 1 GB"));
    EXPECT_THAT(control({"history"}), HasSubstr("<b>&lt;i&gt;T&lt;/i&gt;&amp;amp;</b>"));
}

TEST_F(Dunst, TellsOfAButtonAndIsThenClosed) {
    deliver(NotificationKind::storageWarning, "storage.warning", "Storage running low");
    untilDisplayed("1");
    scratch.write("choice", "Snooze 1 hour");
    control({"context"});
    untilResponse();
    const NotificationResponse expected{.actionIdentifier = "action.snooze.hour",
                                        .requestIdentifier = "storage.warning",
                                        .userInfo = {{"path", "/p"}}};
    EXPECT_THAT(responses, ElementsAre(expected));
    untilDisplayed("0");
}

TEST_F(Dunst, TellsOfAClickOnTheNotificationAndIsThenClosed) {
    deliver(NotificationKind::growthAnomaly, "folder.growth.X", "Projects is growing fast");
    untilDisplayed("1");
    control({"action"});
    untilResponse();
    EXPECT_EQ(responses[0].actionIdentifier, NotificationResponse::defaultActionIdentifier);
    untilDisplayed("0");
}

TEST_F(Dunst, TellsThatThePersonPutItAway) {
    deliver(NotificationKind::storageWarning, "storage.warning", "Storage running low");
    untilDisplayed("1");
    control({"close"});
    untilResponse();
    EXPECT_EQ(responses[0].actionIdentifier, NotificationResponse::dismissActionIdentifier);
    EXPECT_THAT(center.deliveredIdentifiers(), testing::IsEmpty());
}

TEST_F(Dunst, ComesBackAfterACrash) {
    deliver(NotificationKind::storageWarning, "storage.warning", "before");
    untilDisplayed("1");
    kill();
    EXPECT_EQ(run(service.authorizationStatus()), NotificationAuthorization::authorized);
    deliver(NotificationKind::storageWarning, "storage.warning", "after");
    untilDisplayed("1");
    control({"action"});
    untilResponse();
    EXPECT_EQ(responses[0].requestIdentifier, "storage.warning");
}

}  // namespace
}  // namespace cairnfield
