// SPDX-License-Identifier: GPL-3.0-or-later
#include "util/HugePages.h"

#include <malloc.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace vorlane {

void HugePages::advise(void* data, std::size_t bytes) {
    const auto start = reinterpret_cast<std::uintptr_t>(data);
    const std::uintptr_t first = (start + size - 1) & ~(size - 1);
    const std::uintptr_t end = (start + bytes) & ~(size - 1);
    if (end > first) {
        ::madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
    }
}

HugePages::PreparedHeap::PreparedHeap(std::size_t bytes) {
    if (bytes < 2 * size) {
        return;
    }
    m_prepared = true;
    // The heap is grown in pieces that malloc serves from the heap itself: below the mmap
    // threshold (raised to glibc's largest), since a piece mapped on its own would go back to
    // the system when freed, advice and all. The trim threshold keeps the freed pieces in the
    // heap, where the allocations that follow find them.
    constexpr std::size_t piece = std::size_t{16} << 20;
    constexpr int largestMmapThreshold = 32 << 20;
    ::mallopt(M_MMAP_THRESHOLD, largestMmapThreshold);
    ::mallopt(M_TRIM_THRESHOLD,
              static_cast<int>(std::min<std::size_t>(2 * bytes + piece, std::size_t{1} << 30)));
    std::vector<void*> pieces;
    for (std::size_t held = 0; held < bytes; held += piece) {
        void* grown = std::malloc(piece);
        if (grown == nullptr) {
            break;
        }
        advise(grown, piece);
        pieces.push_back(grown);
    }
    // Newest first: each freed piece joins the free space at the top of the heap.
    for (auto it = pieces.rbegin(); it != pieces.rend(); ++it) {
        std::free(*it);
    }
}

HugePages::PreparedHeap::~PreparedHeap() {
    if (m_prepared) {
        // Once set, glibc no longer adapts its thresholds to the program, so they are set to
        // where it would have taken them: the lists a screen makes afresh on every rebuild (a
        // few megabytes at 100,000 services) are served from the heap and reused rather than
        // mapped and faulted in each time; larger blocks are mapped and go back to the system
        // when freed, and so does free space at the top of a heap beyond twice that. (At 4 MiB
        // the expense overview took 60 ms instead of 38; at 16 MiB the window kept 16 MB more.)
        constexpr int mmapThreshold = 8 << 20;
        ::mallopt(M_MMAP_THRESHOLD, mmapThreshold);
        ::mallopt(M_TRIM_THRESHOLD, 2 * mmapThreshold);
    }
}

} // namespace vorlane
