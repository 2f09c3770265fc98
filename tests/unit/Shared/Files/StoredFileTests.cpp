#include "Shared/Files/AtomicFile.h"
#include "Shared/Files/StoredFile.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>
#include <stdexcept>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
namespace fs = std::filesystem;

class StoredFiles : public testing::Test {
protected:
    StoredFiles() { fs::permissions(home.path().bytes(), fs::perms(0755)); }

    /// Takes what begins with "good" for a value.
    static void decode(const std::string& bytes) {
        if (!bytes.starts_with("good")) throw std::runtime_error("expected good");
    }
    std::set<std::string> names() const {
        std::set<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(home.path().bytes()))
            names.insert(entry.path().filename());
        return names;
    }
    std::string notice() const {
        const StoredFileNotices::ByFile all = notices->all();
        return all.empty() ? "" : all.at("value.json");
    }
    /// One start of the program that finds these bytes and stores others.
    void replaceDamaged(const std::string& damaged) {
        home.write("value.json", damaged);
        StoredFile next(path, notices);
        EXPECT_FALSE(next.read(decode));
        next.replace("good");
    }

    TemporaryDirectory home;
    const FilePath path = home.path().appending("value.json");
    const std::shared_ptr<StoredFileNotices> notices = std::make_shared<StoredFileNotices>();
    StoredFile file{path, notices};
};

TEST_F(StoredFiles, AreNothingBeforeTheFirstRun) {
    CaptureStderr();
    EXPECT_FALSE(file.read(decode));
    file.replace("good");
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(contentOf(path), "good");
    EXPECT_THAT(names(), ElementsAre("value.json"));
    EXPECT_THAT(notices->all(), IsEmpty());
}

TEST_F(StoredFiles, AreReplacedWithoutACopyWhileTheyAreUnderstood) {
    home.write("value.json", "good old");
    EXPECT_TRUE(file.read(decode));
    file.replace("good new");
    EXPECT_EQ(contentOf(path), "good new");
    EXPECT_THAT(names(), ElementsAre("value.json"));
}

TEST_F(StoredFiles, ThatAreDamagedStayUntilTheyAreReplacedAndAreKeptThen) {
    home.write("value.json", std::string("bad\0\xFF", 5));
    CaptureStderr();
    EXPECT_FALSE(file.read(decode));
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("Failed to decode value.json: expected good"));
    EXPECT_THAT(names(), ElementsAre("value.json"));
    EXPECT_EQ(
        notice(),
        "value.json could not be understood, so nothing of it is shown. Before anything new is stored it is "
        "kept as value.json.damaged.");

    CaptureStderr();
    file.replace("good");
    EXPECT_THAT(GetCapturedStderr(),
                HasSubstr("value.json could not be understood and is kept as value.json.damaged"));
    EXPECT_EQ(contentOf(path), "good");
    EXPECT_EQ(contentOf(home / "value.json.damaged"), std::string("bad\0\xFF", 5));
    EXPECT_EQ(fs::status((home / "value.json.damaged").bytes()).permissions(), fs::perms(0600));
    EXPECT_THAT(names(), ElementsAre("value.json", "value.json.damaged"));
    EXPECT_EQ(notice(),
              "An earlier value.json could not be understood. It is kept as value.json.damaged in " +
                  home.path().display() + ". This line goes when that file does.");
}

TEST_F(StoredFiles, AreKeptOnce) {
    replaceDamaged("bad");
    file.read(decode);
    file.replace("good again");
    EXPECT_EQ(contentOf(home / "value.json.damaged"), "bad");
    EXPECT_THAT(names(), ElementsAre("value.json", "value.json.damaged"));
}

TEST_F(StoredFiles, ThatAreDamagedAgainAreKeptBesideTheEarlierOnes) {
    for (const char* damaged : {"bad", "worse", "bad", "worst"}) replaceDamaged(damaged);
    EXPECT_EQ(contentOf(home / "value.json.damaged"), "bad");
    EXPECT_EQ(contentOf(home / "value.json.damaged.2"), "worse");
    EXPECT_EQ(contentOf(home / "value.json.damaged.3"), "worst");
    EXPECT_THAT(names(), ElementsAre("value.json", "value.json.damaged", "value.json.damaged.2",
                                     "value.json.damaged.3"));
    EXPECT_THAT(notice(), HasSubstr("value.json.damaged.3"));
}

TEST_F(StoredFiles, AreKeptBesideWhateverHasTheName) {
    fs::create_symlink("nowhere", (home / "value.json.damaged").bytes());
    home.makeDirectory("value.json.damaged.2");
    replaceDamaged("bad");
    EXPECT_EQ(contentOf(home / "value.json.damaged.3"), "bad");
    EXPECT_FALSE(fs::exists((home / "nowhere").bytes()));
}

TEST_F(StoredFiles, SayAtTheNextStartThatOneIsKeptForAsLongAsItIs) {
    replaceDamaged("bad");
    notices->set("value.json", "");
    EXPECT_TRUE(file.read(decode));
    EXPECT_THAT(notice(), HasSubstr("is kept as value.json.damaged"));
    fs::remove((home / "value.json.damaged").bytes());
    EXPECT_TRUE(file.read(decode));
    EXPECT_THAT(notices->all(), IsEmpty());
}

TEST_F(StoredFiles, KeepWhatIsThereWhenTheyAreReplaced) {
    home.write("value.json", "bad");
    EXPECT_FALSE(file.read(decode));
    home.write("value.json", "good, mended by hand");
    file.replace("good");
    EXPECT_EQ(contentOf(home / "value.json.damaged"), "good, mended by hand");
}

TEST_F(StoredFiles, AreNotReplacedWhenTheDamagedOneCannotBeKept) {
    home.write("value.json", "bad");
    fs::permissions(path.bytes(), fs::perms(0644));
    const std::string outcome = asUnprivilegedUser([&]() -> std::string {
        file.read(decode);
        file.replace("good");
        return "replaced";
    });
    EXPECT_THAT(outcome, HasSubstr("threw: "));
    EXPECT_EQ(contentOf(path), "bad");
}

TEST_F(StoredFiles, ThatCannotBeReadAreNeverReplaced) {
    const FilePath folder = home.makeDirectory("open");
    fs::permissions(folder.bytes(), fs::perms(0777));
    home.write("open/value.json", "good, and another owner's");
    fs::permissions((folder.appending("value.json")).bytes(), fs::perms(0600));
    const std::string outcome = asUnprivilegedUser([&]() -> std::string {
        StoredFile foreign(folder.appending("value.json"), notices);
        if (foreign.read(decode) || !foreign.isUnreadable()) return "read";
        try {
            foreign.replace("good");
        } catch (const std::system_error& error) {
            return error.code().message() + ": " + notice();
        }
        return "replaced";
    });
    EXPECT_EQ(outcome,
              "Permission denied: value.json cannot be read (Permission denied). It stays as it is, and "
              "nothing new is stored until it can be.");
    EXPECT_EQ(contentOf(folder.appending("value.json")), "good, and another owner's");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.bytes()), fs::directory_iterator()), 1);
}

TEST_F(StoredFiles, ThatAreNoFilesAreNeverReplaced) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(file.read(decode));
    EXPECT_TRUE(file.isUnreadable());
    EXPECT_THROW(file.replace("good"), std::system_error);
    EXPECT_TRUE(fs::is_fifo(path.bytes()));
    fs::remove(path.bytes());
    home.write("value.json", "good");
    EXPECT_TRUE(file.read(decode)) << "another reading asks anew";
    EXPECT_FALSE(file.isUnreadable());
    EXPECT_THAT(notices->all(), IsEmpty());
}

TEST_F(StoredFiles, TellWhoeverListensOfEachChange) {
    int told = 0;
    notices->onChange([&] { ++told; });
    notices->set("value.json", "a");
    notices->set("value.json", "a");
    EXPECT_EQ(told, 1) << "it was known";
    notices->set("other.json", "b");
    notices->set("value.json", "");
    notices->set("value.json", "");
    EXPECT_EQ(told, 3);
    EXPECT_THAT(notices->all(), ElementsAre(Pair("other.json", "b")));
    notices->onChange(nullptr);
    notices->set("other.json", "c");
    EXPECT_EQ(told, 3);
}

TEST(AtomicFile, MakesANewFileOnlyWhereNoneIs) {
    const TemporaryDirectory home;
    const FilePath target = home.path().appending("value.json");
    EXPECT_TRUE(AtomicFile::writeNew(target, "first"));
    EXPECT_FALSE(AtomicFile::writeNew(target, "second"));
    EXPECT_EQ(contentOf(target), "first");
    EXPECT_EQ(fs::status(target.bytes()).permissions(), fs::perms(0600));
    EXPECT_EQ(std::distance(fs::directory_iterator(home.path().bytes()), fs::directory_iterator()), 1);
    EXPECT_THROW((void)AtomicFile::writeNew(home.path().appending("missing/value.json"), "x"),
                 std::system_error);
}

}  // namespace
}  // namespace cairnfield
