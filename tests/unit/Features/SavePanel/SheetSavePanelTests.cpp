#include "Features/SavePanel/SheetSavePanel.h"
#include "support/SignalCount.h"
#include "support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SheetSavePanelTest : public testing::Test {
protected:
    void open(const std::string& name) {
        panel.show(name, [this](const std::optional<FilePath>& place) { answers.push_back(place); });
    }

    TemporaryDirectory home;
    SheetSavePanel panel{home.path()};
    std::vector<std::optional<FilePath>> answers;
};

TEST_F(SheetSavePanelTest, OpensWithTheNameInTheHome) {
    EXPECT_FALSE(panel.isOpen());
    SignalCount opened(&panel, &SheetSavePanel::openChanged);
    open(".env");
    EXPECT_TRUE(panel.isOpen());
    EXPECT_EQ(opened.count(), 1);
    EXPECT_EQ(panel.name(), ".env");
    EXPECT_EQ(panel.folder().toStdString(), home.path().bytes());
    EXPECT_EQ(panel.folderAddress().toLocalFile(), panel.folder());
    EXPECT_THAT(answers, IsEmpty());
}

TEST_F(SheetSavePanelTest, AnswersOnceWithThePlace) {
    open(".env");
    panel.save("other", "~/new/folder/");
    panel.save("other", "~/new/folder/");
    panel.cancel();
    EXPECT_FALSE(panel.isOpen());
    EXPECT_THAT(answers, ElementsAre(home.path().appending("new/folder/other")));
}

TEST_F(SheetSavePanelTest, AnswersWithNothingWhenItIsCancelled) {
    open(".env");
    panel.cancel();
    panel.cancel();
    EXPECT_THAT(answers, ElementsAre(std::nullopt));
}

TEST_F(SheetSavePanelTest, KeepsTheBytesOfANameThatNobodyChanged) {
    const FilePath folder = home.makeDirectory("fol\xff\n");
    open("key\n\xff.pem");
    EXPECT_EQ(panel.name(), "key␊\uFFFD.pem");
    panel.pickFolder(QUrl::fromEncoded(QByteArray("file://") + home.path().c_str() + "/fol%FF%0A"));
    panel.save(panel.name(), panel.folder());
    EXPECT_THAT(answers, ElementsAre(folder.appending("key\n\xff.pem")));
}

TEST_F(SheetSavePanelTest, SaysWhatSpeaksAgainstAPlaceAndStaysOpen) {
    home.write(".env", "mine");
    open(".env");
    panel.save(panel.name(), panel.folder());
    EXPECT_THAT(panel.problem().toStdString(), HasSubstr(".env already exists there."));
    panel.save("other", "code");
    EXPECT_EQ(panel.problem(), "Type the whole path of a folder, starting with a slash.");
    EXPECT_TRUE(panel.isOpen());
    EXPECT_THAT(answers, IsEmpty());
    panel.save("other", panel.folder());
    EXPECT_EQ(panel.problem(), "");
    EXPECT_THAT(answers, ElementsAre(home.path().appending("other")));
}

TEST_F(SheetSavePanelTest, RemembersTheFolderForTheNextTime) {
    open("a");
    panel.save("a", "~/elsewhere");
    open("b");
    EXPECT_EQ(panel.folder().toStdString(), home.path().appending("elsewhere").bytes());
    panel.save("b", panel.folder());
    EXPECT_THAT(answers,
                ElementsAre(home.path().appending("elsewhere/a"), home.path().appending("elsewhere/b")));
}

TEST_F(SheetSavePanelTest, CancelsOneThatIsStillOpenForAnother) {
    open("a");
    open("b");
    EXPECT_THAT(answers, ElementsAre(std::nullopt));
    EXPECT_EQ(panel.name(), "b");
    panel.save("b", panel.folder());
    EXPECT_THAT(answers, ElementsAre(std::nullopt, home.path().appending("b")));
}

}  // namespace
}  // namespace cairnfield
