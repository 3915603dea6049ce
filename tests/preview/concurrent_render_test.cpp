// Two threads rendering at once, as the editor does while its large preview
// renders on a thread of its own: each gets exactly the pictures it would get
// alone, whichever of them the pool serves, and a stop asked by one thread
// reaches every chunk of its own passes and nothing of the other's. A thread
// that keeps its passes to itself (a host drawing thumbnails) leaves the
// pool to the others.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "../../bench/bench_materials.h"
#include "engine/parallel.h"
#include "engine/random.h"
#include "engine/render_watch.h"
#include "engine/rows_on_calling_thread.h"
#include "preview/preview_panel.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Size {
    std::int32_t w, h;
};

// Every benchmark material in turn, each on its own shape, in one panel.
std::vector<Bytes> RenderAll(Size size)
{
    std::vector<Bytes> frames;
    CPreviewPanel panel;
    EXPECT_EQ(panel.SetUpFrame(size.w, size.h), FZResult::Ok);
    const std::vector<BenchMaterial> materials = BenchMaterials();
    for (std::size_t i = 0; i < materials.size(); ++i) {
        EXPECT_EQ(panel.BuildSampleShape(static_cast<std::int32_t>(i % 4 + 1)), FZResult::Ok);
        EXPECT_EQ(panel.ApplyMaterial(materials[i].material, 0), FZResult::Ok);
        const FZImage& frame = *panel.Scene()->frame;
        frames.emplace_back(frame.data.data(), frame.data.data() + frame.data.size());
    }
    return frames;
}

class ConcurrentRender : public ::testing::Test {
protected:
    void SetUp() override
    {
        FZRandom::SetFixedSeed(1u);  // the groove noise
        SetRenderThreads(3);
    }
    void TearDown() override
    {
        SetRenderThreads(0);
        FZRandom::SetFixedSeed(std::nullopt);
    }
};

} // namespace

TEST_F(ConcurrentRender, TwoThreadsGetTheBytesOfALoneRender)
{
    constexpr Size kLarge{211, 157};
    constexpr Size kSmall{60, 60};
    const std::vector<Bytes> large = RenderAll(kLarge);
    const std::vector<Bytes> small = RenderAll(kSmall);

    std::vector<Bytes> largeAtOnce;
    std::thread other([&] { largeAtOnce = RenderAll(kLarge); });
    // The small previews keep asking for the pool while the other renders.
    std::vector<std::vector<Bytes>> smallAtOnce;
    for (int round = 0; round < 4; ++round)
        smallAtOnce.push_back(RenderAll(kSmall));
    other.join();

    EXPECT_TRUE(largeAtOnce == large);
    for (const std::vector<Bytes>& frames : smallAtOnce)
        EXPECT_TRUE(frames == small);
}

TEST_F(ConcurrentRender, AStopReachesEveryChunkOfItsThreadAndNoOtherThread)
{
    std::atomic<bool> stop{false};
    FZRenderWatch watch;
    watch.stop = &stop;
    std::vector<const FZRenderWatch*> seen(300, nullptr);
    std::vector<char> ranAfterStop(300, 0);
    std::thread([&] {
        SetRenderWatch(&watch);
        // Rows on the pool's threads poll the watch of the pass's caller.
        ParallelRows(0, 300, [&](std::int32_t y) { seen[static_cast<std::size_t>(y)] = RenderWatch(); });
        stop.store(true);
        ParallelRows(0, 300, [&](std::int32_t y) { ranAfterStop[static_cast<std::size_t>(y)] = 1; });
        SetRenderWatch(nullptr);
    }).join();
    EXPECT_EQ(std::count(seen.begin(), seen.end(), &watch), 300);
    EXPECT_EQ(std::count(ranAfterStop.begin(), ranAfterStop.end(), 1), 0);
    EXPECT_FALSE(RenderWatched());

    // Stopped renders go on on one thread while the other renders.
    std::atomic<bool> othersDone{false};
    std::thread stopped([&] {
        SetRenderWatch(&watch);
        CPreviewPanel panel;
        while (!othersDone.load())
            static_cast<void>(panel.SetUpFrame(97, 61, 2, BenchMaterials()[1].material, 0));
        SetRenderWatch(nullptr);
    });
    const std::vector<Bytes> unwatched = RenderAll({131, 89});
    othersDone.store(true);
    stopped.join();
    EXPECT_TRUE(unwatched == RenderAll({131, 89}));
}

// The host's pass has begun and waits inside its rows until the editor's
// pass is done: every row of the host's runs on the host's thread, and the
// editor's pass, which starts second, is not held up by it.
TEST_F(ConcurrentRender, AThreadThatKeepsItsPassesToItselfLeavesThePoolToOthers)
{
    std::atomic<bool> hostStarted{false};
    std::atomic<bool> editorDone{false};
    std::vector<std::thread::id> hostRows(64);
    std::thread host([&] {
        const FZRowsOnCallingThread alone;
        ParallelRows(0, 64, [&](std::int32_t y) {
            hostStarted.store(true);
            while (!editorDone.load())
                std::this_thread::yield();
            hostRows[static_cast<std::size_t>(y)] = std::this_thread::get_id();
        });
        // Gone with its scope: the next pass may use the pool again.
    });
    while (!hostStarted.load())
        std::this_thread::yield();
    std::atomic<int> editorRows{0};
    ParallelRows(0, 300, [&](std::int32_t) { editorRows.fetch_add(1); });
    editorDone.store(true);
    const std::thread::id hostId = host.get_id();
    host.join();
    EXPECT_EQ(editorRows.load(), 300);
    EXPECT_EQ(std::count(hostRows.begin(), hostRows.end(), hostId), 64);
}
