#include "engine/render_watch.h"

namespace {

thread_local const FZRenderWatch* current = nullptr;

bool StopRequested(const FZRenderWatch* watch)
{
    return watch != nullptr && watch->stop != nullptr && watch->stop->load(std::memory_order_relaxed);
}

// Lends a pass's watch to the thread that runs one of its chunks, so that
// the work inside the chunk polls the same stop flag.
class BorrowedWatch {
public:
    explicit BorrowedWatch(const FZRenderWatch* watch) : saved(current) { current = watch; }
    ~BorrowedWatch() { current = saved; }
    BorrowedWatch(const BorrowedWatch&) = delete;
    BorrowedWatch& operator=(const BorrowedWatch&) = delete;

private:
    const FZRenderWatch* saved;
};

}  // namespace

void SetRenderWatch(const FZRenderWatch* watch)
{
    current = watch;
}

const FZRenderWatch* RenderWatch()
{
    return current;
}

bool RenderWatched()
{
    return current != nullptr;
}

bool RenderStopRequested()
{
    return StopRequested(current);
}

void RunWatchedChunk(FZWatchedPass& pass, std::int32_t first, std::int32_t last)
{
    if (StopRequested(pass.watch))
        return;
    {
        const BorrowedWatch borrowed(pass.watch);
        pass.chunk(pass.context, first, last);
    }
    const std::int32_t done = pass.done.fetch_add(last - first) + (last - first);
    if (pass.watch == nullptr || pass.watch->rowsDone == nullptr)
        return;
    // A report that would wait for another is dropped: the next one follows
    // within a chunk.
    std::unique_lock<std::mutex> lock(pass.reporting, std::try_to_lock);
    if (lock.owns_lock())
        pass.watch->rowsDone(pass.watch->context, done, pass.total);
}
