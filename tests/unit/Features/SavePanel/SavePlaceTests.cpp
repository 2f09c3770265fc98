#include "Features/SavePanel/SavePlace.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

class SavePlace : public testing::Test {
protected:
    TemporaryDirectory home;
};

TEST_F(SavePlace, IsGoodWhereNothingIsYet) {
    EXPECT_EQ(whyNotSavedAt(home.path(), ".env"), "");
    EXPECT_EQ(whyNotSavedAt(home.path().appending("not/made/yet"), "key\xff"), "");
}

TEST_F(SavePlace, NeedsANameThatAFileCanHave) {
    EXPECT_EQ(whyNotSavedAt(home.path(), ""), "Type a name for the file.");
    for (const char* name : {"a/b", "/", ".", ".."})
        EXPECT_EQ(whyNotSavedAt(home.path(), name), "A file cannot have this name.") << name;
}

TEST_F(SavePlace, IsRefusedWhereSomethingHasTheName) {
    home.write("file");
    home.makeDirectory("folder");
    std::filesystem::create_symlink("nowhere", home.path().appending("link").bytes());
    for (const char* name : {"file", "folder", "link"})
        EXPECT_EQ(whyNotSavedAt(home.path(), name),
                  std::string(name) + " already exists there. Nothing is replaced: choose another name.");
}

TEST_F(SavePlace, IsRefusedBelowWhatIsNoFolder) {
    const FilePath file = home.write("file");
    EXPECT_EQ(whyNotSavedAt(file, "name"), file.display() + " is not a folder.");
    EXPECT_EQ(whyNotSavedAt(file.appending("deeper/still"), "name"), file.display() + " is not a folder.");
}

TEST_F(SavePlace, IsRefusedWhereThePersonMayNotWrite) {
    std::filesystem::permissions(home.path().bytes(), std::filesystem::perms(0755));
    const FilePath folder = home.path().appending("not/made/yet");
    EXPECT_EQ(asUnprivilegedUser([&] { return whyNotSavedAt(folder, "name"); }),
              "You cannot save in " + home.path().display() + ".");
}

}  // namespace
}  // namespace cairnfield
