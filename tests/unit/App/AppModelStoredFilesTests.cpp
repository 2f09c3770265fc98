// What the model says of the program's own files, and what becomes of them.

#include "support/App/AppHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;

class StoredFilesOfTheModel : public testing::Test {
protected:
    [[nodiscard]] const StoredFileNotices::ByFile& notices() const {
        return app.model->state().storedFileNotices.get();
    }
    FilePath write(const std::string& name, const std::string& content) const {
        return app.home.write("data/Cairnfield/" + name, content);
    }
    [[nodiscard]] FilePath file(const std::string& name) const {
        return app.support.directory().appending(name);
    }

    AppHarness app;
};

TEST_F(StoredFilesOfTheModel, SayNothingWhileAllIsWell) {
    app.run(app.model->start());
    EXPECT_THAT(notices(), IsEmpty());
    EXPECT_EQ(app.model->state().storedFileNotice("watched-folders.json"), "");
}

TEST_F(StoredFilesOfTheModel, ThatAreDamagedAreSaidAndKeptWhenTheyAreReplaced) {
    const FilePath folders = write("watched-folders.json", "garbage");
    write("cleanup-receipts.json", "[");
    app.run(app.model->start());
    app.waitUntil([&] { return notices().size() == 2; });
    EXPECT_THAT(notices(), ElementsAre(Key("cleanup-receipts.json"), Key("watched-folders.json")));
    EXPECT_THAT(app.model->state().storedFileNotice("watched-folders.json"),
                HasSubstr("could not be understood, so"));
    EXPECT_EQ(contentOf(folders), "garbage");

    const FilePath folder = app.home.makeDirectory("code");
    app.run(app.model->addWatchedFolder(folder));
    EXPECT_EQ(app.model->state().folderError.get(), std::nullopt);
    EXPECT_EQ(contentOf(file("watched-folders.json.damaged")), "garbage");
    app.waitUntil([&] {
        return app.model->state()
                   .storedFileNotice("watched-folders.json")
                   .find("is kept as watched-folders.json.damaged") != std::string::npos;
    });
    EXPECT_EQ(contentOf(file("cleanup-receipts.json")), "[") << "nothing replaced it";
}

TEST_F(StoredFilesOfTheModel, ThatCannotBeReadAreNotReplacedAndThatIsSaid) {
    std::filesystem::create_directories(app.support.directory().bytes());
    ASSERT_EQ(mkfifo(file("watched-folders.json").c_str(), 0600), 0);
    app.run(app.model->start());
    app.waitUntil([&] { return !notices().empty(); });
    EXPECT_THAT(app.model->state().storedFileNotice("watched-folders.json"), HasSubstr("It stays as it is"));
    app.run(app.model->addWatchedFolder(app.home.makeDirectory("code")));
    EXPECT_NE(app.model->state().folderError.get(), std::nullopt) << "where the person asked for it";
    EXPECT_TRUE(std::filesystem::is_fifo(file("watched-folders.json").bytes()));
}

}  // namespace
}  // namespace cairnfield
