#include "engine/parallel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "engine/render_watch.h"
#include "engine/rows_on_calling_thread.h"

namespace {

// Chunks per thread: rows differ in cost (a sample shape fills the middle of
// the frame), so threads claim smaller chunks one after another.
constexpr std::int32_t kChunksPerThread = 8;

std::atomic<int> requestedThreads{0};

// Set while a thread works on a chunk, or keeps its passes to itself: a
// pass started then runs on that thread alone.
thread_local bool insideChunk = false;

int ProcessorCount()
{
    const unsigned n = std::thread::hardware_concurrency();
    return n == 0 ? 1 : static_cast<int>(std::min(n, 256u));
}

// How long a thread keeps looking for the next job, or for the end of its
// own, before it sleeps: the passes of a frame follow each other within
// microseconds, and waking a sleeping thread takes longer than that.
constexpr auto kSpin = std::chrono::microseconds(50);

void Pause()
{
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#else
    std::this_thread::yield();
#endif
}

// Spins until ready() holds or the spin time is over; whether it holds.
template <typename Ready>
bool SpinUntil(Ready ready)
{
    const auto until = std::chrono::steady_clock::now() + kSpin;
    for (int i = 1;; ++i) {
        if (ready())
            return true;
        if (i % 64 == 0 && std::chrono::steady_clock::now() > until)
            return false;
        Pause();
    }
}

// The workers wait for a job, join it while it is open, claim its chunks by
// number until none is left, and leave. The caller closes the job once it
// has no chunk left to claim and waits only for the workers that joined: a
// worker that wakes late (the system had the core busy) finds the job closed
// and touches nothing of it, and the caller never waits for it.
class RowPool {
public:
    ~RowPool() { Resize(0); }

    // Runs the job on the pool and the calling thread; false, having run
    // nothing, while the pool serves another thread's job: that caller then
    // runs its rows on its own thread (the same bytes either way) rather
    // than wait for a pass of unknown length.
    [[nodiscard]] bool TryRun(std::int32_t begin, std::int32_t end, FZRowChunkFunction chunk, void* context,
                              int threads)
    {
        const std::unique_lock<std::mutex> one(jobMutex, std::try_to_lock);
        if (!one.owns_lock())
            return false;
        Resize(threads - 1);
        const std::int32_t rows = end - begin;
        job = Job{begin, rows, std::min<std::int32_t>(rows, threads * kChunksPerThread), chunk, context};
        next.store(0);
        entry.store(kOpen, std::memory_order_release);
        {
            const std::lock_guard<std::mutex> lock(mutex);
            generation.fetch_add(1, std::memory_order_release);
        }
        wake.notify_all();
        Work(job);
        entry.fetch_and(~kOpen, std::memory_order_acq_rel);
        const auto left = [this] { return entry.load(std::memory_order_acquire) == 0; };
        if (SpinUntil(left))
            return true;
        std::unique_lock<std::mutex> lock(mutex);
        done.wait(lock, left);
        return true;
    }

private:
    struct Job {
        std::int32_t begin = 0;
        std::int32_t rows = 0;
        std::int32_t chunks = 0;
        FZRowChunkFunction chunk = nullptr;
        void* context = nullptr;
    };

    // Claims chunks of the job until all are taken. Chunk i covers the rows
    // from begin + rows * i / chunks up to the next chunk's first row.
    void Work(const Job& j)
    {
        insideChunk = true;
        for (std::int32_t i = next.fetch_add(1); i < j.chunks; i = next.fetch_add(1)) {
            const std::int32_t first = j.begin + static_cast<std::int32_t>(std::int64_t{j.rows} * i / j.chunks);
            const std::int32_t last
                = j.begin + static_cast<std::int32_t>(std::int64_t{j.rows} * (i + 1) / j.chunks);
            j.chunk(j.context, first, last);
        }
        insideChunk = false;
    }

    void WorkerLoop()
    {
        std::uint64_t seen = 0;
        for (;;) {
            const auto posted = [&] {
                return stopping.load(std::memory_order_acquire) || generation.load(std::memory_order_acquire) != seen;
            };
            if (!SpinUntil(posted)) {
                std::unique_lock<std::mutex> lock(mutex);
                wake.wait(lock, posted);
            }
            if (stopping.load(std::memory_order_acquire))
                return;
            seen = generation.load(std::memory_order_acquire);
            if (!Join())
                continue;
            Work(job);
            // The last to leave a closed job tells its caller.
            if (entry.fetch_sub(1, std::memory_order_acq_rel) == 1) {
                const std::lock_guard<std::mutex> lock(mutex);
                done.notify_one();
            }
        }
    }

    // Counts this worker into the open job; false when it is closed.
    bool Join()
    {
        std::uint32_t state = entry.load(std::memory_order_relaxed);
        do {
            if ((state & kOpen) == 0)
                return false;
        } while (!entry.compare_exchange_weak(state, state + 1, std::memory_order_acq_rel,
                                              std::memory_order_relaxed));
        return true;
    }

    // Keeps exactly count workers (fewer when the system refuses threads);
    // called with jobMutex held.
    void Resize(int count)
    {
        if (static_cast<int>(workers.size()) == count)
            return;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            stopping.store(true, std::memory_order_release);
        }
        wake.notify_all();
        for (std::thread& t : workers)
            t.join();
        workers.clear();
        stopping.store(false);
        for (int i = 0; i < count; ++i) {
            try {
                workers.emplace_back([this] { WorkerLoop(); });
            } catch (const std::system_error&) {
                break;
            }
        }
    }

    std::mutex jobMutex;  // one job at a time, the first thread that asks
    std::mutex mutex;     // for sleeping and waking
    std::condition_variable wake;
    std::condition_variable done;
    std::vector<std::thread> workers;
    Job job;
    std::atomic<std::int32_t> next{0};
    // kOpen while workers may join the job, plus the workers in it.
    static constexpr std::uint32_t kOpen = 1u << 31;
    std::atomic<std::uint32_t> entry{0};
    std::atomic<std::uint64_t> generation{0};
    std::atomic<bool> stopping{false};
};

RowPool& Pool()
{
    static RowPool pool;
    return pool;
}

// A watched pass runs in chunks on one thread too, so that it can report
// and stop between them.
void RunWatchedRows(std::int32_t begin, std::int32_t end, FZRowChunkFunction chunk, void* context, int threads)
{
    FZWatchedPass pass{chunk, context, end - begin};
    const auto watched = [](void* p, std::int32_t first, std::int32_t last) {
        RunWatchedChunk(*static_cast<FZWatchedPass*>(p), first, last);
    };
    if (threads > 1 && end - begin > 1 && Pool().TryRun(begin, end, watched, &pass, threads))
        return;
    const std::int32_t rows = end - begin;
    const std::int32_t chunks = std::min(rows, kChunksPerThread);
    for (std::int32_t i = 0; i < chunks; ++i)
        watched(&pass, begin + static_cast<std::int32_t>(std::int64_t{rows} * i / chunks),
                begin + static_cast<std::int32_t>(std::int64_t{rows} * (i + 1) / chunks));
}

} // namespace

FZRowsOnCallingThread::FZRowsOnCallingThread() : previous(insideChunk)
{
    insideChunk = true;
}

FZRowsOnCallingThread::~FZRowsOnCallingThread()
{
    insideChunk = previous;
}

void SetRenderThreads(int count)
{
    requestedThreads.store(count < 0 ? 0 : count);
}

int RenderThreads()
{
    const int n = requestedThreads.load();
    return n == 0 ? ProcessorCount() : n;
}

void RunRowChunks(std::int32_t begin, std::int32_t end, FZRowChunkFunction chunk, void* context)
{
    if (end <= begin)
        return;
    const int threads = RenderThreads();
    if (RenderWatched() && !insideChunk) {
        RunWatchedRows(begin, end, chunk, context, threads);
        return;
    }
    if (threads > 1 && end - begin > 1 && !insideChunk && Pool().TryRun(begin, end, chunk, context, threads))
        return;
    chunk(context, begin, end);
}
