#include "engine/zeroed_array.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace {

#if defined(__linux__)
// From this size a block is mapped from the system, starting on a huge
// page. Its whole huge pages are backed by huge pages; the rest, when a
// last huge page would hold more than an eighth of the block again, by
// ordinary pages (a 1024 x 1024 layer's coverage, 1 MB, would hold twice
// its size in one). A huge page is one fault where ordinary pages are five
// hundred, so a block takes one whenever that costs little memory.
constexpr std::size_t kMapFrom = std::size_t{1} << 20;
constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kPage = std::size_t{4} << 10;

std::size_t RoundUp(std::size_t n, std::size_t unit)
{
    return (n + unit - 1) / unit * unit;
}

// Aligned to a huge page. One more huge page is mapped than needed and the
// ends beyond the aligned block are given back.
void* MapZeroed(std::size_t length)
{
    void* raw = mmap(nullptr, length + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED)
        throw std::bad_alloc();
    const auto address = reinterpret_cast<std::uintptr_t>(raw);
    const std::uintptr_t start = RoundUp(address, kHugePage);
    const std::size_t head = start - address;
    if (head != 0)
        munmap(raw, head);
    if (kHugePage - head != 0)
        munmap(reinterpret_cast<void*>(start + length), kHugePage - head);
    // Only a hint: without huge pages the block works the same.
    (void)madvise(reinterpret_cast<void*>(start), length, MADV_HUGEPAGE);
    return reinterpret_cast<void*>(start);
}

// Faults in, here and in one call, the part of a block beyond its last
// whole huge page, which ordinary pages back. Left to the first pass that
// writes the block, its hundreds of faults come from every thread of the
// pass at once, and they queue for the same page tables: at two threads a
// pass then took longer than its faults cost one thread.
void PopulateTail(void* block, std::size_t length)
{
    const std::size_t tail = length % kHugePage;
#if defined(MADV_POPULATE_WRITE)
    if (tail != 0)
        // Only a hint as well: a kernel without it faults the pages later.
        (void)madvise(static_cast<char*>(block) + (length - tail), tail, MADV_POPULATE_WRITE);
#else
    static_cast<void>(block);
    static_cast<void>(tail);
#endif
}
#endif

} // namespace

FZZeroedBlock::FZZeroedBlock(std::size_t bytes)
{
    if (bytes == 0)
        return;
#if defined(__linux__)
    if (bytes >= kMapFrom) {
        const std::size_t whole = RoundUp(bytes, kHugePage);
        const std::size_t length = whole - bytes <= bytes / 8 ? whole : RoundUp(bytes, kPage);
        if (length < bytes || whole < bytes)
            throw std::bad_alloc();
        memory = std::unique_ptr<void, FZZeroedRelease>(MapZeroed(length), FZZeroedRelease{length});
        PopulateTail(memory.get(), length);
        return;
    }
#endif
    void* p = std::calloc(bytes, 1);
    if (p == nullptr)
        throw std::bad_alloc();
    memory = std::unique_ptr<void, FZZeroedRelease>(p, FZZeroedRelease{0});
}

void FZZeroedRelease::operator()(void* p) const
{
#if defined(__linux__)
    if (mapped != 0) {
        munmap(p, mapped);
        return;
    }
#endif
    std::free(p);
}
