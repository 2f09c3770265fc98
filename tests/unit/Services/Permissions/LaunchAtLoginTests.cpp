#include "Services/Permissions/InMemoryLaunchAtLoginService.h"
#include "Services/Permissions/LaunchAtLoginService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <system_error>
#include <vector>

namespace cairnfield {
namespace {

class StagedLoginItem final : public LoginItem {
public:
    [[nodiscard]] LoginItemStatus status() const override { return answer; }
    void registerItem() override { call("register"); }
    void unregisterItem() override { call("unregister"); }

    LoginItemStatus answer = LoginItemStatus::notRegistered;
    bool fails = false;
    std::vector<std::string> calls;

private:
    void call(const char* name) {
        calls.emplace_back(name);
        if (fails) throw std::system_error(EACCES, std::generic_category(), name);
    }
};

TEST(LaunchAtLoginService, IsEnabledExactlyWhenTheDesktopSaysSo) {
    using enum LoginItemStatus;
    StagedLoginItem item;
    const LaunchAtLoginService service(item);
    for (const LoginItemStatus status : {notRegistered, enabled, requiresApproval, notFound}) {
        item.answer = status;
        EXPECT_EQ(service.isEnabled(), status == enabled);
    }
}

TEST(LaunchAtLoginService, GoesToTheDesktopAlsoWhenNothingWouldChange) {
    StagedLoginItem item;
    item.answer = LoginItemStatus::enabled;
    LaunchAtLoginService service(item);
    service.setEnabled(true);
    service.setEnabled(true);
    service.setEnabled(false);
    EXPECT_THAT(item.calls, testing::ElementsAre("register", "register", "unregister"));
}

TEST(LaunchAtLoginService, PassesAFailureOn) {
    StagedLoginItem item;
    item.fails = true;
    LaunchAtLoginService service(item);
    EXPECT_THROW(service.setEnabled(true), std::system_error);
    EXPECT_THROW(service.setEnabled(false), std::system_error);
}

TEST(InMemoryLaunchAtLoginService, KeepsTheLastValueForAllOfItsCopies) {
    InMemoryLaunchAtLoginService service;
    InMemoryLaunchAtLoginService copy = service;
    EXPECT_FALSE(service.isEnabled());
    service.setEnabled(true);
    EXPECT_TRUE(copy.isEnabled());
    copy.setEnabled(false);
    EXPECT_FALSE(service.isEnabled());
    EXPECT_FALSE(InMemoryLaunchAtLoginService().isEnabled());
}

}  // namespace
}  // namespace cairnfield
