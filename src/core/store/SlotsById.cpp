// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/SlotsById.h"

#include <bit>
#include <cstring>

namespace vorlane {

std::uint32_t SlotsById::hashOf(const Uuid& id) {
    // Random (version 4) ids are already well mixed; fold all 128 bits so that other ids still
    // spread.
    std::uint64_t halves[2];
    std::memcpy(halves, id.bytes().data(), sizeof(halves));
    const std::uint64_t mixed =
        (halves[0] ^ (halves[1] * 0x9e3779b97f4a7c15ULL)) * 0xff51afd7ed558ccdULL;
    return static_cast<std::uint32_t>(mixed >> 32);
}

void SlotsById::reserve(std::size_t count) {
    const std::size_t capacity = std::bit_ceil(std::max<std::size_t>(16, count * 2));
    if (capacity > m_entries.size()) {
        grow(capacity);
    }
}

void SlotsById::grow(std::size_t capacity) {
    std::vector<Entry> old(capacity);
    old.swap(m_entries);
    for (const Entry& entry : old) {
        if (entry.slot != empty) {
            std::size_t at = entry.hash & mask();
            while (m_entries[at].slot != empty) {
                at = (at + 1) & mask();
            }
            m_entries[at] = entry;
        }
    }
}

// Backward-shift deletion: later entries of the same probe run move up into the hole, so that
// lookups never need tombstones.
void SlotsById::eraseAt(std::size_t at) {
    std::size_t hole = at;
    for (std::size_t next = (hole + 1) & mask(); m_entries[next].slot != empty;
         next = (next + 1) & mask()) {
        const std::size_t home = m_entries[next].hash & mask();
        // The entry may fill the hole when its home is not in the cyclic range (hole, next].
        const bool homeAfterHole = ((next - home) & mask()) < ((next - hole) & mask());
        if (!homeAfterHole) {
            m_entries[hole] = m_entries[next];
            hole = next;
        }
    }
    m_entries[hole] = Entry();
    --m_count;
}

} // namespace vorlane
