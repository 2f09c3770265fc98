#include "App/NotificationCenterDelegate.h"
#include "support/FakeApplication.h"
#include "support/FakeNotificationCenter.h"
#include "support/FakeWorkspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordedAnswers final : public NotificationAnswering {
public:
    void snoozeIncident(int hours) override { snoozes.push_back(hours); }
    void ignoreCurrentIncident() override { ++ignored; }

    std::vector<int> snoozes;
    int ignored = 0;
};

class NotificationCenterDelegateTest : public testing::Test {
protected:
    void expectNothing() const {
        EXPECT_THAT(model->snoozes, IsEmpty());
        EXPECT_EQ(model->ignored, 0);
        EXPECT_EQ(application.activations, 0);
        EXPECT_THAT(workspace.revealed, IsEmpty());
    }
    void press(const std::string& action, std::map<std::string, std::string> userInfo = {}) const {
        center.respond(
            {.actionIdentifier = action, .requestIdentifier = "r", .userInfo = std::move(userInfo)});
    }

    std::shared_ptr<RecordedAnswers> model = std::make_shared<RecordedAnswers>();
    FakeApplication application;
    FakeWorkspace workspace;
    FakeNotificationCenter center;
    std::shared_ptr<NotificationCenterDelegate> delegate = [this] {
        auto made = std::make_shared<NotificationCenterDelegate>(model, application, workspace);
        NotificationCenterDelegate::install(made, center);
        return made;
    }();
};

TEST_F(NotificationCenterDelegateTest, SnoozesForAnHour) {
    press("action.snooze.hour");
    EXPECT_THAT(model->snoozes, ElementsAre(1));
    EXPECT_EQ(application.activations, 0);
}

TEST_F(NotificationCenterDelegateTest, SnoozesForADay) {
    press("action.snooze.day", {{"path", "/home/dev"}});
    EXPECT_THAT(model->snoozes, ElementsAre(24));
    EXPECT_THAT(workspace.revealed, IsEmpty());
}

TEST_F(NotificationCenterDelegateTest, IgnoresTheIncidentWithoutComingForward) {
    press("action.ignore");
    EXPECT_EQ(model->ignored, 1);
    EXPECT_EQ(application.activations, 0);
}

TEST_F(NotificationCenterDelegateTest, ComesForwardForAReviewAndForAClickOnTheNotification) {
    application.all.emplace_back(true);
    press("action.review");
    EXPECT_EQ(application.activations, 1);
    EXPECT_EQ(application.all[0].timesForward, 1);
    press(std::string(NotificationResponse::defaultActionIdentifier));
    EXPECT_EQ(application.activations, 2);
    EXPECT_EQ(application.all[0].timesForward, 2);
}

TEST_F(NotificationCenterDelegateTest, BringsTheFirstWindowForwardThatCanBeTheMainOne) {
    for (const bool canBeMain : {false, true, true}) application.all.emplace_back(canBeMain);
    press("action.review");
    EXPECT_EQ(application.all[0].timesForward, 0);
    EXPECT_EQ(application.all[1].timesForward, 1);
    EXPECT_EQ(application.all[2].timesForward, 0);
}

TEST_F(NotificationCenterDelegateTest, ActivatesWithNothingButAPanelOpen) {
    application.all.emplace_back(false);
    press("action.review");
    EXPECT_EQ(application.activations, 1);
    EXPECT_EQ(application.all[0].timesForward, 0);
}

TEST_F(NotificationCenterDelegateTest, ShowsTheFolderInTheFileManager) {
    press("action.openFolder", {{"path", "/home/dev/\xff"}});
    EXPECT_THAT(workspace.revealed, ElementsAre(FilePath("/home/dev/\xff")));
    EXPECT_EQ(application.activations, 0);
}

TEST_F(NotificationCenterDelegateTest, ShowsNoFolderWithoutAPath) {
    press("action.openFolder", {{"other", "/home/dev"}});
    expectNothing();
}

TEST_F(NotificationCenterDelegateTest, CarriesOnWhereNoFileManagerIs) {
    workspace.answer = "No file manager was found.";
    press("action.openFolder", {{"path", "/home/dev"}});
    EXPECT_EQ(workspace.revealed.size(), 1U);
}

TEST_F(NotificationCenterDelegateTest, DoesNothingForAnyOtherAction) {
    for (const std::string action : {"dismiss", "", "action.unknown", "Default", "action.snooze"})
        press(action, {{"path", "/home/dev"}});
    expectNothing();
}

TEST_F(NotificationCenterDelegateTest, DoesNothingOnceTheModelIsGone) {
    application.all.emplace_back(true);
    const std::weak_ptr<RecordedAnswers> gone = model;
    model.reset();
    ASSERT_TRUE(gone.expired());
    for (const char* action : {"action.snooze.hour", "action.review", "default"}) press(action);
    press("action.openFolder", {{"path", "/home/dev"}});
    EXPECT_EQ(application.activations, 0);
    EXPECT_EQ(application.all[0].timesForward, 0);
    EXPECT_THAT(workspace.revealed, IsEmpty());
}

TEST_F(NotificationCenterDelegateTest, DoesNothingOnceItIsGoneItself) {
    delegate.reset();
    press("action.snooze.hour");
    expectNothing();
}

}  // namespace
}  // namespace cairnfield
