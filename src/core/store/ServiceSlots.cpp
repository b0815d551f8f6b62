// SPDX-License-Identifier: GPL-3.0-or-later
#include "store/ServiceSlots.h"

#include "util/HugePages.h"

#include <sys/mman.h>

#include <algorithm>
#include <cassert>
#include <new>

namespace vorlane {

ServiceRecord* ServiceSlots::allocateChunk(bool hugePages) {
    // Mapped with room to spare and trimmed to a chunk aligned on its own size, which a huge page
    // needs. Untouched pages cost nothing, so a small vault's one chunk stays small, and only
    // later chunks (a vault past a few thousand services) ask for huge pages.
    void* mapped =
        ::mmap(nullptr, 2 * chunkBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        throw std::bad_alloc();
    }
    const auto start = reinterpret_cast<std::uintptr_t>(mapped);
    const std::uintptr_t aligned = (start + chunkBytes - 1) & ~(chunkBytes - 1);
    if (aligned > start) {
        ::munmap(mapped, aligned - start);
    }
    const std::uintptr_t end = start + 2 * chunkBytes;
    if (end > aligned + chunkBytes) {
        ::munmap(reinterpret_cast<void*>(aligned + chunkBytes), end - aligned - chunkBytes);
    }
    void* chunk = reinterpret_cast<void*>(aligned);
    if (hugePages) {
        HugePages::advise(chunk, chunkBytes);
    }
    return static_cast<ServiceRecord*>(chunk);
}

void ServiceSlots::ChunkDeleter::operator()(ServiceRecord* chunk) const {
    ::munmap(chunk, chunkBytes);
}

ServiceSlots::~ServiceSlots() {
    for (std::uint32_t slot = 0; slot < slotCount(); ++slot) {
        if (m_used[slot]) {
            std::destroy_at(&(*this)[slot]);
        }
    }
}

std::uint32_t ServiceSlots::add(ServiceRecord&& record) {
    std::uint32_t slot = 0;
    if (!m_freeSlots.empty()) {
        slot = m_freeSlots.back();
        m_freeSlots.pop_back();
    } else {
        slot = slotCount();
        if (slot / chunkSize == m_chunks.size()) {
            Chunk chunk(allocateChunk(!m_chunks.empty()));
            const auto address = reinterpret_cast<std::uintptr_t>(chunk.get());
            const auto index = static_cast<std::uint32_t>(m_chunks.size());
            m_chunks.push_back(std::move(chunk));
            const std::pair<std::uintptr_t, std::uint32_t> entry{address, index};
            m_chunksByAddress.insert(
                std::upper_bound(m_chunksByAddress.begin(), m_chunksByAddress.end(), entry), entry);
        }
        m_used.push_back(false);
    }
    std::construct_at(&(*this)[slot], std::move(record));
    m_used[slot] = true;
    return slot;
}

void ServiceSlots::remove(std::uint32_t slot) {
    assert(isUsed(slot));
    std::destroy_at(&(*this)[slot]);
    m_used[slot] = false;
    m_freeSlots.push_back(slot);
}

std::optional<std::uint32_t> ServiceSlots::slotOf(const ServiceRecord* record) const {
    const auto address = reinterpret_cast<std::uintptr_t>(record);
    // The last chunk that starts at or before the address.
    auto found = std::upper_bound(
        m_chunksByAddress.begin(), m_chunksByAddress.end(), address,
        [](std::uintptr_t value, const auto& chunk) { return value < chunk.first; });
    if (found == m_chunksByAddress.begin()) {
        return std::nullopt;
    }
    --found;
    const std::uintptr_t offset = address - found->first;
    if (offset >= chunkSize * sizeof(ServiceRecord) || offset % sizeof(ServiceRecord) != 0) {
        return std::nullopt;
    }
    const auto slot =
        static_cast<std::uint32_t>(found->second * chunkSize + offset / sizeof(ServiceRecord));
    if (!isUsed(slot)) {
        return std::nullopt;
    }
    return slot;
}

void ServiceSlots::reserve(std::size_t records) {
    m_chunks.reserve((records + chunkSize - 1) / chunkSize);
    m_chunksByAddress.reserve(m_chunks.capacity());
    m_used.reserve(records);
}

} // namespace vorlane
