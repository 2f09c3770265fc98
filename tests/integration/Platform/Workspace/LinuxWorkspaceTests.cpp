#include "Platform/Linux/Desktop/LinuxWorkspace.h"
#include "support/Bus/PrivateBus.h"
#include "support/EventLoop.h"
#include "support/QtApplication.h"
#include "support/TemporaryDirectory.h"

#include <QDBusVirtualObject>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ScriptedFileManager final : public QDBusVirtualObject {
public:
    enum class Conduct { shows, fails };

    ScriptedFileManager(QDBusConnection bus, Conduct conduct) : bus_(bus), conduct_(conduct) {
        bus_.registerVirtualObject("/org/freedesktop/FileManager1", this);
        EXPECT_TRUE(bus_.registerService("org.freedesktop.FileManager1"));
    }
    ~ScriptedFileManager() override { bus_.unregisterService("org.freedesktop.FileManager1"); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member() != "ShowItems") return false;
        for (const QString& uri : message.arguments().value(0).toStringList())
            shown.push_back(uri.toStdString());
        return bus.send(conduct_ == Conduct::shows
                            ? message.createReply()
                            : message.createErrorReply("org.example.Broken", "broken"));
    }

    std::vector<std::string> shown;

private:
    QDBusConnection bus_;
    const Conduct conduct_;
};

class WorkspaceOfLinux : public testing::Test {
protected:
    /// A program that notes its working directory and its arguments, one in each line.
    void install(const std::string& name) {
        const FilePath program = home.write(
            "bin/" + name, "#!/bin/sh\n{ pwd; for a; do printf '%s\\n' \"$a\"; done; echo end; } >'" +
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
    LinuxWorkspace workspace{bus.connect(), {home.path().appending("bin")}};
    const FilePath item = home.write(
        "a b%/\xff"
        "file");
};

TEST_F(WorkspaceOfLinux, ShowsAnItemInTheFileManagerOfTheBus) {
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::shows);
    EXPECT_EQ(workspace.reveal(item), std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !manager.shown.empty(); }, "the file manager"));
    EXPECT_THAT(manager.shown, ElementsAre("file://" + home.path().bytes() + "/a%20b%25/%FFfile"));
}

TEST_F(WorkspaceOfLinux, ShowsSeveralItemsAtOnce) {
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::shows);
    EXPECT_EQ(workspace.revealAll({item, home.path().appending("other")}), std::nullopt);
    ASSERT_TRUE(runUntil([&] { return !manager.shown.empty(); }, "the file manager"));
    EXPECT_THAT(manager.shown, ElementsAre("file://" + home.path().bytes() + "/a%20b%25/%FFfile",
                                           "file://" + home.path().bytes() + "/other"));
}

TEST_F(WorkspaceOfLinux, OpensTheFolderThatHoldsAllOfSeveralItems) {
    install("xdg-open");
    const FilePath vault = home.path().appending("vault");
    EXPECT_EQ(workspace.revealAll(
                  {vault.appending("a/b/one"), vault.appending("a/bc/two"), vault.appending("a/b")}),
              std::nullopt);
    EXPECT_THAT(noted(), testing::Contains("file://" + vault.bytes() + "/a"));
}

TEST_F(WorkspaceOfLinux, HasNothingToDoForNoItemsAndEndsForPathsThatHaveNoFolderInCommon) {
    EXPECT_EQ(workspace.revealAll({}), std::nullopt);
    EXPECT_EQ(workspace.revealAll({FilePath("relative"), FilePath("/absolute")}),
              "No file manager was found.");
}

TEST_F(WorkspaceOfLinux, OpensTheFolderWhenTheFileManagerFails) {
    install("xdg-open");
    ScriptedFileManager manager(bus.connect(), ScriptedFileManager::Conduct::fails);
    EXPECT_EQ(workspace.reveal(item), std::nullopt);
    EXPECT_THAT(noted(), testing::Contains("file://" + home.path().bytes() + "/a%20b%25"));
}

TEST_F(WorkspaceOfLinux, OpensTheFolderWithoutAFileManagerOnTheBus) {
    install("xdg-open");
    EXPECT_EQ(workspace.reveal(item), std::nullopt);
    EXPECT_THAT(noted(), testing::Contains("file://" + home.path().bytes() + "/a%20b%25"));
}

TEST_F(WorkspaceOfLinux, OpensTheFolderWithoutABus) {
    install("gio");
    LinuxWorkspace alone(QDBusConnection("there is none"), {home.path().appending("bin")});
    EXPECT_EQ(alone.reveal(item), std::nullopt);
    EXPECT_THAT(noted(),
                testing::IsSupersetOf({std::string("open"), "file://" + home.path().bytes() + "/a%20b%25"}));
}

TEST_F(WorkspaceOfLinux, SaysThatThereIsNothingToOpenAFolderWith) {
    EXPECT_EQ(workspace.reveal(item), "No file manager was found.");
}

TEST_F(WorkspaceOfLinux, OpensATerminalInTheDirectory) {
    install("xterm");
    install("kitty");
    std::filesystem::remove(home.path().appending("bin/xterm").bytes());
    const FilePath directory = home.makeDirectory("a b/\"quoted\"");
    EXPECT_EQ(workspace.openTerminal(directory), std::nullopt);
    EXPECT_THAT(noted(), ElementsAre(directory.bytes(), "end"));
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
