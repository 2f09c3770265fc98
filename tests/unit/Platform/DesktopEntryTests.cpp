#include "Platform/Linux/DesktopEntry.h"

#include <gtest/gtest.h>

#include <random>

namespace cairnfield {
namespace {

TEST(DesktopEntry, ReadsTheKeysOfItsOwnGroup) {
    const DesktopEntry entry(
        "# mine\n"
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Name = Cairnfield \r\n"
        "Name[de]=Steinfeld\n"
        "Empty=\n"
        "[Desktop Action New]\n"
        "Type=Other\n"
        "Exec=other\n");
    EXPECT_EQ(entry.value("Type"), "Application");
    EXPECT_EQ(entry.value("Name"), "Cairnfield");
    EXPECT_EQ(entry.value("Name[de]"), "Steinfeld");
    EXPECT_EQ(entry.value("Empty"), "");
    EXPECT_EQ(entry.value("Exec"), std::nullopt);
    EXPECT_EQ(entry.value("# mine"), std::nullopt);
    EXPECT_EQ(DesktopEntry("Type=Application\n").value("Type"), std::nullopt);
    EXPECT_EQ(DesktopEntry().value("Type"), std::nullopt);
    EXPECT_EQ(DesktopEntry("[Desktop Entry]\nA=1\nA=2").value("A"), "2");
}

TEST(DesktopEntry, ChangesOneKeyAndKeepsTheRest) {
    DesktopEntry entry(
        "# mine\n"
        "[Desktop Entry]\n"
        "Exec=old\n"
        "X-Delay=10\n"
        "Exec=older\n"
        "\n"
        "[Desktop Action New]\n"
        "Exec=other\n");
    entry.set("Exec", "new");
    entry.set("Name", "Cairnfield");
    entry.remove("Hidden");
    EXPECT_EQ(entry.text(),
              "# mine\n"
              "[Desktop Entry]\n"
              "Exec=new\n"
              "X-Delay=10\n"
              "Name=Cairnfield\n"
              "\n"
              "[Desktop Action New]\n"
              "Exec=other\n");
    entry.remove("Exec");
    EXPECT_EQ(entry.value("Exec"), std::nullopt);
    EXPECT_NE(entry.text().find("Exec=other"), std::string::npos);
}

TEST(DesktopEntry, MakesItsGroup) {
    DesktopEntry entry;
    entry.remove("Name");
    EXPECT_EQ(entry.text(), "");
    entry.set("Name", "Cairnfield");
    EXPECT_EQ(entry.text(), "[Desktop Entry]\nName=Cairnfield\n");
}

TEST(DesktopEntry, LeavesOutWhatNoEntryMayHold) {
    const DesktopEntry entry(
        std::string_view("lost=1\n[Desktop Entry]\nno sign\nName=\xff\nType=A\0B\n=x\nIcon=i\n"
                         "[broken\n",
                         66));
    EXPECT_EQ(entry.text(), "[Desktop Entry]\nIcon=i\n");
}

TEST(DesktopEntry, LeavesOutAGroupWithItsHeader) {
    const std::string_view nul("[B\0]\n", 5);
    for (const std::string& header : {std::string("[B\xFF]\n"), std::string(nul)}) {
        const DesktopEntry after("[Desktop Entry]\nExec=mine\n" + header + "Exec=other\n");
        EXPECT_EQ(after.value("Exec"), "mine");
        EXPECT_EQ(after.text(), "[Desktop Entry]\nExec=mine\n");
        const DesktopEntry before(header + "Exec=other\n[Desktop Entry]\nExec=mine\n");
        EXPECT_EQ(before.text(), "[Desktop Entry]\nExec=mine\n");
    }
}

TEST(ExecLine, QuotesTheProgram) {
    EXPECT_EQ(execLine(FilePath("/usr/bin/cairnfield"), "--at-login"), "\"/usr/bin/cairnfield\" --at-login");
    EXPECT_EQ(execLine(FilePath("/opt/my apps/c"), "--at-login"), "\"/opt/my apps/c\" --at-login");
    EXPECT_EQ(execLine(FilePath("/a\"`$\\%'b"), "-x"), "\"/a\\\\\"\\\\`\\\\$\\\\\\\\%%'b\" -x");
    EXPECT_EQ(execLine(FilePath("/a\n\t\rb"), "-x"), "\"/a\\n\\t\\rb\" -x");
}

TEST(ExecLine, NamesItsProgram) {
    EXPECT_EQ(programOfExecLine("/usr/bin/cairnfield"), "/usr/bin/cairnfield");
    EXPECT_EQ(programOfExecLine("  /usr/bin/cairnfield   --at-login %U "), "/usr/bin/cairnfield");
    EXPECT_EQ(programOfExecLine("\"/opt/my apps/c\" --at-login"), "/opt/my apps/c");
    EXPECT_EQ(programOfExecLine("env A=1 cairnfield"), "env");
    EXPECT_EQ(programOfExecLine("/a\\sb"), "/a") << "an escaped blank is a blank";
    EXPECT_EQ(programOfExecLine("/a%%b"), "/a%b");
    EXPECT_EQ(programOfExecLine(""), "");
}

TEST(ExecLine, CannotBeReadWhenItIsBroken) {
    EXPECT_EQ(programOfExecLine("\"/opt/my apps/c --at-login"), std::nullopt);
    EXPECT_EQ(programOfExecLine("\"/a\\\\\""), std::nullopt) << "the quote is escaped";
    EXPECT_EQ(programOfExecLine("/a\\"), std::nullopt);
    EXPECT_EQ(programOfExecLine("/a\\q"), std::nullopt);
}

TEST(ExecLine, BringsEveryPathBack) {
    std::mt19937 random(3);
    constexpr std::string_view odd = " \t\n\r\"'`$\\%#=;&|<>()*?[]{}~!ab/\xc3\xa4";
    for (int round = 0; round < 5000; ++round) {
        std::string path = "/";
        for (int i = std::uniform_int_distribution(0, 12)(random); i > 0; --i)
            path += odd[std::uniform_int_distribution<std::size_t>(0, odd.size() - 1)(random)];
        ASSERT_EQ(programOfExecLine(execLine(FilePath(path), "--at-login")), path);
    }
}

}  // namespace
}  // namespace cairnfield
