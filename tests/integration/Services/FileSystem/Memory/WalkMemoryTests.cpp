// The memory of a walk, whatever the size of the tree.

#include "AllocationPeak.h"
#include "Services/FileSystem/RealTree.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr std::ptrdiff_t twoMegabytes = 2'000'000;
constexpr std::size_t longNames = 220;  ///< as long as they get with a number behind

TEST(WalkMemory, OneDirectoryOfManySubdirectoriesTakesUnderTwoMegabytes) {
    const TemporaryDirectory home;
    makeWideLevels(home.path(), 1, 8000, longNames);
    const AllocationPeak peak;
    EXPECT_EQ(totalsOf(Measuring()(home.path())).files, 0);
    EXPECT_LT(peak.bytes(), twoMegabytes);
}

TEST(WalkMemory, ManyLevelsOfManySubdirectoriesTakeUnderTwoMegabytes) {
    const TemporaryDirectory home;
    makeWideLevels(home.path(), 120, 140, longNames);
    // A second thread takes away what waits; alone, the first has to keep it.
    for (const auto threads : {LinuxTreeMeasurer::Threads::one, LinuxTreeMeasurer::Threads::two}) {
        const AllocationPeak peak;
        const DirectoryScanResult result = Measuring(threads)(home.path());
        EXPECT_LT(peak.bytes(), twoMegabytes);
        EXPECT_EQ(totalsOf(result), oracleTotals(home.path()));
    }
}

}  // namespace
}  // namespace cairnfield
