// The engine's worker threads: one pool for the whole module, shared by every
// scene. A pass whose rows do not depend on each other hands them to
// ParallelRows, which splits them into contiguous chunks and runs the chunks
// on the pool's threads and the caller's.
//
// Several threads may render at once (the editor's large preview has a
// thread of its own): the pool serves one pass at a time, and a pass that
// finds it busy runs on its caller's thread alone.
//
// The thread count decides only how many cores run the renderer: every count
// runs the same code and gives the same bytes.
#ifndef TAMERISK_ENGINE_PARALLEL_H
#define TAMERISK_ENGINE_PARALLEL_H

#include <cstdint>
#include <memory>
#include <type_traits>

// 0 (the default): one thread per processor; N: N threads (1: all on the
// calling thread). Negative counts are taken as 0. Takes effect at the next
// pass; never call it while a pass runs on another thread.
void SetRenderThreads(int count);
// The count in force: the setting, with 0 resolved to the number of
// processors (at least 1).
int RenderThreads();

// A chunk of rows [first, last) to work on; context is the caller's.
using FZRowChunkFunction = void (*)(void* context, std::int32_t first, std::int32_t last);

// Runs chunk over contiguous chunks that together cover [begin, end) exactly
// once, on the pool and the calling thread, and returns when all are done.
// With one thread, for a single row, when called from inside a chunk, or
// while the pool runs another thread's pass, it calls chunk(context, begin,
// end) on the calling thread. Chunks must not throw.
void RunRowChunks(std::int32_t begin, std::int32_t end, FZRowChunkFunction chunk, void* context);

// Calls row(y) for every y in [begin, end), rows split across the pool.
template <typename RowFunction>
void ParallelRows(std::int32_t begin, std::int32_t end, RowFunction&& row)
{
    auto chunk = [](void* context, std::int32_t first, std::int32_t last) {
        RowFunction& f = *static_cast<std::remove_reference_t<RowFunction>*>(context);
        for (std::int32_t y = first; y < last; ++y)
            f(y);
    };
    RunRowChunks(begin, end, chunk, const_cast<void*>(static_cast<const void*>(std::addressof(row))));
}

// Copies and fills of fewer bytes than this run on the calling thread:
// waking the pool costs more than the copy (a 120 x 120 frame is 43 KB).
constexpr std::int64_t kFZParallelCopyBytes = std::int64_t{1} << 19;

// ParallelRows for a pass that only moves bytes, rowBytes a row.
template <typename RowFunction>
void ParallelCopyRows(std::int32_t begin, std::int32_t end, std::int64_t rowBytes, RowFunction&& row)
{
    if (rowBytes * (std::int64_t{end} - begin) >= kFZParallelCopyBytes) {
        ParallelRows(begin, end, row);
        return;
    }
    for (std::int32_t y = begin; y < end; ++y)
        row(y);
}

#endif
