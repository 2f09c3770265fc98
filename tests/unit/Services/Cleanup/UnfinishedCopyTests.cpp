#include "Services/Cleanup/UnfinishedCopy.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <unistd.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

class UnfinishedCopyOf : public testing::TestWithParam<UnfinishedCopy::Form> {
protected:
    std::set<std::string> names(const std::string& inside = "folder") const {
        std::set<std::string> found;
        for (const auto& item : fs::directory_iterator(home.path().appending(inside).bytes()))
            found.insert(item.path().filename());
        return found;
    }
    [[nodiscard]] bool isNamed() const { return GetParam() == UnfinishedCopy::Form::named; }

    TemporaryDirectory home;
    const FilePath path = home.makeDirectory("folder");
    const FilePath sourcePath = home.write("source", std::string(300'000, 's'));
    const FileDescriptor folder = openFolder(path);
    const FileDescriptor source{open(sourcePath.c_str(), O_RDONLY | O_CLOEXEC)};
};

TEST_P(UnfinishedCopyOf, HasNoNameOrAProvisionalOneAndGoesAgain) {
    {
        const UnfinishedCopy copy(folder.get(), source.get(), GetParam());
        EXPECT_TRUE(copy.equalsSource());
        EXPECT_THAT(names(), SizeIs(isNamed() ? 1 : 0));
    }
    EXPECT_THAT(names(), IsEmpty());
}

TEST_P(UnfinishedCopyOf, AppearsAsAWhole) {
    UnfinishedCopy copy(folder.get(), source.get(), GetParam());
    EXPECT_TRUE(copy.appearAs(folder.get(), "name"));
    EXPECT_THAT(names(), ElementsAre("name"));
    EXPECT_EQ(contentOf(path.appending("name")), std::string(300'000, 's'));
}

TEST_P(UnfinishedCopyOf, TakesNoNameThatIsTaken) {
    home.write("folder/name", "untouched");
    {
        UnfinishedCopy copy(folder.get(), source.get(), GetParam());
        EXPECT_FALSE(copy.appearAs(folder.get(), "name"));
    }
    EXPECT_THAT(names(), ElementsAre("name"));
    EXPECT_EQ(contentOf(path.appending("name")), "untouched");
}

TEST_P(UnfinishedCopyOf, ReplacesAFileInAnotherFolder) {
    home.write("other/name", "old");
    const FileDescriptor other = openFolder(home.path().appending("other"));
    {
        UnfinishedCopy copy(folder.get(), source.get(), GetParam());
        copy.replace(other.get(), "name");
    }
    EXPECT_THAT(names("other"), ElementsAre("name"));
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_EQ(contentOf(home.path().appending("other/name")), std::string(300'000, 's'));
}

TEST_P(UnfinishedCopyOf, GoesWhenItCannotTakeItsName) {
    home.makeDirectory("folder/name");
    {
        UnfinishedCopy copy(folder.get(), source.get(), GetParam());
        EXPECT_THROW(copy.replace(folder.get(), "name"), std::system_error);
        EXPECT_THROW((void)copy.appearAs(folder.get(), "missing/name"), std::system_error);
    }
    EXPECT_THAT(names(), ElementsAre("name"));
}

TEST_P(UnfinishedCopyOf, NoticesASourceThatChanged) {
    UnfinishedCopy copy(folder.get(), source.get(), GetParam());
    std::ofstream(sourcePath.bytes(), std::ios::app) << "more";
    EXPECT_FALSE(copy.equalsSource());
    std::ofstream(sourcePath.bytes(), std::ios::trunc) << std::string(299'999, 's') << 'x';
    EXPECT_FALSE(copy.equalsSource());
    std::ofstream(sourcePath.bytes(), std::ios::trunc) << std::string(299'999, 's');
    EXPECT_FALSE(copy.equalsSource());
    std::ofstream(sourcePath.bytes(), std::ios::trunc) << std::string(300'000, 's');
    EXPECT_TRUE(copy.equalsSource());
}

INSTANTIATE_TEST_SUITE_P(BothForms, UnfinishedCopyOf,
                         testing::Values(UnfinishedCopy::Form::withoutName, UnfinishedCopy::Form::named),
                         [](const auto& info) {
                             return info.param == UnfinishedCopy::Form::named ? "Named" : "WithoutName";
                         });

TEST(UnfinishedCopies, OfACrashAreRemovedAndNothingElse) {
    const TemporaryDirectory home;
    const std::string mark = ".cairnfield-unfinished-";
    const std::set<std::string> others{mark, mark + "x", mark + "6F9619FF-8B86-D011-B42D-00C04FC964FF.txt",
                                       "x" + mark + "6F9619FF-8B86-D011-B42D-00C04FC964FF"};
    for (const std::string& name : others) home.write(name);
    home.write(mark + "6F9619FF-8B86-D011-B42D-00C04FC964FF");
    removeUnfinishedCopies(openFolder(home.path()).get());
    std::set<std::string> left;
    for (const auto& item : fs::directory_iterator(home.path().bytes())) left.insert(item.path().filename());
    EXPECT_EQ(left, others);
}

TEST(Folders, AreEnteredAndMadeButNoLinkIsFollowed) {
    const TemporaryDirectory home;
    const FileDescriptor top = openFolder(home.path());
    EXPECT_TRUE(enterFolder(top.get(), "new"));
    EXPECT_TRUE(enterFolder(top.get(), "new"));
    EXPECT_EQ(fs::status(home.path().appending("new").bytes()).permissions(), fs::perms(0700));
    fs::create_directory_symlink("new", home.path().appending("link").bytes());
    EXPECT_THROW((void)enterFolder(top.get(), "link"), std::system_error);
    home.write("file");
    EXPECT_THROW((void)enterFolder(top.get(), "file"), std::system_error);
    EXPECT_THROW((void)openFolder(home.path().appending("missing")), std::system_error);
}

}  // namespace
}  // namespace cairnfield
