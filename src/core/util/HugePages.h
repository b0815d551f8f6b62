// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace vorlane {

// Huge pages (2 MiB) for the memory that opening a large vault fills in one go. Fresh memory
// costs a page fault for each 4 KiB page touched, which at 100,000 services was a third of the
// time taken to open the vault; with huge pages it is one fault per 2 MiB. These are hints:
// where the kernel gives no transparent huge pages (or under a sanitizer's allocator), memory
// behaves as before. Any thread.
class HugePages {
public:
    static constexpr std::size_t size = std::size_t{2} << 20;

    // Asks for huge pages on every whole huge page inside [data, data + bytes): memory of the
    // caller's, best not yet touched (pages touched already stay small until the kernel merges
    // them).
    static void advise(void* data, std::size_t bytes);

    // While it lives, the calling thread's heap is ready for about `bytes` of small allocations
    // (the strings of records being read): it grows by that much at once, on huge pages, and
    // malloc keeps it for them instead of handing it back to the system. When it goes, malloc's
    // thresholds are set where glibc would have taken them by itself, so that memory freed later
    // (a rebuild's temporary lists) goes back to the system again. Less than a few huge pages'
    // worth is not worth it and does nothing. One at a time in a process.
    class PreparedHeap {
    public:
        explicit PreparedHeap(std::size_t bytes);
        ~PreparedHeap();
        PreparedHeap(const PreparedHeap&) = delete;
        PreparedHeap& operator=(const PreparedHeap&) = delete;

    private:
        bool m_prepared = false;
    };
};

} // namespace vorlane
