#include "engine/render_watch.h"

#include <mutex>

namespace {

std::atomic<const FZRenderWatch*> current{nullptr};
// Reports come from several threads; the watcher sees one at a time.
std::mutex reportMutex;

}  // namespace

void SetRenderWatch(const FZRenderWatch* watch)
{
    current.store(watch);
}

bool RenderWatched()
{
    return current.load(std::memory_order_relaxed) != nullptr;
}

bool RenderStopRequested()
{
    const FZRenderWatch* watch = current.load(std::memory_order_acquire);
    return watch != nullptr && watch->stop != nullptr && watch->stop->load(std::memory_order_relaxed);
}

void RunWatchedChunk(FZWatchedPass& pass, std::int32_t first, std::int32_t last)
{
    if (RenderStopRequested())
        return;
    pass.chunk(pass.context, first, last);
    const std::int32_t done = pass.done.fetch_add(last - first) + (last - first);
    const FZRenderWatch* watch = current.load(std::memory_order_acquire);
    if (watch == nullptr || watch->rowsDone == nullptr)
        return;
    // A report that would wait for another is dropped: the next one follows
    // within a chunk.
    std::unique_lock<std::mutex> lock(reportMutex, std::try_to_lock);
    if (lock.owns_lock())
        watch->rowsDone(watch->context, done, pass.total);
}
