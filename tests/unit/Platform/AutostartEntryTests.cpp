#include "Platform/Linux/AutostartEntry.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using enum LoginItemStatus;

constexpr const char* entryName = "config/autostart/com.cairnfield.app.desktop";

class AutostartEntryTest : public testing::Test {
protected:
    FilePath makeProgram(std::string_view relative) const {
        FilePath made = home.write(relative, "#!/bin/sh\n");
        fs::permissions(made.bytes(), fs::perms::owner_all);
        return made;
    }
    void writeEntry(const std::string& lines) const {
        home.write(entryName, "[Desktop Entry]\nType=Application\nName=Cairnfield\n" + lines);
    }
    [[nodiscard]] std::string exec() const { return "Exec=\"" + program.bytes() + "\" --at-login\n"; }
    [[nodiscard]] std::string content() const { return contentOf(entry.file()); }

    TemporaryDirectory home;
    const FilePath program = makeProgram("bin/cairnfield");
    AutostartEntry entry{home / "config", program};
};

TEST_F(AutostartEntryTest, IsNotThereAtFirst) {
    EXPECT_EQ(entry.status(), notRegistered);
    EXPECT_FALSE(fs::exists((home / "config").bytes())) << "asking makes nothing";
}

TEST_F(AutostartEntryTest, IsEnabledOnceRegistered) {
    entry.registerItem();
    EXPECT_EQ(entry.status(), enabled);
    EXPECT_EQ(entry.file(), home / entryName);
    EXPECT_EQ(content(),
              "[Desktop Entry]\nType=Application\nName=Cairnfield\nIcon=com.cairnfield.app\nExec=\"" +
                  program.bytes() + "\" --at-login\nTerminal=false\n");
    struct stat status{};
    ASSERT_EQ(stat((home / "config/autostart").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
}

TEST_F(AutostartEntryTest, IsGoneOnceUnregistered) {
    entry.registerItem();
    entry.unregisterItem();
    EXPECT_EQ(entry.status(), notRegistered);
    EXPECT_TRUE(fs::is_empty((home / "config/autostart").bytes()));
    EXPECT_NO_THROW(entry.unregisterItem()) << "what is not there is unregistered";
}

TEST_F(AutostartEntryTest, MayBeRegisteredTwice) {
    entry.registerItem();
    const std::string once = content();
    entry.registerItem();
    EXPECT_EQ(content(), once);
    EXPECT_EQ(entry.status(), enabled);
}

TEST_F(AutostartEntryTest, SeesThatItWasDeletedByHand) {
    entry.registerItem();
    fs::remove(entry.file().bytes());
    EXPECT_EQ(entry.status(), notRegistered);
}

TEST_F(AutostartEntryTest, WaitsForApprovalOnceSwitchedOffInTheDesktop) {
    for (const char* off : {"Hidden=true\n", "Hidden = 1\n", "X-GNOME-Autostart-enabled=false\n"}) {
        writeEntry(exec() + off);
        EXPECT_EQ(entry.status(), requiresApproval) << off;
        entry.registerItem();
        EXPECT_EQ(entry.status(), enabled) << "the person asked for it here";
    }
    writeEntry(exec() + "Hidden=false\nX-GNOME-Autostart-enabled=true\n");
    EXPECT_EQ(entry.status(), enabled);
}

TEST_F(AutostartEntryTest, IsNotFoundWhenTheProgramIsGoneOrAnotherOne) {
    const FilePath other = makeProgram("bin/other");
    for (const std::string& line : {
             std::string("Exec=\"/gone/cairnfield\" --at-login\n"),
             "Exec=" + other.bytes() + "\n",
             "Exec=" + home.path().bytes() + "\n",
             std::string("Exec=cairnfield --at-login\n"),
             std::string("Exec=\"unfinished\n"),
             std::string("Exec=\n"),
             std::string(),
             exec() + "TryExec=/gone/cairnfield\n",
             exec() + "Type=Link\n",
         }) {
        writeEntry(line);
        EXPECT_EQ(entry.status(), notFound) << line;
    }
}

TEST_F(AutostartEntryTest, IsNotFoundWhenItsProgramWasUninstalled) {
    entry.registerItem();
    fs::permissions(program.bytes(), fs::perms::owner_read);
    EXPECT_EQ(entry.status(), notFound);
    fs::remove(program.bytes());
    EXPECT_EQ(entry.status(), notFound);
}

TEST_F(AutostartEntryTest, KnowsTheProgramByAnotherOfItsPaths) {
    fs::create_directory_symlink((home / "bin").bytes(), (home / "linked").bytes());
    writeEntry("Exec=" + (home / "linked/cairnfield").bytes() + " --at-login\n");
    EXPECT_EQ(entry.status(), enabled);
}

TEST_F(AutostartEntryTest, HoldsAProgramOfAnyName) {
    AutostartEntry odd(home / "config", makeProgram("b in/ca\"i`r$n\\f%i'e\nld"));
    odd.registerItem();
    EXPECT_EQ(odd.status(), enabled);
    EXPECT_EQ(entry.status(), notFound);
}

TEST_F(AutostartEntryTest, CannotHoldAProgramThatIsNotText) {
    AutostartEntry odd(home / "config", makeProgram("bin/\xff"));
    EXPECT_THROW(odd.registerItem(), std::system_error);
    EXPECT_FALSE(fs::exists(odd.file().bytes()));
}

TEST_F(AutostartEntryTest, KeepsWhatOthersAdded) {
    home.write(entryName,
               "# moved by hand\n[Desktop Entry]\nName[de]=Steinfeld\nHidden=true\nExec=old\nTryExec=old\n"
               "X-GNOME-Autostart-Delay=10\n\n[Desktop Action Quit]\nExec=quit\n");
    entry.registerItem();
    EXPECT_EQ(entry.status(), enabled);
    EXPECT_EQ(content(), "# moved by hand\n[Desktop Entry]\nName[de]=Steinfeld\nExec=\"" + program.bytes() +
                             "\" --at-login\nX-GNOME-Autostart-Delay=10\nType=Application\nName=Cairnfield\n"
                             "Icon=com.cairnfield.app\nTerminal=false\n\n[Desktop Action Quit]\nExec=quit\n");
}

TEST_F(AutostartEntryTest, RepairsAGarbledEntry) {
    for (const char* garbled : {"", "\xff\xfe\n", "Exec=lost\n", "[Other]\nA=1\n"}) {
        home.write(entryName, garbled);
        EXPECT_EQ(entry.status(), notFound);
        entry.registerItem();
        EXPECT_EQ(entry.status(), enabled);
        EXPECT_TRUE(content().starts_with("[Desktop Entry]\n"));
    }
}

TEST_F(AutostartEntryTest, ReplacesALinkAndLeavesWhatItLedTo) {
    const FilePath elsewhere = home.write("dotfiles/entry", "[Desktop Entry]\nX-Mine=1\n");
    home.makeDirectory("config/autostart");
    fs::create_symlink(elsewhere.bytes(), entry.file().bytes());
    entry.registerItem();
    EXPECT_EQ(contentOf(elsewhere), "[Desktop Entry]\nX-Mine=1\n");
    EXPECT_FALSE(fs::is_symlink(entry.file().bytes()));
    EXPECT_EQ(entry.status(), enabled);

    fs::remove(entry.file().bytes());
    fs::create_symlink(elsewhere.bytes(), entry.file().bytes());
    entry.unregisterItem();
    EXPECT_EQ(entry.status(), notRegistered);
    EXPECT_EQ(contentOf(elsewhere), "[Desktop Entry]\nX-Mine=1\n");
}

TEST_F(AutostartEntryTest, FailsWhereSomethingElseStandsInItsPlace) {
    fs::create_directories(entry.file().bytes());
    EXPECT_EQ(entry.status(), notFound);
    EXPECT_THROW(entry.registerItem(), std::system_error);
    EXPECT_THROW(entry.unregisterItem(), std::system_error);
    EXPECT_TRUE(fs::is_empty(entry.file().bytes()));
    EXPECT_EQ(std::distance(fs::directory_iterator((home / "config/autostart").bytes()), {}), 1)
        << "nothing temporary stays";
}

TEST_F(AutostartEntryTest, WaitsForNoPipe) {
    home.makeDirectory("config/autostart");
    ASSERT_EQ(mkfifo(entry.file().c_str(), 0600), 0);
    EXPECT_EQ(entry.status(), notFound);
    entry.registerItem();
    EXPECT_EQ(entry.status(), enabled);
}

TEST_F(AutostartEntryTest, TakesAwayWhatACrashLeft) {
    home.write("config/autostart/com.cairnfield.app.desktop.tmpAb12Cd");
    home.write("config/autostart/other.desktop.tmpAb12Cd");
    entry.registerItem();
    EXPECT_FALSE(fs::exists((home / "config/autostart/com.cairnfield.app.desktop.tmpAb12Cd").bytes()));
    EXPECT_TRUE(fs::exists((home / "config/autostart/other.desktop.tmpAb12Cd").bytes()));
}

TEST_F(AutostartEntryTest, SaysSoWhenTheFolderMayNotBeWritten) {
    const FilePath folder = home.makeDirectory("config/autostart");
    for (const char* part : {"", "config", "config/autostart", "bin"})
        fs::permissions((home / part).bytes(), fs::perms(0755));
    const std::string outcome = asUnprivilegedUser([&]() -> std::string {
        try {
            entry.registerItem();
        } catch (const std::system_error& failure) {
            return failure.code() == std::errc::permission_denied ? "denied" : failure.what();
        }
        return "registered";
    });
    EXPECT_EQ(outcome, "denied");
    EXPECT_TRUE(fs::is_empty(folder.bytes()));
}

TEST(RunningProgram, IsTheFileOfThisProcess) {
    const FilePath program = runningProgram();
    EXPECT_TRUE(program.isAbsolute());
    EXPECT_EQ(program.lastComponent(), "PlatformTests");
}

}  // namespace
}  // namespace cairnfield
