#include "Models/JSONFields.h"
#include "Persistence/JSONFileStore.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <limits>
#include <vector>

namespace cairnfield {

/// A record such as the stores keep.
struct Note {
    std::string text;
    Date writtenAt{};
    std::int64_t count = 0;

    friend bool operator==(const Note&, const Note&) = default;
};

void to_json(Json& json, const Note& note) {
    // Unlike the program's records this one writes its text as it is, and so may have no JSON form.
    json = {{"text", note.text}, {"writtenAt", jsonFromDate(note.writtenAt)}, {"count", note.count}};
}

void from_json(const Json& json, Note& note) {
    detail::readRequired(json, "text", note.text);
    detail::readRequired(json, "writtenAt", note.writtenAt);
    detail::readRequired(json, "count", note.count);
}

namespace {

using testing::HasSubstr;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

const Note defaultNote{"default", Date(1s), 0};
const Note someNote{"some", Date(2s), 7};

class JSONFileStoreTest : public testing::Test {
protected:
    TemporaryDirectory home;
    ThreadPool pool{2};
    const ApplicationSupport support{home.path().appending("data"), home.path().appending("config")};
    const FilePath file = support.directory().appending("note.json");
    JSONFileStore<Note> store{pool, support, "note.json", defaultNote};

    void writeFile(std::string_view content) const { home.write("data/Cairnfield/note.json", content); }
    Note load() { return waitFor(pool, store.load()); }
    void save(const Note& note) { waitFor(pool, store.save(note)); }
    /// As the next run of the program reads it.
    Note loadAgain() {
        JSONFileStore<Note> next(pool, support, "note.json", defaultNote);
        return waitFor(pool, next.load());
    }
    Note mutate(std::function<void(Note&)> body) { return waitFor(pool, store.mutate(std::move(body))); }
    /// A folder in the file's place lets no rename through.
    void blockWrites() const { fs::create_directories(file.bytes()); }
};

TEST_F(JSONFileStoreTest, ReadsAMissingFileAsTheDefaultAndCreatesNone) {
    CaptureStderr();
    EXPECT_EQ(load(), defaultNote);
    EXPECT_EQ(GetCapturedStderr(), "") << "this is the first run";
    EXPECT_FALSE(fs::exists(support.directory().bytes()));
    EXPECT_EQ(store.fileURL(), file);
}

TEST_F(JSONFileStoreTest, CreatesItsFolderForTheUserAlone) {
    save(someNote);
    EXPECT_EQ(fs::status(support.directory().bytes()).permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(file.bytes()).permissions(), fs::perms(0600));
    EXPECT_EQ(loadAgain(), someNote);
}

TEST_F(JSONFileStoreTest, WritesSortedKeysIndentedByTwoBlanks) {
    save(someNote);
    EXPECT_EQ(contentOf(file),
              "{\n  \"count\": 7,\n  \"text\": \"some\",\n  \"writtenAt\": \"1970-01-01T00:00:02Z\"\n}\n");
}

TEST_F(JSONFileStoreTest, ReadsAFileWrittenByHand) {
    writeFile(
        "\n{\"writtenAt\":\"1970-01-01T02:00:02+02:00\",\n\t\t\"text\" : \"some\",\"new\":[],\"count\":7}");
    EXPECT_EQ(load(), someNote);
}

TEST_F(JSONFileStoreTest, ReadsABadFileAsTheDefaultAndLogsOnce) {
    for (const char* bad :
         {"", "{\"text\":\"some\"", "[]", "null", "7", "\xFF", "{\"text\":\"some\",\"count\":7}",
          "{\"text\":7,\"count\":7,\"writtenAt\":\"1970-01-01T00:00:02Z\"}",
          "{\"text\":\"\xFF\",\"count\":7,\"writtenAt\":\"1970-01-01T00:00:02Z\"}",
          "{\"text\":\"some\",\"count\":7,\"writtenAt\":\"yesterday\"}"}) {
        writeFile(bad);
        CaptureStderr();
        EXPECT_EQ(loadAgain(), defaultNote) << bad;
        const std::string log = GetCapturedStderr();
        EXPECT_THAT(log, HasSubstr("error [persistence] Failed to decode note.json: "));
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
        EXPECT_EQ(contentOf(file), bad) << "it stays until the next save";
    }
}

TEST_F(JSONFileStoreTest, ReplacesABrokenFileWithTheNextSave) {
    writeFile("{\"text\":\"some\",\"count\":7,\"writtenAt\":\"1970-01-01T00:00:02Z\"");
    EXPECT_EQ(load(), defaultNote);
    save(someNote);
    EXPECT_EQ(loadAgain(), someNote);
    EXPECT_EQ(contentOf(home / "data/Cairnfield/note.json.damaged"),
              "{\"text\":\"some\",\"count\":7,\"writtenAt\":\"1970-01-01T00:00:02Z\"");
}

TEST_F(JSONFileStoreTest, KeepsABrokenFileThatIsReplacedWithoutALoad) {
    writeFile("garbage");
    save(someNote);
    EXPECT_EQ(contentOf(home / "data/Cairnfield/note.json.damaged"), "garbage");
    EXPECT_THAT(support.notices()->all(), testing::Contains(testing::Key("note.json")));
}

TEST_F(JSONFileStoreTest, ChangesWhatAFileHoldsThatCouldNotBeReadAtFirst) {
    blockWrites();
    EXPECT_EQ(load(), defaultNote);
    EXPECT_THROW(mutate([](Note& note) { note.count = 9; }), std::system_error);
    EXPECT_TRUE(fs::is_directory(file.bytes()));
    fs::remove(file.bytes());
    writeFile("{\"text\":\"some\",\"count\":7,\"writtenAt\":\"1970-01-01T00:00:02Z\"}");
    EXPECT_EQ(load(), defaultNote) << "only a change asks again";
    Note changed = someNote;
    changed.count = 8;
    EXPECT_EQ(mutate([](Note& note) { note.count += 1; }), changed);
    EXPECT_EQ(loadAgain(), changed);
    EXPECT_THAT(support.notices()->all(), testing::IsEmpty());
}

TEST_F(JSONFileStoreTest, TellsAStoredValueFromTheDefault) {
    EXPECT_FALSE(waitFor(pool, store.hasStoredValue()));
    save(defaultNote);
    EXPECT_TRUE(waitFor(pool, store.hasStoredValue()));
    JSONFileStore<Note> next(pool, support, "note.json", defaultNote);
    EXPECT_TRUE(waitFor(pool, next.hasStoredValue()));
    writeFile("garbage");
    JSONFileStore<Note> last(pool, support, "note.json", defaultNote);
    EXPECT_FALSE(waitFor(pool, last.hasStoredValue()));
}

TEST_F(JSONFileStoreTest, ReadsAFolderInItsPlaceAsTheDefault) {
    blockWrites();
    CaptureStderr();
    EXPECT_EQ(load(), defaultNote);
    EXPECT_THAT(GetCapturedStderr(), HasSubstr("Failed to decode note.json: Is a directory"));
}

TEST_F(JSONFileStoreTest, ReadsTheFileOnce) {
    EXPECT_EQ(load(), defaultNote);
    writeFile("{\"text\":\"some\",\"count\":7,\"writtenAt\":\"1970-01-01T00:00:02Z\"}");
    EXPECT_EQ(load(), defaultNote) << "a change from outside is seen after a restart";
    EXPECT_EQ(loadAgain(), someNote);
}

TEST_F(JSONFileStoreTest, TakesASavedValueWithoutReadingTheFile) {
    writeFile("garbage");
    save(someNote);
    CaptureStderr();
    EXPECT_EQ(load(), someNote);
    EXPECT_EQ(GetCapturedStderr(), "");
}

TEST_F(JSONFileStoreTest, LosesTheFractionOfASecondInTheFileAlone) {
    Note note = someNote;
    note.writtenAt += 500ms;
    save(note);
    EXPECT_EQ(load(), note);
    EXPECT_EQ(loadAgain().writtenAt, Date(2s));
}

TEST_F(JSONFileStoreTest, KeepsTheOldValueWhenTheWriteFails) {
    EXPECT_EQ(load(), defaultNote);
    blockWrites();
    EXPECT_THROW(save(someNote), std::system_error);
    EXPECT_EQ(load(), defaultNote);
    EXPECT_THROW(mutate([](Note& note) { note.count = 9; }), std::system_error);
    EXPECT_EQ(load(), defaultNote);
}

TEST_F(JSONFileStoreTest, KeepsTheOldValueWhenTheFolderCannotBeMade) {
    home.write("data", "a file in the folder's place");
    EXPECT_THROW(save(someNote), std::system_error);
    EXPECT_EQ(load(), defaultNote);
}

TEST_F(JSONFileStoreTest, KeepsTheOldValueWhenThereIsNoJSONForm) {
    save(someNote);
    EXPECT_THROW(save({"\xFF", Date(), 0}), Json::exception);
    EXPECT_EQ(load(), someNote);
    EXPECT_EQ(loadAgain(), someNote);
}

TEST_F(JSONFileStoreTest, ChangesACopyAndSavesIt) {
    save(someNote);
    const Note changed = mutate([](Note& note) { note.count += 1; });
    EXPECT_EQ(changed.count, 8);
    EXPECT_EQ(load(), changed);
    EXPECT_EQ(loadAgain(), changed);
}

TEST_F(JSONFileStoreTest, LosesNothingWhenAMutationThrows) {
    save(someNote);
    EXPECT_THROW(mutate([](Note& note) {
                     note.count = 99;
                     throw std::runtime_error("no");
                 }),
                 std::runtime_error);
    EXPECT_EQ(load(), someNote);
}

Task<> mutateOften(JSONFileStore<Note>* store, int times) {
    for (int i = 0; i < times; ++i) {
        std::function<void(Note&)> increment = [](Note& note) { note.count += 1; };
        co_await store->mutate(std::move(increment));
    }
}

TEST_F(JSONFileStoreTest, LosesNoMutationOfSeveralInFlight) {
    std::vector<Task<>> callers;
    for (int caller = 0; caller < 8; ++caller) callers.push_back(mutateOften(&store, 5));
    waitFor(pool, whenAll(std::move(callers)));
    EXPECT_EQ(load().count, 40);
    EXPECT_EQ(loadAgain().count, 40);
}

TEST_F(JSONFileStoreTest, RemovesWhatACrashLeftAtTheFirstLoad) {
    const FilePath leftover = home.write("data/Cairnfield/note.json.tmpAb3dE9");
    const FilePath other = home.write("data/Cairnfield/other.json.tmpAb3dE9");
    EXPECT_EQ(load(), defaultNote);
    EXPECT_FALSE(fs::exists(leftover.bytes()));
    EXPECT_TRUE(fs::exists(other.bytes()));
}

TEST(ApplicationSupport, NamesItsPlacesAndTouchesNothing) {
    const ApplicationSupport support(FilePath("/h/.local/share/"), FilePath("/h/.config"));
    EXPECT_EQ(support.directory(), FilePath("/h/.local/share/Cairnfield"));
    EXPECT_EQ(support.recoveryVaultDirectory(), FilePath("/h/.local/share/Cairnfield/Recovery"));
    EXPECT_EQ(support.settingsFile(), FilePath("/h/.config/Cairnfield/settings.json"));
}

}  // namespace
}  // namespace cairnfield
