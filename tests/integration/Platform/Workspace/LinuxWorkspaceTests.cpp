#include "Platform/Linux/Desktop/LinuxWorkspace.h"
#include "support/Bus/PrivateBus.h"
#include "support/EventLoop.h"
#include "support/QtApplication.h"
#include "support/ScopedEnvironment.h"
#include "support/TemporaryDirectory.h"

#include <QDBusVirtualObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace cairnfield {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

class ScriptedFileManager final : public QDBusVirtualObject {
public:
    enum class Conduct { shows, fails, isSilent };

    ScriptedFileManager(QDBusConnection bus, Conduct conduct) : bus_(bus), conduct_(conduct) {
        bus_.registerVirtualObject("/org/freedesktop/FileManager1", this);
        EXPECT_TRUE(bus_.registerService("org.freedesktop.FileManager1"));
    }
    ~ScriptedFileManager() override { bus_.unregisterService("org.freedesktop.FileManager1"); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() != "ShowItems") return false;
        if (conduct_ == Conduct::isSilent) {
            unanswered.push_back(message);
            return true;
        }
        for (const QString& uri : message.arguments().value(0).toStringList())
            shown.push_back(uri.toStdString());
        startupIdentifier = message.arguments().value(1).toString().toStdString();
        return bus.send(conduct_ == Conduct::shows
                            ? message.createReply()
                            : message.createErrorReply("org.example.Broken", "broken"));
    }

    /// Answers what was left without one, as the other conduct does.
    void answerNow() {
        for (const QDBusMessage& message : unanswered) bus_.send(message.createReply());
        unanswered.clear();
    }

    std::vector<std::string> shown;
    std::vector<QDBusMessage> unanswered;
    std::string startupIdentifier;

private:
    QDBusConnection bus_;
    const Conduct conduct_;
};

class WorkspaceOfLinux : public testing::Test {
protected:
    /// A program that notes its working directory and its arguments, one in each line.
    void install(const std::string& name) {
        const FilePath program = home.write(
            "bin/" + name, "#!/bin/sh\n{ pwd; for a; do printf '%s\\n' \"$a\"; done; echo end; env; } >'" +
                               note().bytes() + ".new'\nmv '" + note().bytes() + ".new' '" + note().bytes() +
                               "'\n");
        std::filesystem::permissions(program.bytes(), std::filesystem::perms::owner_all);
    }
    [[nodiscard]] FilePath note() const { return home.path().appending("note"); }
    /// What the program noted, once it has.
    std::vector<std::string> noted() {
        runUntil([this] { return std::filesystem::exists(note().bytes()); }, "the program");
        std::ifstream file(note().bytes());
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        return lines;
    }

    QtApplication qt;
    TemporaryDirectory home;
    PrivateBus bus;
    /// Shows the items, and gives what it was told in the end.
    std::optional<std::string> reveal(LinuxWorkspace& shown, const std::vector<FilePath>& items) {
        std::optional<std::optional<std::string>> told;
        shown.revealAll(items, [&told](const std::optional<std::string>& problem) { told = problem; });
        runUntil([&told] { return told.has_value(); }, "the answer");
        return told.value_or(std::nullopt);
    }
    std::optional<std::string> reveal(const FilePath& place) { return reveal(workspace, {place}); }

    LinuxWorkspace workspace{bus.connect(),
                             {home.path().appending("bin")},
                             {{"PATH", "/usr/bin:/bin"}, {"XDG_ACTIVATION_TOKEN", "ours"}, {"MARK", "ours"}}};
    const FilePath item = home.write(
        "a b%/\xff"
        "file");
};

TEST_F(WorkspaceOfLinux, ShowsAnItemInTheFileManagerOfTheBus) {
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::shows);
    EXPECT_EQ(reveal(item), std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !manager.shown.empty(); }, "the file manager"));
    EXPECT_THAT(manager.shown, ElementsAre("file://" + home.path().bytes() + "/a%20b%25/%FFfile"));
}

TEST_F(WorkspaceOfLinux, ShowsSeveralItemsAtOnce) {
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::shows);
    EXPECT_EQ(reveal(workspace, {item, home.path().appending("other")}), std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !manager.shown.empty(); }, "the file manager"));
    EXPECT_THAT(manager.shown, ElementsAre("file://" + home.path().bytes() + "/a%20b%25/%FFfile",
                                           "file://" + home.path().bytes() + "/other"));
}

TEST_F(WorkspaceOfLinux, OpensTheFolderThatHoldsAllOfSeveralItems) {
    install("xdg-open");
    const FilePath vault = home.path().appending("vault");
    EXPECT_EQ(
        reveal(workspace, {vault.appending("a/b/one"), vault.appending("a/bc/two"), vault.appending("a/b")}),
        std::nullopt);
    EXPECT_THAT(noted(), testing::Contains("file://" + vault.bytes() + "/a"));
}

TEST_F(WorkspaceOfLinux, HasNothingToDoForNoItemsAndEndsForPathsThatHaveNoFolderInCommon) {
    EXPECT_EQ(reveal(workspace, {}), std::nullopt);
    EXPECT_EQ(reveal(workspace, {FilePath("relative"), FilePath("/absolute")}), "No file manager was found.");
}

TEST_F(WorkspaceOfLinux, OpensTheFolderWhenTheFileManagerFails) {
    install("xdg-open");
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::fails);
    EXPECT_EQ(reveal(item), std::nullopt);
    EXPECT_THAT(noted(), testing::Contains("file://" + home.path().bytes() + "/a%20b%25"));
}

TEST_F(WorkspaceOfLinux, OpensTheFolderWithoutAFileManagerOnTheBus) {
    install("xdg-open");
    EXPECT_EQ(reveal(item), std::nullopt);
    EXPECT_THAT(noted(), testing::Contains("file://" + home.path().bytes() + "/a%20b%25"));
}

TEST_F(WorkspaceOfLinux, OpensTheFolderWithoutABus) {
    install("gio");
    LinuxWorkspace alone(QDBusConnection("there is none"), {home.path().appending("bin")},
                         {{"PATH", "/usr/bin:/bin"}});
    EXPECT_EQ(reveal(alone, {item}), std::nullopt);
    EXPECT_THAT(noted(),
                testing::IsSupersetOf({std::string("open"), "file://" + home.path().bytes() + "/a%20b%25"}));
}

TEST_F(WorkspaceOfLinux, SaysThatThereIsNothingToOpenAFolderWith) {
    EXPECT_EQ(reveal(item), "No file manager was found.");
}

TEST_F(WorkspaceOfLinux, OpensATerminalInTheDirectory) {
    install("xterm");
    install("kitty");
    std::filesystem::remove(home.path().appending("bin/xterm").bytes());
    const FilePath directory = home.makeDirectory("a b/\"quoted\"");
    EXPECT_EQ(workspace.openTerminal(directory), std::nullopt);
    std::vector<std::string> lines = noted();
    lines.resize(2);
    EXPECT_THAT(lines, ElementsAre(directory.bytes(), "end"));
}

TEST_F(WorkspaceOfLinux, GivesATerminalTheEnvironmentOfOurStartAndNotGitsOfOurs) {
    install("xterm");
    const ScopedEnvironment later("LATER", "set after the start");
    EXPECT_EQ(workspace.openTerminal(home.path()), std::nullopt);
    const std::vector<std::string> lines = noted();
    EXPECT_THAT(lines, Contains("MARK=ours"));
    EXPECT_THAT(lines, Not(Contains(StartsWith("LATER="))));
    EXPECT_THAT(lines, Not(Contains(StartsWith("GIT_"))));
    EXPECT_THAT(lines, Not(Contains(StartsWith("XDG_ACTIVATION_TOKEN="))));
}

TEST_F(WorkspaceOfLinux, HandsALeaveToTheFileManagerOnce) {
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::shows);
    workspace.useActivationToken("leave");
    EXPECT_EQ(reveal(item), std::nullopt);
    EXPECT_EQ(manager.startupIdentifier, "leave");
    EXPECT_EQ(reveal(item), std::nullopt);
    EXPECT_EQ(manager.startupIdentifier, "");
}

TEST_F(WorkspaceOfLinux, HandsALeaveToAProgramInItsEnvironmentAlone) {
    install("xdg-open");
    workspace.useActivationToken("leave");
    EXPECT_EQ(reveal(item), std::nullopt);
    EXPECT_THAT(noted(), IsSupersetOf({std::string("XDG_ACTIVATION_TOKEN=leave"),
                                       std::string("DESKTOP_STARTUP_ID=leave"), std::string("MARK=ours")}));
    EXPECT_EQ(std::getenv("XDG_ACTIVATION_TOKEN"), nullptr);
}

TEST_F(WorkspaceOfLinux, DoesNotWaitForTheFileManager) {
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::isSilent);
    bool isTold = false;
    workspace.reveal(item, [&isTold](const std::optional<std::string>&) { isTold = true; });
    ASSERT_TRUE(runUntil([&] { return !manager.unanswered.empty(); }, "the question"));
    EXPECT_FALSE(isTold) << "there is no answer yet, and we have gone on";
    manager.answerNow();
    EXPECT_TRUE(runUntil([&] { return isTold; }, "the answer"));
}

TEST_F(WorkspaceOfLinux, AsksABusThatDoesNotReadWithoutWaitingForIt) {
    const QDBusConnection connection = bus.connect();
    LinuxWorkspace asking(connection, {home.path().appending("bin")}, {});
    bus.pause();
    bool isTold = false;
    // A call that waited for the bus would still be at it when its patience of half a minute is over.
    asking.reveal(item, [&isTold](const std::optional<std::string>&) { isTold = true; });
    EXPECT_FALSE(isTold);
    bus.resume();
    EXPECT_TRUE(runUntil([&] { return isTold; }, "the answer"));
}

TEST_F(WorkspaceOfLinux, SaysThatThereIsNoTerminal) {
    EXPECT_EQ(workspace.openTerminal(home.path()), "No terminal was found.");
}

TEST_F(WorkspaceOfLinux, SaysWhyATerminalDidNotStart) {
    install("xterm");
    const auto problem = workspace.openTerminal(home.path().appending("gone"));
    ASSERT_TRUE(problem.has_value());
    EXPECT_THAT(*problem, HasSubstr("xterm could not be started: No such file or directory"));
}

}  // namespace
}  // namespace cairnfield
