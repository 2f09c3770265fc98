#include "Platform/Linux/LargestChildren.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

std::vector<std::string> namesOf(const LargestChildren& children) {
    std::vector<std::string> names;
    for (const RankedChild& child : children.ranked()) names.push_back(child.name);
    return names;
}

TEST(LargestChildren, KeepsTheTwelveLargestWhateverTheOrderOfTheOffers) {
    std::vector<int> sizes(1000);
    for (int i = 0; i < 1000; ++i) sizes[static_cast<std::size_t>(i)] = i;
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        std::shuffle(sizes.begin(), sizes.end(), random);
        LargestChildren children;
        for (const int size : sizes) children.offer("child" + std::to_string(size), size, size % 2 == 0);
        const std::vector<RankedChild> ranked = children.ranked();
        ASSERT_EQ(ranked.size(), LargestChildren::limit);
        for (int place = 0; place < 12; ++place) {
            EXPECT_EQ(ranked[static_cast<std::size_t>(place)].bytes, 999 - place);
            EXPECT_EQ(ranked[static_cast<std::size_t>(place)].isDirectory, (999 - place) % 2 == 0);
        }
    }
}

TEST(LargestChildren, EqualSizesRankByName) {
    std::vector<std::string> names;
    for (char letter = 'a'; letter <= 'z'; ++letter) names.emplace_back(1, letter);
    const std::vector<std::string> expected(names.begin(), names.begin() + 12);
    std::mt19937 random(3);
    for (int round = 0; round < 20; ++round) {
        std::shuffle(names.begin(), names.end(), random);
        LargestChildren children;
        for (const std::string& name : names) children.offer(name, 4096, true);
        EXPECT_EQ(namesOf(children), expected);
    }
}

TEST(LargestChildren, AChildWithoutAnyBytesCounts) {
    LargestChildren children;
    children.offer("empty", 0, false);
    ASSERT_EQ(children.ranked().size(), 1U);
    EXPECT_EQ(children.ranked()[0].name, "empty");
}

TEST(LargestChildren, PartsOfTwoThreadsMergeIntoOne) {
    LargestChildren one, other, whole;
    for (int i = 0; i < 60; ++i) {
        (i % 2 == 0 ? one : other).offer(std::to_string(i), i % 7, false);
        whole.offer(std::to_string(i), i % 7, false);
    }
    one.merge(other);
    EXPECT_EQ(namesOf(one), namesOf(whole));
}

}  // namespace
}  // namespace cairnfield
