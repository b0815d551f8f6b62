// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "util/Uuid.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace vorlane {

// Finds a slot by the id it was added under: a flat open-addressing table (linear probing) of
// slot numbers with their ids' hashes, 8 bytes an entry instead of a heap node per record. The
// ids themselves stay with the caller, who hands `find` and `erase` a function giving the id a
// slot was added under. One slot per id: adding an id again replaces its slot.
class SlotsById {
public:
    template <typename IdOf> void insert(const Uuid& id, std::uint32_t slot, const IdOf& idOf) {
        if ((m_count + 1) * 2 > m_entries.size()) {
            grow(m_entries.empty() ? 16 : m_entries.size() * 2);
        }
        const std::uint32_t hash = hashOf(id);
        std::size_t at = hash & mask();
        for (; m_entries[at].slot != empty; at = (at + 1) & mask()) {
            if (m_entries[at].hash == hash && idOf(m_entries[at].slot) == id) {
                m_entries[at].slot = slot;
                return;
            }
        }
        m_entries[at] = Entry{hash, slot};
        ++m_count;
    }

    template <typename IdOf>
    std::optional<std::uint32_t> find(const Uuid& id, const IdOf& idOf) const {
        const std::optional<std::size_t> at = position(id, idOf);
        if (!at) {
            return std::nullopt;
        }
        return m_entries[*at].slot;
    }

    // Forgets the id; nothing happens when it is not there.
    template <typename IdOf> void erase(const Uuid& id, const IdOf& idOf) {
        if (const std::optional<std::size_t> at = position(id, idOf)) {
            eraseAt(*at);
        }
    }

    // Room for this many ids without growing.
    void reserve(std::size_t count);
    std::size_t size() const { return m_count; }

private:
    static constexpr std::uint32_t empty = UINT32_MAX;
    struct Entry {
        std::uint32_t hash = 0;
        std::uint32_t slot = empty;
    };

    static std::uint32_t hashOf(const Uuid& id);
    std::size_t mask() const { return m_entries.size() - 1; }
    void grow(std::size_t capacity);
    void eraseAt(std::size_t at);

    template <typename IdOf>
    std::optional<std::size_t> position(const Uuid& id, const IdOf& idOf) const {
        if (m_entries.empty()) {
            return std::nullopt;
        }
        const std::uint32_t hash = hashOf(id);
        for (std::size_t at = hash & mask(); m_entries[at].slot != empty; at = (at + 1) & mask()) {
            if (m_entries[at].hash == hash && idOf(m_entries[at].slot) == id) {
                return at;
            }
        }
        return std::nullopt;
    }

    std::vector<Entry> m_entries; // a power of two long, at most half full
    std::size_t m_count = 0;
};

} // namespace vorlane
