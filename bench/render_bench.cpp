// Timings of the preview's two expensive calls at three frame sizes (or
// those of TAMERISK_BENCH_SIZES): ApplyMaterial (shading of the sample layer
// and a full render) for each material of the shared set, and
// BuildSampleShape (drawing, surface preparation, shading and a full render)
// for each sample shape. Each runs side by side with one thread and with
// several (the same code, so the ratio is the gain from the extra cores); its
// "per_pixel" counter is the time per frame pixel.
//
// The several-thread runs use every processor, or TAMERISK_THREADS threads
// when that variable is set (a number of 2 or more).
//
// PeakMemory, which runs first, builds a 1024 x 1024 preview (and then a
// 3840 x 2160 one) and applies every material of the set: its "peak_MB"
// counter is how far the process's resident memory rose above where it
// stood before the frame set-up (the rasters are mapped from the system,
// not taken through operator new, so the high-water mark of resident pages
// is what counts them all), "bytes_per_pixel" the same per frame pixel.
// Memory the first run freed may stay with the process and serve the
// second unseen; run each alone (--benchmark_filter=PeakMemory/width:3840)
// for its own figure.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "bench_materials.h"
#include "engine/parallel.h"
#include "preview/preview_panel.h"

namespace {

// A field of /proc/self/status in bytes ("VmRSS", "VmHWM"); 0 when unknown.
std::int64_t StatusBytes(const char* field)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    const std::string key = std::string(field) + ":";
    while (std::getline(status, line))
        if (line.rfind(key, 0) == 0)
            return std::atoll(line.c_str() + key.size()) * 1024;
    return 0;
}

// Starts the resident high-water mark afresh from the current size.
bool ResetPeakResident()
{
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5";
    return static_cast<bool>(clear.flush());
}

} // namespace

namespace {

// The frame sizes: 120, 512 and 1024, or the comma-separated list in
// TAMERISK_BENCH_SIZES (docs/performance.md's cost-per-pixel plot takes 120 to 2048).
std::vector<std::int32_t> Sizes()
{
    const char* text = std::getenv("TAMERISK_BENCH_SIZES");
    std::vector<std::int32_t> sizes;
    for (const char* p = text; p != nullptr && *p != '\0';) {
        char* end = nullptr;
        const long n = std::strtol(p, &end, 10);
        if (end == p || n < 1 || n > 8192)
            break;
        sizes.push_back(static_cast<std::int32_t>(n));
        p = *end == ',' ? end + 1 : end;
    }
    return sizes.empty() ? std::vector<std::int32_t>{120, 512, 1024} : sizes;
}

// The thread count of the parallel runs.
int ParallelThreads()
{
    const char* text = std::getenv("TAMERISK_THREADS");
    const int n = text == nullptr ? 0 : std::atoi(text);
    SetRenderThreads(n >= 2 ? n : 0);
    const int resolved = RenderThreads();
    SetRenderThreads(0);
    return resolved;
}

// A square preview of the benchmark's size, rendered with its thread count;
// false (and the benchmark skipped) when it cannot be built.
bool SetUp(benchmark::State& state, CPreviewPanel& panel)
{
    const auto size = static_cast<std::int32_t>(state.range(0));
    SetRenderThreads(static_cast<int>(state.range(1)));
    if (panel.SetUpFrame(size, size) == FZResult::Ok)
        return true;
    state.SkipWithError("the preview could not be set up");
    return false;
}

void CountPixels(benchmark::State& state)
{
    const double pixels = static_cast<double>(state.range(0)) * static_cast<double>(state.range(0));
    state.counters["per_pixel"] = benchmark::Counter(
        pixels, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void ApplyAndRender(benchmark::State& state, const FZAttributeEx& material)
{
    CPreviewPanel panel;
    if (!SetUp(state, panel))
        return;
    for (auto _ : state) {
        if (panel.ApplyMaterial(material, 0) != FZResult::Ok) {
            state.SkipWithError("the material could not be rendered");
            return;
        }
        benchmark::DoNotOptimize(panel.Scene()->frame->data);
    }
    CountPixels(state);
}

void BuildShape(benchmark::State& state, std::int32_t shape)
{
    CPreviewPanel panel;
    if (!SetUp(state, panel))
        return;
    for (auto _ : state) {
        // The panel rebuilds only for another number; an empty sample layer
        // in between makes every timed call a real rebuild.
        state.PauseTiming();
        const FZResult emptied = panel.BuildSampleShape(0);
        state.ResumeTiming();
        if (emptied != FZResult::Ok || panel.BuildSampleShape(shape) != FZResult::Ok) {
            state.SkipWithError("the shape could not be built");
            return;
        }
        benchmark::DoNotOptimize(panel.Scene()->frame->data);
    }
    CountPixels(state);
}

void PeakMemory(benchmark::State& state)
{
    std::int64_t peak = 0;
    const auto w = static_cast<std::int32_t>(state.range(0));
    const auto h = static_cast<std::int32_t>(state.range(1));
    for (auto _ : state) {
        SetRenderThreads(static_cast<int>(state.range(2)));
        if (!ResetPeakResident()) {
            state.SkipWithError("the resident high-water mark cannot be reset");
            return;
        }
        const std::int64_t before = StatusBytes("VmRSS");
        {
            CPreviewPanel panel;
            if (panel.SetUpFrame(w, h) != FZResult::Ok) {
                state.SkipWithError("the preview could not be set up");
                return;
            }
            for (const BenchMaterial& m : BenchMaterials())
                if (panel.ApplyMaterial(m.material, 0) != FZResult::Ok) {
                    state.SkipWithError("a material could not be rendered");
                    return;
                }
        }
        peak = StatusBytes("VmHWM") - before;
    }
    state.counters["peak_MB"] = static_cast<double>(peak) / (1024.0 * 1024.0);
    state.counters["bytes_per_pixel"] = static_cast<double>(peak) / (static_cast<double>(w) * h);
}

void AddRuns(benchmark::internal::Benchmark* b)
{
    static const int parallel = ParallelThreads();
    static const std::vector<std::int32_t> sizes = Sizes();
    for (const std::int32_t size : sizes)
        for (const int threads : {1, parallel})
            b->Args({size, threads});
    b->ArgNames({"size", "threads"})->Unit(benchmark::kMillisecond)->UseRealTime();
}

const bool kRegistered = [] {
    // First, with several threads only: the renderer keeps some work memory
    // from frame to frame, which a later run would find already there.
    static const int parallel = ParallelThreads();
    benchmark::RegisterBenchmark("PeakMemory", PeakMemory)
        ->Args({1024, 1024, parallel})
        ->Args({3840, 2160, parallel})
        ->ArgNames({"width", "height", "threads"})
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    for (const BenchMaterial& m : BenchMaterials())
        AddRuns(benchmark::RegisterBenchmark(("ApplyMaterial/" + m.name).c_str(), ApplyAndRender, m.material));
    for (std::int32_t shape = 1; shape <= 4; ++shape)
        AddRuns(
            benchmark::RegisterBenchmark(("BuildSampleShape/" + std::to_string(shape)).c_str(), BuildShape, shape));
    return true;
}();

} // namespace

BENCHMARK_MAIN();
