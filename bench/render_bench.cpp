// Timings of the preview's two expensive calls at three frame sizes:
// ApplyMaterial (shading of the sample layer and a full render) for each
// material of the shared set, and BuildSampleShape (drawing, surface
// preparation, shading and a full render) for each sample shape.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "bench_materials.h"
#include "preview/preview_panel.h"

namespace {

const std::int32_t kSizes[] = {120, 512, 1024};

// A square preview of the benchmark's size; false (and the benchmark
// skipped) when it cannot be built.
bool SetUp(benchmark::State& state, CPreviewPanel& panel)
{
    const auto size = static_cast<std::int32_t>(state.range(0));
    if (panel.SetUpFrame(size, size) == 0)
        return true;
    state.SkipWithError("the preview could not be set up");
    return false;
}

void ApplyAndRender(benchmark::State& state, const FZAttributeEx& material)
{
    CPreviewPanel panel;
    if (!SetUp(state, panel))
        return;
    for (auto _ : state) {
        panel.ApplyMaterial(material, 0);
        benchmark::DoNotOptimize(panel.Scene()->frame->data);
    }
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
        panel.BuildSampleShape(0);
        state.ResumeTiming();
        panel.BuildSampleShape(shape);
        benchmark::DoNotOptimize(panel.Scene()->frame->data);
    }
}

void AddSizes(benchmark::internal::Benchmark* b)
{
    for (const std::int32_t size : kSizes)
        b->Arg(size);
    b->ArgName("size")->Unit(benchmark::kMillisecond);
}

const bool kRegistered = [] {
    for (const BenchMaterial& m : BenchMaterials())
        AddSizes(benchmark::RegisterBenchmark(("ApplyMaterial/" + m.name).c_str(), ApplyAndRender, m.material));
    for (std::int32_t shape = 1; shape <= 4; ++shape)
        AddSizes(benchmark::RegisterBenchmark(("BuildSampleShape/" + std::to_string(shape)).c_str(), BuildShape,
                                              shape));
    return true;
}();

} // namespace

BENCHMARK_MAIN();
