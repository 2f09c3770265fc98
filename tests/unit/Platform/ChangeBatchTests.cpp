#include "Platform/Linux/ChangeBatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace cairnfield;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const FilePath home("/home/ada");
const FilePath code("/home/ada/code");
const BootClock::time_point start(1h);

TEST(ChangeBatch, TheFirstChangeOfAQuietPeriodIsDueAtOnceAndLaterOnesTogether) {
    ChangeBatch batch({home}, 3s);
    EXPECT_EQ(batch.due(), std::nullopt);
    batch.add(0, "a");
    EXPECT_LE(batch.due(), start);
    EXPECT_THAT(batch.take(start), ElementsAre(FilePath("/home/ada/a")));

    batch.add(0, "b");
    batch.add(0, "c");
    EXPECT_EQ(batch.due(), start + 3s);
    EXPECT_THAT(batch.take(start + 3s), ElementsAre(FilePath("/home/ada/b"), FilePath("/home/ada/c")));

    EXPECT_EQ(batch.due(), std::nullopt);
    batch.add(0, "d");
    EXPECT_LE(batch.due(), start + 7s) << "the period was quiet";
}

TEST(ChangeBatch, NoChangeWaitsLongerThanTheLatency) {
    ChangeBatch batch({home}, 3s);
    batch.add(0, {});
    static_cast<void>(batch.take(start));
    for (const auto since : {0s, 1s, 2s}) {
        batch.add(0, "x");  // at start + since
        EXPECT_LE(batch.due(), start + since + 3s);
    }
}

TEST(ChangeBatch, EachPathComesOnceUnderEveryRoot) {
    ChangeBatch batch({home, code, home}, 1s);
    batch.add(0, "code/x");
    batch.add(0, "code/x");
    batch.add(1, "x");
    batch.add(2, "code/x");
    batch.add(1, {});
    EXPECT_THAT(batch.take(start), ElementsAre(code, FilePath("/home/ada/code/x")));
    EXPECT_TRUE(batch.isEmpty());
}

TEST(ChangeBatch, APathBeginsWithTheRootAsItWasGiven) {
    ChangeBatch batch({FilePath("/home/ada/"), FilePath("/")}, 1s);
    batch.add(0, {});
    batch.add(0, "b");
    batch.add(1, "tmp");
    EXPECT_THAT(batch.take(start),
                ElementsAre(FilePath("/home/ada/"), FilePath("/home/ada/b"), FilePath("/tmp")));
}

TEST(ChangeBatch, TooManyPathsMakeItTheWholeRoot) {
    ChangeBatch batch({home, code}, 1s);
    batch.add(1, "kept");
    for (std::size_t i = 0; i <= ChangeBatch::maximumPaths; ++i) batch.add(0, std::to_string(i));
    batch.add(0, "later");
    EXPECT_THAT(batch.take(start), ElementsAre(home, FilePath("/home/ada/code/kept")));
    batch.add(0, "next");
    EXPECT_THAT(batch.take(start), ElementsAre(FilePath("/home/ada/next")));
}

TEST(ChangeBatch, AnIncompleteRootIsPartOfEveryBatchAndMakesNone) {
    ChangeBatch batch({home, FilePath("/srv")}, 1s);
    EXPECT_TRUE(batch.setIncomplete(1));
    EXPECT_FALSE(batch.setIncomplete(1));
    EXPECT_EQ(batch.due(), std::nullopt);
    EXPECT_THAT(batch.take(start), IsEmpty());
    batch.add(0, "a");
    EXPECT_THAT(batch.take(start), ElementsAre(FilePath("/home/ada/a"), FilePath("/srv")));
    EXPECT_TRUE(batch.setComplete(1));
    EXPECT_FALSE(batch.setComplete(1));
    batch.add(0, "a");
    EXPECT_THAT(batch.take(start), ElementsAre(FilePath("/home/ada/a")));
}

TEST(ChangeBatch, ItsNumberChangesWhereverSomethingMayHaveToBeAddedAgain) {
    ChangeBatch batch({home}, 1s);
    const std::uint32_t first = batch.number();
    batch.renumber();
    const std::uint32_t second = batch.number();
    EXPECT_NE(first, second);
    static_cast<void>(batch.take(start));
    EXPECT_NE(batch.number(), second);
}

}  // namespace
