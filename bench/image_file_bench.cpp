// Time for tamerisk-render to encode the image file of a 1024 x 1024
// preview frame (the default material on each sample shape) in memory: PNG
// with one thread and with two, and PPM. The "file_KB" counter is the size
// of the file.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "engine/parallel.h"
#include "preview/preview_panel.h"
#include "tamerisk-render/image_file.h"

namespace {

constexpr std::int32_t kSize = 1024;

using Encoder = bool (*)(const FZImage&, std::vector<std::uint8_t>&);

// The frame is rendered with every processor; only the encoding runs with
// the benchmark's thread count.
void Encode(benchmark::State& state, Encoder encode)
{
    CPreviewPanel panel;
    SetRenderThreads(0);
    if (panel.SetUpFrame(kSize, kSize, static_cast<std::int32_t>(state.range(0))) != FZResult::Ok
        || panel.ApplyMaterial(FZAttributeEx(), 0) != FZResult::Ok) {
        state.SkipWithError("the preview could not be rendered");
        return;
    }
    SetRenderThreads(static_cast<int>(state.range(1)));
    std::vector<std::uint8_t> bytes;
    for (auto _ : state) {
        if (!encode(*panel.Scene()->frame, bytes)) {
            state.SkipWithError("the frame could not be encoded");
            break;
        }
        benchmark::DoNotOptimize(bytes.data());
    }
    SetRenderThreads(0);
    state.counters["file_KB"] = static_cast<double>(bytes.size()) / 1024.0;
}

void EncodePngFrame(benchmark::State& state)
{
    Encode(state, EncodePng);
}

void EncodePpmFrame(benchmark::State& state)
{
    Encode(state, EncodePpm);
}

} // namespace

BENCHMARK(EncodePngFrame)
    ->ArgsProduct({{1, 2, 3, 4}, {1, 2}})
    ->ArgNames({"shape", "threads"})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(EncodePpmFrame)
    ->ArgsProduct({{1}, {1}})
    ->ArgNames({"shape", "threads"})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

BENCHMARK_MAIN();
