// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vorlane {

// Slot numbers kept in an order given by a comparison that reads each slot's current key, as
// one flat array: a sorted run followed by slots added since it was last sorted. Loading a
// vault adds 100,000 slots in a row and sorts them once, when the order is first read; a
// single edit later costs one binary search and one move of the array's tail.
//
// The comparison must be a strict total order (ties broken by something unique, such as an
// insertion sequence), and a slot's key must not change while it is in the order: take it out
// with `remove`, change the key, `add` it again. Not thread-safe, even for `sorted`.
class SlotOrder {
public:
    void add(std::uint32_t slot) {
        m_slots.push_back(slot);
        ++m_changes;
    }

    // Takes out a slot that is in the order; `less` is the same comparison `sorted` is given.
    template <typename Less> void remove(std::uint32_t slot, const Less& less) {
        const auto sortedEnd = m_slots.begin() + static_cast<std::ptrdiff_t>(m_sortedCount);
        const auto found = std::lower_bound(m_slots.begin(), sortedEnd, slot, less);
        if (found != sortedEnd && *found == slot) {
            m_slots.erase(found);
            --m_sortedCount;
            ++m_changes;
            return;
        }
        const auto inTail = std::find(sortedEnd, m_slots.end(), slot);
        if (inTail != m_slots.end()) {
            m_slots.erase(inTail);
            ++m_changes;
        }
    }

    // Every slot, in order. Valid until the next `add` or `remove`.
    template <typename Less> const std::vector<std::uint32_t>& sorted(const Less& less) {
        if (m_sortedCount < m_slots.size()) {
            const auto middle = m_slots.begin() + static_cast<std::ptrdiff_t>(m_sortedCount);
            std::sort(middle, m_slots.end(), less);
            std::inplace_merge(m_slots.begin(), middle, m_slots.end(), less);
            m_sortedCount = m_slots.size();
        }
        return m_slots;
    }

    // The slots added since the order was last sorted, so that a caller can get their keys
    // ready before `sorted` compares them.
    template <typename Visit> void forEachUnsorted(const Visit& visit) const {
        for (std::size_t i = m_sortedCount; i < m_slots.size(); ++i) {
            visit(m_slots[i]);
        }
    }

    bool isSorted() const { return m_sortedCount == m_slots.size(); }
    // Counts additions and removals, so that what is derived from the order knows when to
    // derive it again.
    std::uint64_t changeCount() const { return m_changes; }
    void reserve(std::size_t slots) { m_slots.reserve(slots); }

private:
    std::vector<std::uint32_t> m_slots;
    std::size_t m_sortedCount = 0;
    std::uint64_t m_changes = 0;
};

} // namespace vorlane
