#include "Persistence/CleanupReceiptStore.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <vector>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

CleanupReceipt receiptAt(std::chrono::seconds time, const std::string& name = "project") {
    CleanupReceipt receipt;
    receipt.id = UUID::make();
    receipt.date = Date(time);
    receipt.repositoryName = name;
    return receipt;
}

class CleanupReceiptStoreTest : public testing::Test {
protected:
    TemporaryDirectory home;
    ThreadPool pool{2};
    const ApplicationSupport support{home.path().appending("data"), home.path().appending("config")};
    const FilePath file = support.directory().appending("cleanup-receipts.json");
    CleanupReceiptStore store{pool, support};

    template <class T>
    T wait(Task<T> task) {
        return waitFor(pool, std::move(task));
    }
    std::vector<CleanupReceipt> all() { return wait(store.all()); }
    std::vector<CleanupReceipt> allAgain() {
        CleanupReceiptStore next(pool, support);
        return wait(next.all());
    }
    std::vector<std::string> namesInFile() const {
        std::vector<std::string> names;
        for (const Json& receipt : Json::parse(contentOf(file))) names.push_back(receipt["repositoryName"]);
        return names;
    }
};

TEST_F(CleanupReceiptStoreTest, IsEmptyAtTheFirstRunAndWritesNothing) {
    EXPECT_THAT(all(), IsEmpty());
    EXPECT_FALSE(fs::exists(file.bytes()));
}

TEST_F(CleanupReceiptStoreTest, AppendsToTheFileAndListsTheNewestFirst) {
    const CleanupReceipt middle = receiptAt(200s, "middle");
    const CleanupReceipt newest = receiptAt(300s, "newest");
    const CleanupReceipt oldest = receiptAt(100s, "oldest");
    for (const CleanupReceipt& receipt : {middle, newest, oldest}) wait(store.append(receipt));
    EXPECT_THAT(all(), ElementsAre(newest, middle, oldest));
    EXPECT_THAT(allAgain(), ElementsAre(newest, middle, oldest));
    EXPECT_THAT(namesInFile(), ElementsAre("middle", "newest", "oldest"));
}

TEST_F(CleanupReceiptStoreTest, KeepsTheOrderOfTheFileAmongReceiptsOfOneDate) {
    std::vector<CleanupReceipt> receipts;
    for (const char* name : {"c", "a", "b", "e", "d"}) receipts.push_back(receiptAt(100s, name));
    for (const CleanupReceipt& receipt : receipts) wait(store.append(receipt));
    EXPECT_EQ(all(), receipts);
}

TEST_F(CleanupReceiptStoreTest, ReplacesAReceiptOfTheSameIdentityAndMovesItToTheEnd) {
    const CleanupReceipt first = receiptAt(100s, "first");
    const CleanupReceipt second = receiptAt(100s, "second");
    CleanupReceipt changed = first;
    changed.repositoryName = "changed";
    for (const CleanupReceipt& receipt : {first, second, changed}) wait(store.append(receipt));
    EXPECT_THAT(all(), ElementsAre(second, changed));
    EXPECT_THAT(namesInFile(), ElementsAre("second", "changed"));
}

TEST_F(CleanupReceiptStoreTest, TrimsNothing) {
    for (int i = 0; i < 300; ++i) wait(store.append(receiptAt(std::chrono::seconds(i))));
    EXPECT_THAT(allAgain(), SizeIs(300));
}

TEST_F(CleanupReceiptStoreTest, LosesNoReceiptOfTwoAtOnce) {
    std::vector<Task<>> appends;
    appends.reserve(20);
    for (int i = 0; i < 20; ++i) appends.push_back(store.append(receiptAt(std::chrono::seconds(i))));
    wait(whenAll(std::move(appends)));
    EXPECT_THAT(allAgain(), SizeIs(20));
}

TEST_F(CleanupReceiptStoreTest, ClearsTheListInMemoryAndOnDisk) {
    wait(store.append(receiptAt(100s)));
    wait(store.clear());
    EXPECT_THAT(all(), IsEmpty());
    EXPECT_THAT(allAgain(), IsEmpty());
}

TEST_F(CleanupReceiptStoreTest, StartsEmptyFromADamagedFileUntilTheNextWriteReplacesIt) {
    home.write("data/Cairnfield/cleanup-receipts.json", R"([{"schemaVersion":1}])");
    EXPECT_THAT(all(), IsEmpty());
    EXPECT_EQ(contentOf(file), R"([{"schemaVersion":1}])");
    wait(store.append(receiptAt(100s)));
    EXPECT_THAT(allAgain(), SizeIs(1));
}

TEST_F(CleanupReceiptStoreTest, LosesAReceiptInSilenceWhenTheFileCannotBeReplaced) {
    const CleanupReceipt kept = receiptAt(100s);
    wait(store.append(kept));
    fs::remove(file.bytes());
    fs::create_directory(file.bytes());
    EXPECT_NO_THROW(wait(store.append(receiptAt(200s))));
    EXPECT_THAT(all(), ElementsAre(kept)) << "memory stays as the disk last was";
    EXPECT_THROW(wait(store.clear()), std::system_error);
    EXPECT_THAT(all(), ElementsAre(kept));
}

TEST(CleanupReceiptStoreOfAnotherUser, LosesAReceiptInSilence) {
    const TemporaryDirectory home;
    fs::permissions(home.path().bytes(), fs::perms(0755));
    const ApplicationSupport support(home.path().appending("data"), home.path().appending("config"));
    const std::string outcome = asUnprivilegedUser([&] {
        RunLoop loop;
        CleanupReceiptStore store(loop, support);
        waitFor(loop, store.append(receiptAt(100s)));
        return std::to_string(waitFor(loop, store.all()).size());
    });
    EXPECT_EQ(outcome, "0");
    EXPECT_FALSE(fs::exists(support.directory().bytes()));
}

}  // namespace
}  // namespace cairnfield
