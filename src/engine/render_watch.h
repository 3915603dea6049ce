// Watching a long render from outside: how far the pass over rows that is
// running has come, and a request to stop it. The passes poll both between
// chunks of rows, never inside the pixel arithmetic, so a watched render
// makes the same pixels as any other.
//
// A stopped render returns as usual but leaves its frame unfinished; the
// caller that asked for the stop throws the frame away.
#ifndef TAMERISK_ENGINE_RENDER_WATCH_H
#define TAMERISK_ENGINE_RENDER_WATCH_H

#include <atomic>
#include <cstdint>

struct FZRenderWatch {
    // Set to stop at the next chunk; a signal handler may set it.
    const std::atomic<bool>* stop = nullptr;
    // Called after every chunk with the rows done and the rows of the pass,
    // on whichever thread ran the chunk, never at the same time twice.
    void (*rowsDone)(void* context, std::int32_t done, std::int32_t total) = nullptr;
    void* context = nullptr;
};

// Watches every following pass with watch (which must outlive them), or
// none when it is null. Never call it while a pass runs.
void SetRenderWatch(const FZRenderWatch* watch);
// Whether the watch asks to stop.
bool RenderStopRequested();

// For the row passes: runs chunk(context, first, last) over [begin, end) in
// the given number of chunks, or skips them once a stop is requested, and
// reports each chunk to the watch.
using FZWatchedChunkFunction = void (*)(void* context, std::int32_t first, std::int32_t last);
struct FZWatchedPass {
    FZWatchedChunkFunction chunk;
    void* context;
    std::int32_t total;
    std::atomic<std::int32_t> done{0};
};
void RunWatchedChunk(FZWatchedPass& pass, std::int32_t first, std::int32_t last);
// Whether a watch is set at all; without one the passes run unwatched.
bool RenderWatched();

#endif
