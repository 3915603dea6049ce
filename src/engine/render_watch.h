// Watching a long render from outside: how far the pass over rows that is
// running has come, and a request to stop it. The passes poll both between
// chunks of rows, never inside the pixel arithmetic, so a watched render
// makes the same pixels as any other.
//
// A watch belongs to the thread that sets it: two threads may each render
// under a watch of their own (the editor's large preview renders on a thread
// of its own while the dialogs render theirs), and the pool threads that run
// a chunk of a watched pass see the watch of the thread that started it.
//
// A stopped render returns as usual but leaves its frame unfinished; the
// caller that asked for the stop throws the frame away.
#ifndef TAMERISK_ENGINE_RENDER_WATCH_H
#define TAMERISK_ENGINE_RENDER_WATCH_H

#include <atomic>
#include <cstdint>
#include <mutex>

struct FZRenderWatch {
    // Set to stop at the next chunk; a signal handler or another thread may
    // set it.
    const std::atomic<bool>* stop = nullptr;
    // Called after every chunk with the rows done and the rows of the pass,
    // on whichever thread ran the chunk, never at the same time twice.
    void (*rowsDone)(void* context, std::int32_t done, std::int32_t total) = nullptr;
    void* context = nullptr;
};

// Watches every following pass that the calling thread starts with watch
// (which must outlive them), or none when it is null. Never call it while a
// pass of this thread runs.
void SetRenderWatch(const FZRenderWatch* watch);
// The calling thread's watch (inside a chunk of a watched pass: the pass's).
const FZRenderWatch* RenderWatch();
bool RenderStopRequested();

// For the row passes: runs chunk(context, first, last) over [begin, end) in
// the given number of chunks, or skips them once a stop is requested, and
// reports each chunk to the watch.
using FZWatchedChunkFunction = void (*)(void* context, std::int32_t first, std::int32_t last);
struct FZWatchedPass {
    FZWatchedChunkFunction chunk;
    void* context;
    std::int32_t total;
    // The watch of the thread that started the pass.
    const FZRenderWatch* watch = RenderWatch();
    std::atomic<std::int32_t> done{0};
    // Reports come from several threads; the watcher sees one at a time.
    std::mutex reporting{};
};
void RunWatchedChunk(FZWatchedPass& pass, std::int32_t first, std::int32_t last);
// Whether a watch is set at all; without one the passes run unwatched.
bool RenderWatched();

#endif
