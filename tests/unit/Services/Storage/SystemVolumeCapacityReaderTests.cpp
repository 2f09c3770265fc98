#include "Services/Storage/SystemVolumeCapacityReader.h"
#include "support/SettableVolume.h"
#include "support/SettableWallClock.h"

#include <gtest/gtest.h>

#include <system_error>

namespace cairnfield {
namespace {

class CapacityReader : public testing::Test {
protected:
    StorageSnapshot read() { return reader.snapshot(FilePath("/home/ada")); }

    SettableVolume volume;
    SettableWallClock clock;
    SystemVolumeCapacityReader reader{volume, clock};
};

TEST_F(CapacityReader, TakesWhatTheSystemGives) {
    volume.answer = {.totalCapacity = 1000,
                     .availableCapacityForImportantUsage = 300,
                     .availableCapacity = 200,
                     .name = "Data",
                     .root = FilePath("/home")};
    EXPECT_EQ(read(), (StorageSnapshot{FilePath("/home"), "Data", 1000, 300, clock.now()}));
    EXPECT_EQ(volume.asked, std::vector{FilePath("/home/ada")});
}

TEST_F(CapacityReader, FallsBackFieldByField) {
    volume.answer.availableCapacity = 200;
    EXPECT_EQ(read(), (StorageSnapshot{FilePath("/home/ada"), "ada", 0, 200, clock.now()}));
    volume.answer = {};
    EXPECT_EQ(read(), (StorageSnapshot{FilePath("/home/ada"), "ada", 0, 0, clock.now()}));
    volume.answer = {.totalCapacity = 10, .availableCapacityForImportantUsage = 0, .availableCapacity = 5};
    EXPECT_EQ(read().availableCapacity, 0) << "none is an answer";
}

TEST_F(CapacityReader, DatesAReadingByTheClockAsItIs) {
    const StorageSnapshot first = read();
    clock.advance(std::chrono::hours(-365 * 24));
    EXPECT_EQ(secondsBetween(first.measuredAt, read().measuredAt), -365.0 * 24 * 3600);
}

TEST_F(CapacityReader, PassesAFailureOn) {
    volume.missing = {FilePath("/home/ada")};
    EXPECT_THROW((void)read(), std::system_error);
}

}  // namespace
}  // namespace cairnfield
