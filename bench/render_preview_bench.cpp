// Thumbnails for a host: 48 pictures of 128 x 128 pixels (the benchmark
// materials in turn, sample shape 1) drawn by Tamerisk_RenderPreview from
// two host threads, 24 each, as a host fills its material list. Compare
// with the same 48 made by `tamerisk-render --size 128 --output-dir`,
// which also encodes and writes them.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <thread>
#include <vector>

#include <tamerisk/tamerisk.h>

#include "bench_materials.h"

namespace {

constexpr int kSide = 128;
constexpr int kPictures = 48;
constexpr int kHostThreads = 2;

void DrawShare(const std::vector<BenchMaterial>& materials, int thread, bool& failed)
{
    std::vector<std::uint8_t> rgb(3 * kSide * kSide);
    for (int i = thread; i < kPictures; i += kHostThreads) {
        const FZAttributeEx& m = materials[static_cast<std::size_t>(i) % materials.size()].material;
        if (Tamerisk_RenderPreview(&m, 1, kSide, kSide, 0, rgb.data(), 3 * kSide) != TAMERISK_OK)
            failed = true;
    }
    benchmark::DoNotOptimize(rgb.data());
}

void FortyEightThumbnailsFromTwoThreads(benchmark::State& state)
{
    const std::vector<BenchMaterial> materials = BenchMaterials();
    bool failed[kHostThreads] = {};
    for (auto _ : state) {
        std::vector<std::thread> hosts;
        for (int t = 0; t < kHostThreads; ++t)
            hosts.emplace_back(DrawShare, std::cref(materials), t, std::ref(failed[t]));
        for (std::thread& host : hosts)
            host.join();
    }
    for (bool f : failed)
        if (f)
            state.SkipWithError("a picture could not be drawn");
    state.counters["pictures_per_s"] = benchmark::Counter(kPictures, benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace

BENCHMARK(FortyEightThumbnailsFromTwoThreads)->Unit(benchmark::kMillisecond)->UseRealTime();

BENCHMARK_MAIN();
