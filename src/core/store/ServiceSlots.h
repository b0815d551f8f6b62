// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ServiceRecord.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace vorlane {

// The vault's service records, held in place in fixed-size chunks of slots rather than one heap
// block per record: loading 100,000 services makes a few hundred allocations instead of
// 100,000, and a record's slot (the key of every per-service index) follows from its address
// without a hash table.
//
// A record's address is stable from `add` until `remove`, which destroys it; the freed slot is
// the next one `add` fills. Destroying the table destroys every record still in it. Main thread
// only.
class ServiceSlots {
public:
    // A chunk fills one 2 MiB huge page: a large vault's records take a few dozen page faults
    // instead of tens of thousands.
    static constexpr std::size_t chunkBytes = std::size_t{2} << 20;
    static constexpr std::uint32_t chunkSize = chunkBytes / sizeof(ServiceRecord);

    ServiceSlots() = default;
    ~ServiceSlots();
    ServiceSlots(const ServiceSlots&) = delete;
    ServiceSlots& operator=(const ServiceSlots&) = delete;

    // Moves the record into a free slot and returns the slot.
    std::uint32_t add(ServiceRecord&& record);
    // Destroys the record in the slot, which must be in use.
    void remove(std::uint32_t slot);

    ServiceRecord& operator[](std::uint32_t slot) const {
        return m_chunks[slot / chunkSize][slot % chunkSize];
    }
    // The slot of a record held here; nothing for any other address, or a removed record.
    std::optional<std::uint32_t> slotOf(const ServiceRecord* record) const;
    bool isUsed(std::uint32_t slot) const { return slot < m_used.size() && m_used[slot]; }
    // One past the highest slot ever used: every slot in use is below it.
    std::uint32_t slotCount() const { return static_cast<std::uint32_t>(m_used.size()); }
    std::size_t size() const { return m_used.size() - m_freeSlots.size(); }

    void reserve(std::size_t records);

private:
    // Raw storage for `chunkSize` records, mapped from the system; only the slots in use hold a
    // constructed record.
    static ServiceRecord* allocateChunk(bool hugePages);
    struct ChunkDeleter {
        void operator()(ServiceRecord* chunk) const;
    };
    using Chunk = std::unique_ptr<ServiceRecord[], ChunkDeleter>;

    std::vector<Chunk> m_chunks;
    // Each chunk's first address with its index, by address, for `slotOf`.
    std::vector<std::pair<std::uintptr_t, std::uint32_t>> m_chunksByAddress;
    std::vector<bool> m_used;
    std::vector<std::uint32_t> m_freeSlots;
};

} // namespace vorlane
