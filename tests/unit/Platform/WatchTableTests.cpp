#include "Platform/Linux/WatchTable.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

using namespace cairnfield;

namespace {

TEST(WatchTable, KnowsAnEntryByItsPlaceAndByItsWatch) {
    WatchTable table;
    const WatchId top = table.add(noWatchId, "/home/ada");
    const WatchId code = table.add(top, "code");
    table.setWatch(code, 7);
    EXPECT_EQ(table.pathOf(code), "/home/ada/code");
    EXPECT_EQ(table.child(top, "code"), code);
    EXPECT_EQ(table.child(top, "cod"), noWatchId);
    EXPECT_EQ(table.child(code, "code"), noWatchId);
    EXPECT_EQ(table.byWatch(7), code);
    EXPECT_EQ(table.byWatch(8), noWatchId);
    table.setWatch(code, 8);
    EXPECT_EQ(table.byWatch(7), noWatchId);
    EXPECT_EQ(table.byWatch(8), code);
    EXPECT_EQ(table.watched(), 1u);
}

TEST(WatchTable, ThePathBelowTheRootOfTheSystemHasOneSlash) {
    WatchTable table;
    const WatchId top = table.add(noWatchId, "/");
    EXPECT_EQ(table.pathOf(top), "/");
    EXPECT_EQ(table.pathOf(table.add(top, "tmp")), "/tmp");
}

TEST(WatchTable, NamesAreBytes) {
    WatchTable table;
    const WatchId top = table.add(noWatchId, "/r");
    const std::string name = "\xff\n \x01";
    const WatchId id = table.add(top, name);
    EXPECT_EQ(table.child(top, name), id);
    EXPECT_EQ(table.pathOf(id), "/r/" + name);
}

TEST(WatchTable, AMovedSubtreeKeepsItsEntries) {
    WatchTable table;
    const WatchId top = table.add(noWatchId, "/r");
    const WatchId a = table.add(top, "a");
    const WatchId inner = table.add(a, "inner");
    const WatchId b = table.add(top, "b");
    table.move(a, b, table[a].name);
    EXPECT_EQ(table.pathOf(inner), "/r/b/a/inner");
    EXPECT_EQ(table.child(top, "a"), noWatchId);
    EXPECT_EQ(table.child(b, "a"), a);
    EXPECT_TRUE(table.isAtOrBelow(inner, b));
    EXPECT_TRUE(table.isAtOrBelow(b, b));
    EXPECT_FALSE(table.isAtOrBelow(b, inner));
    table.move(a, noWatchId, {});
    EXPECT_EQ(table.pathOf(inner), "") << "where it is nobody knows";
}

TEST(WatchTable, RemovingTellsOfTheWholeSubtreeParentsFirst) {
    WatchTable table;
    const WatchId top = table.add(noWatchId, "/r");
    const WatchId a = table.add(top, "a");
    const WatchId inner = table.add(a, "inner");
    const WatchId other = table.add(top, "other");
    table.setWatch(inner, 5);
    std::vector<std::string> told;
    table.remove(a, [&](WatchId id) { told.push_back(table[id].name); });
    EXPECT_EQ(told, (std::vector<std::string>{"a", "inner"}));
    EXPECT_EQ(table.byWatch(5), noWatchId);
    EXPECT_EQ(table.watched(), 0u);
    EXPECT_EQ(table.size(), 2u);
    EXPECT_EQ(table.child(top, "other"), other);
    EXPECT_EQ(table.child(top, "a"), noWatchId);
}

/// The same tree kept in the plainest way.
class Model {
public:
    std::map<WatchId, std::pair<WatchId, std::string>> places;

    [[nodiscard]] bool isBelow(WatchId id, WatchId above) const {
        for (; id != noWatchId; id = places.at(id).first) {
            if (id == above) return true;
        }
        return false;
    }
    [[nodiscard]] std::set<WatchId> subtree(WatchId top) const {
        std::set<WatchId> all;
        for (const auto& [id, place] : places) {
            if (isBelow(id, top)) all.insert(id);
        }
        return all;
    }
    [[nodiscard]] WatchId child(WatchId parent, const std::string& name) const {
        for (const auto& [id, place] : places) {
            if (place.first == parent && place.second == name) return id;
        }
        return noWatchId;
    }
};

TEST(WatchTable, StaysTrueThroughThousandsOfRandomChanges) {
    std::mt19937 random(7);
    WatchTable table;
    Model model;
    int lastWatch = 0;
    const WatchId top = table.add(noWatchId, "/r");
    model.places[top] = {noWatchId, "/r"};
    const auto any = [&] {
        auto at = model.places.begin();
        std::advance(at, static_cast<std::ptrdiff_t>(random() % model.places.size()));
        return at->first;
    };
    for (int step = 0; step < 6000; ++step) {
        const WatchId id = any();
        const WatchId parent = any();
        const std::string name = std::to_string(random() % 40);
        const unsigned choice = random() % 10;
        if (choice < 6 && model.child(parent, name) == noWatchId) {
            const WatchId added = table.add(parent, name);
            ASSERT_FALSE(model.places.contains(added));
            model.places[added] = {parent, name};
            table.setWatch(added, ++lastWatch);
        } else if (choice < 9 && id != top && !model.isBelow(parent, id) &&
                   model.child(parent, name) == noWatchId) {
            table.move(id, parent, name);
            model.places[id] = {parent, name};
        } else if (id != top && model.subtree(id).size() < 20) {
            std::set<WatchId> told;
            table.remove(id, [&](WatchId removed) { told.insert(removed); });
            ASSERT_EQ(told, model.subtree(id));
            for (const WatchId removed : told) model.places.erase(removed);
        }
    }
    ASSERT_GT(model.places.size(), 100u);
    ASSERT_EQ(table.size(), model.places.size());
    EXPECT_EQ(table.watched(), model.places.size() - 1);
    for (const auto& [id, place] : model.places) {
        EXPECT_EQ(table.child(place.first, place.second), id == top ? noWatchId : id);
        if (id != top) EXPECT_EQ(table.byWatch(table[id].watch), id);
        std::set<WatchId> children;
        for (WatchId child = table[id].firstChild; child != noWatchId; child = table[child].next)
            children.insert(child);
        std::set<WatchId> expected;
        for (const auto& [other, otherPlace] : model.places) {
            if (otherPlace.first == id) expected.insert(other);
        }
        EXPECT_EQ(children, expected);
    }
}

TEST(WatchTable, AnEntryWithAShortNameTakesNoMoreThanItSays) {
    EXPECT_LE(sizeof(WatchEntry), 64u);
}

}  // namespace
