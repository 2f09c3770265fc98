#pragma once
// A hash table of small numbers that stand for records kept elsewhere: four bytes a slot, open addressing,
// at most two thirds full. The records' own fields are the keys, so a record must be taken out before a field
// that its hash depends on changes. Not shared between threads.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cairnfield {

/// `HashOf` gives the hash of the record that a number stands for.
template <class HashOf>
class IdIndex {
public:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    explicit IdIndex(HashOf hashOf) : hashOf_(hashOf) {}

    /// The first record with this hash that `matches`; `none` without one.
    template <class Matches>
    [[nodiscard]] std::uint32_t find(std::size_t hash, const Matches& matches) const {
        if (slots_.empty()) return none;
        for (std::size_t slot = home(hash); slots_[slot] != none; slot = after(slot)) {
            if (matches(slots_[slot])) return slots_[slot];
        }
        return none;
    }

    void insert(std::uint32_t id) {
        if ((count_ + 1) * 3 > slots_.size() * 2) grow();
        place(id);
        ++count_;
    }

    void erase(std::uint32_t id) noexcept {
        if (slots_.empty()) return;
        std::size_t hole = home(hashOf_(id));
        while (slots_[hole] != id) {
            if (slots_[hole] == none) return;
            hole = after(hole);
        }
        // What stands behind moves up, unless that would put it before its home.
        for (std::size_t slot = after(hole); slots_[slot] != none; slot = after(slot)) {
            const std::size_t wanted = home(hashOf_(slots_[slot]));
            if (distance(wanted, slot) < distance(hole, slot)) continue;
            slots_[hole] = slots_[slot];
            hole = slot;
        }
        slots_[hole] = none;
        --count_;
    }

private:
    static constexpr std::size_t smallest = 16;

    [[nodiscard]] std::size_t home(std::size_t hash) const noexcept {
        // Spread, since numbers counted up hash to themselves.
        return (hash * 0x9E3779B97F4A7C15U >> 20) & (slots_.size() - 1);
    }
    [[nodiscard]] std::size_t after(std::size_t slot) const noexcept {
        return (slot + 1) & (slots_.size() - 1);
    }
    [[nodiscard]] std::size_t distance(std::size_t from, std::size_t to) const noexcept {
        return (to - from) & (slots_.size() - 1);
    }
    void place(std::uint32_t id) noexcept {
        std::size_t slot = home(hashOf_(id));
        while (slots_[slot] != none) slot = after(slot);
        slots_[slot] = id;
    }
    void grow() {
        std::vector<std::uint32_t> old(slots_.empty() ? smallest : slots_.size() * 2, none);
        old.swap(slots_);
        for (const std::uint32_t id : old) {
            if (id != none) place(id);
        }
    }

    HashOf hashOf_;
    std::vector<std::uint32_t> slots_;  ///< a power of two of them
    std::size_t count_ = 0;
};

}  // namespace cairnfield
