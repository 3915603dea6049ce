// The parallel renderer against the straightforward one: frames, shaded
// images and highlight maps must be the same bytes whatever the thread count.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "../../bench/bench_materials.h"
#include "engine/emission_lattice.h"
#include "engine/parallel.h"
#include "engine/render.h"
#include "preview/preview_panel.h"

namespace {

class ParallelRender : public ::testing::Test {
protected:
    void TearDown() override { SetRenderThreads(0); }
};

struct Result {
    std::vector<std::uint8_t> frame, shaded;
    std::vector<float> highlight;
};

void Append(std::vector<std::uint8_t>& out, const FZImage* image)
{
    if (image != nullptr && image->data != nullptr)
        out.insert(out.end(), image->data, image->data + image->dataSize);
}

Result Capture(const FZScene& scene)
{
    Result r;
    Append(r.frame, scene.frame);
    for (std::int32_t i = 0; i < scene.LayerCount(); ++i) {
        const FZLayer& layer = *scene.LayerAt(i);
        Append(r.shaded, layer.shaded);
        if (layer.highlight != nullptr)
            for (std::int32_t y = 0; y < layer.height; ++y)
                r.highlight.insert(r.highlight.end(), layer.highlight[y], layer.highlight[y] + layer.width);
    }
    return r;
}

// Bit for bit, so that a NaN equals itself.
bool SameBits(const std::vector<float>& a, const std::vector<float>& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

// Runs `run` with one thread, then with 2, 3 and 7, and compares every result.
void ExpectSameForAnyThreads(const std::function<std::vector<Result>(int)>& run, const std::string& what)
{
    const std::vector<Result> expected = run(1);
    for (int threads : {2, 3, 7}) {
        const std::vector<Result> actual = run(threads);
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            SCOPED_TRACE(what + ", result " + std::to_string(i) + ", " + std::to_string(threads) + " threads");
            EXPECT_TRUE(expected[i].frame == actual[i].frame) << "frame differs";
            EXPECT_TRUE(expected[i].shaded == actual[i].shaded) << "shaded image differs";
            EXPECT_TRUE(SameBits(expected[i].highlight, actual[i].highlight)) << "highlight map differs";
        }
    }
}

// The benchmark set plus coloured materials, so that highlights and tints
// show instead of vanishing in a white already full, and the other grooves.
std::vector<BenchMaterial> ComparedMaterials()
{
    std::vector<BenchMaterial> set = BenchMaterials();
    for (std::int32_t type : {1, 3, 4, 5, 11, 20, 21}) {
        FZAttributeEx m;
        m.color.SetBytes(40, 90, 160);
        m.anisotropic = 1;
        m.anisotropy.type = type;
        m.anisotropy.depthVariation = 1.0f;
        m.anisotropy.angle = 30.0f;
        m.highlightSharpness = 0.6f;
        m.smoothHighlight = type % 2;
        set.push_back({"grooves" + std::to_string(type), m});
    }
    FZAttributeEx tinted;
    tinted.color.SetBytes(120, 30, 30);
    tinted.rainbow = 1;
    tinted.smoothHighlight = 1;
    tinted.highlightSharpness = 0.4f;
    tinted.reflection = 0.3f;
    set.push_back({"tinted", tinted});
    FZAttributeEx lamp;
    lamp.emission = 1.0f;
    lamp.transparency = 0.5f;
    lamp.color.SetBytes(30, 200, 90);
    set.push_back({"lamp", lamp});
    return set;
}

// Shape n in a w x h frame, each material applied in turn.
std::vector<Result> RenderMaterials(int threads, std::int32_t w, std::int32_t h, std::int32_t n,
                                    const std::vector<BenchMaterial>& materials)
{
    SetRenderThreads(threads);
    CPreviewPanel panel;
    EXPECT_EQ(panel.SetUpFrame(w, h), 0);
    panel.BuildSampleShape(n);
    std::vector<Result> results;
    for (const BenchMaterial& m : materials) {
        panel.ApplyMaterial(m.material, 0);
        results.push_back(Capture(*panel.Scene()));
    }
    return results;
}

// A lens-shaped blob of depth samples filling a w x h layer.
void FillBlob(FZLayer& layer, std::int32_t w, std::int32_t h)
{
    for (std::int32_t y = 0; y < h; ++y)
        for (std::int32_t x = 0; x < w; ++x) {
            const float dx = x - w * 0.5f;
            const float dy = y - h * 0.5f;
            const float d = 400.0f - dx * dx - dy * dy;
            if (d > 0.0f)
                layer.CompositeSample(x, y, d * 0.05f, d > 30.0f ? 255 : 120, FZColor());
        }
}

} // namespace

TEST_F(ParallelRender, EveryMaterialShapeAndSizeGivesTheSameBytes)
{
    // The extra materials stop at 120 x 120 to keep the sanitizer run short.
    const std::vector<BenchMaterial> all = ComparedMaterials();
    const std::vector<BenchMaterial> benchmarked = BenchMaterials();
    for (std::int32_t n = 1; n <= 4; ++n)
        for (const auto& size : {std::pair{1, 1}, {17, 13}, {120, 120}, {256, 256}}) {
            const int w = size.first;  // plain names: clang cannot capture bindings
            const int h = size.second;
            const std::vector<BenchMaterial>& materials = w > 120 ? benchmarked : all;
            ExpectSameForAnyThreads([&](int threads) { return RenderMaterials(threads, w, h, n, materials); },
                                    "shape " + std::to_string(n) + " at " + std::to_string(w) + "x"
                                        + std::to_string(h) + " (results in material order)");
        }
}

TEST_F(ParallelRender, ShapeAndMaterialChangesGiveTheSameBytes)
{
    // The dialogs' redraws: shapes rebuilt and materials applied on one panel.
    ExpectSameForAnyThreads(
        [](int threads) {
            SetRenderThreads(threads);
            CPreviewPanel panel;
            EXPECT_EQ(panel.SetUpFrame(96, 80), 0);
            std::vector<Result> steps;
            std::int32_t shape = 1;
            for (const BenchMaterial& m : ComparedMaterials()) {
                shape = shape % 4 + 1;
                panel.BuildSampleShape(shape);
                steps.push_back(Capture(*panel.Scene()));
                panel.ApplyMaterial(m.material, shape == 2 ? 1 : 0);
                steps.push_back(Capture(*panel.Scene()));
            }
            return steps;
        },
        "redraw steps");
}

TEST_F(ParallelRender, LayeredScenesWithSeveralLightsGiveTheSameBytes)
{
    // Layers off the frame origin and over its edges, glass between the
    // ground and an emitter (which dims its light), two lights, and a
    // partial render rectangle.
    ExpectSameForAnyThreads(
        [](int threads) {
            SetRenderThreads(threads);
            FZScene scene;
            const float white[3] = {1.0f, 1.0f, 1.0f};
            EXPECT_EQ(scene.SetUpFrame(90, 70, white), 0);
            FZLight* second = new FZLight;
            const float direction[3] = {-0.5f, 0.2f, -1.0f};
            const float warm[3] = {1.0f, 0.8f, 0.5f};
            second->SetDirectional(0.7f, direction, warm);
            scene.lights->Append(second);
            FZAttributeEx glass;
            glass.transparency = 0.6f;
            glass.refractiveIndex = 1.3f;
            glass.reflection = 0.4f;
            glass.color.SetBytes(200, 220, 255);
            FZAttributeEx lamp;
            lamp.emission = 0.5f;
            lamp.color.SetBytes(255, 200, 0);
            lamp.anisotropic = 1;
            lamp.highlightSharpness = 0.5f;
            const struct {
                std::int32_t x, y, w, h;
                const FZAttributeEx& m;
            } layers[] = {{-10, 5, 60, 50, glass}, {30, -8, 70, 60, lamp}};
            PrepareLayer(scene, 0);
            ShadeLayerAt(scene, 0);
            for (const auto& l : layers) {
                const std::int32_t index = scene.AddLayerRect(l.x, l.y, l.w, l.h);
                FZLayer& layer = *scene.LayerAt(index);
                layer.SetMaterial(l.m);
                layer.SetColorSource(0);
                FillBlob(layer, l.w, l.h);
                PrepareLayer(scene, index);
                ShadeLayerAt(scene, index);
            }
            RenderScene(scene);
            std::vector<Result> results = {Capture(scene)};
            RenderRect(scene, FZRect(12, 9, 61, 40));
            results.push_back(Capture(scene));
            return results;
        },
        "layered scene");
}

TEST_F(ParallelRender, EveryEmissionKernelGivesTheSameBytes)
{
    FZAttributeEx lamp;
    lamp.emission = 0.8f;
    lamp.color.SetBytes(90, 255, 40);
    const std::vector<BenchMaterial> materials = {{"lamp", lamp}};
    const Result expected = RenderMaterials(1, 143, 97, 1, materials)[0];
    // Each instruction set this processor has, and the plain loop, splat the
    // lattice to the same bytes.
    for (FZSplatKernel kind : {FZSplatKernel::Avx512, FZSplatKernel::Avx2, FZSplatKernel::Plain})
        if (UseSplatKernel(kind)) {
            const Result actual = RenderMaterials(3, 143, 97, 1, materials)[0];
            EXPECT_TRUE(expected.frame == actual.frame && expected.shaded == actual.shaded
                        && SameBits(expected.highlight, actual.highlight))
                << "kernel " << static_cast<int>(kind);
        }
    EXPECT_TRUE(UseSplatKernel(FZSplatKernel::Best));
}

TEST_F(ParallelRender, TentFilterGivesTheSameBits)
{
    // Mostly zero, as in an emission lattice, with a signed zero, negative
    // values and an infinity among them.
    const std::int32_t w = 37;
    const std::int32_t h = 29;
    const auto filtered = [&](int threads) {
        SetRenderThreads(threads);
        std::vector<float> cells(static_cast<std::size_t>(w) * h, 0.0f);
        std::vector<float*> rows(h);
        for (std::int32_t r = 0; r < h; ++r)
            rows[r] = cells.data() + static_cast<std::size_t>(r) * w;
        for (std::int32_t r = 2; r < h; r += 5)
            for (std::int32_t c = 2; c < w; c += 5)
                rows[r][c] = static_cast<float>((r * 7 + c * 3) % 11) * 0.37f - 1.1f;
        rows[7][3] = -0.0f;
        rows[12][30] = 1e30f;
        rows[27][36] = std::numeric_limits<float>::infinity();
        FZFloatGrid grid(w, h, rows.data());
        EXPECT_EQ(FilterSeparable(grid, 10), 0);
        return cells;
    };
    const std::vector<float> expected = filtered(1);
    for (int threads : {2, 3, 7})
        EXPECT_TRUE(SameBits(expected, filtered(threads))) << threads << " threads";
}

TEST_F(ParallelRender, ThreadCountSetting)
{
    SetRenderThreads(3);
    EXPECT_EQ(RenderThreads(), 3);
    EXPECT_TRUE(ParallelRendering());
    SetRenderThreads(1);
    EXPECT_FALSE(ParallelRendering());
    for (int nonsense : {-4, 0}) {
        SetRenderThreads(nonsense);
        EXPECT_GE(RenderThreads(), 1);
    }
    // Every row is visited once, whatever the split; a pass started from
    // inside a chunk runs on that thread.
    for (int threads : {1, 2, 7}) {
        SetRenderThreads(threads);
        std::vector<int> visits(1000, 0);
        ParallelRows(3, 1000, [&](std::int32_t y) {
            ++visits[y];
            ParallelRows(0, 2, [](std::int32_t) {});
        });
        for (int y = 0; y < 1000; ++y)
            ASSERT_EQ(visits[y], y < 3 ? 0 : 1) << "row " << y << ", " << threads << " threads";
    }
}
