// The sample shapes beyond what the golden frames pin (every pixel of the
// four shapes on an empty layer): how coverage counts the sample points,
// drawing over an earlier surface, the finishing steps' edge cases and
// parameters no dialog would give.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "engine/render.h"
#include "engine/shading/surface.h"
#include "preview/shapes.h"

// Numbers beyond the four shapes draw nothing on the preview's layer.
TEST(SampleShapes, OtherNumbersDrawNothingAndEmptyLayersStayAsTheyAre)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 120, 120, 10.0f), FZResult::Ok);
    for (int n : {0, 5, -1})
        DrawSampleShape(layer, n, 60.0f, 60.0f, 52.0f);
    FZRect bounds;
    EXPECT_FALSE(CoverageBounds(layer, bounds));
    layer.depth[3][3] = 7.0f;
    FlattenTop(layer, 0.5f);
    ClampDepth(layer, -1.0f);
    EXPECT_FLOAT_EQ(layer.depth[3][3], 7.0f);
}

TEST(ShapeRaster, CoverageCountsTheSamplesInside)
{
    // Sample points of pixel (0, 0) lie at 1/6, 1/2 and 5/6 on each axis.
    const struct {
        float cx, cy, a, b;
        std::uint8_t coverage;
    } cases[] = {
        {0.5f, 0.5f, 0.2f, 0.2f, 28},           // one point inside
        {0.5f, 5.0f / 6, 0.4f, 0.1f, 85},       // three
        {2.0f / 3, 2.0f / 3, 0.3f, 0.3f, 113},  // four
        {0.5f, 0.5f, 0.6f, 0.6f, 255},          // all nine
    };
    for (const auto& c : cases) {
        FZLayer layer;
        ASSERT_EQ(layer.Create(0, 0, 2, 2, 0.0f), FZResult::Ok);
        FZDome dome;
        dome.Set(c.cx, c.cy, c.a, c.b, 2.0f, 0.0f);
        RasterizeShape(layer, dome);
        EXPECT_EQ(layer.coverage[0][0], c.coverage) << int{c.coverage};
        EXPECT_FLOAT_EQ(layer.depth[0][0], 2.0f);
        EXPECT_EQ(layer.coverage[1][1], 0);
    }
}

TEST(ShapeRaster, HigherSurfaceWinsOverEarlierDrawing)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 3, 3, 0.0f), FZResult::Ok);
    // Each disc is drawn over the last; the depth is the highest so far.
    for (const auto& [height, kept] : {std::pair{4.0f, 4.0f}, {2.0f, 4.0f}, {6.0f, 6.0f}}) {
        FZRoundedDisc disc;
        disc.Set(1.5f, 1.5f, 0.0f, 10.0f, height);
        RasterizeShape(layer, disc);
        EXPECT_FLOAT_EQ(layer.depth[1][1], kept) << "after the disc of height " << height;
    }
    EXPECT_EQ(layer.coverage[1][1], 255);
}

TEST(ShapeRaster, WildParametersStayInsideTheLayer)
{
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float values[] = {nan, inf, -inf, 3e38f, -3e38f, 1e9f, 0.0f, -5.0f, 2.5f};
    for (const int size : {1, 7})
        for (int n = 0; n <= 4; ++n)
            for (float cx : values)
                for (float r : values) {
                    FZLayer layer;
                    ASSERT_EQ(layer.Create(0, 0, size, size, 0.0f), FZResult::Ok);
                    DrawSampleShape(layer, n, cx, 2.0f, r);
                    DrawSampleShape(layer, n, 2.0f, cx, r);
                    AddDimple(layer, cx, 1.0f, r, cx);
                    FlattenTop(layer, r);
                }

    // Outlines without extent hold no point, nor do rings without width.
    float z = 0.0f;
    FZRoundedDisc plate;
    plate.Set(0.0f, 0.0f, 0.0f, nan, 1.0f);
    EXPECT_FALSE(plate.HeightAt(0.0f, 0.0f, z));
    FZDome dome;
    dome.Set(0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f);
    EXPECT_FALSE(dome.HeightAt(0.0f, 0.0f, z));
    FZTorus ring;
    ring.Set(0.0f, 0.0f, 1.0f, 2.0f, 2.0f, 3.0f);
    EXPECT_FALSE(ring.HeightAt(2.0f, 0.0f, z));

    // A layer without rows is left alone.
    FZLayer bare;
    DrawSampleShape(bare, 1, 0.0f, 0.0f, 10.0f);
    FlattenTop(bare, 0.5f);
    EXPECT_TRUE(bare.coverage.empty());
}

namespace {

// What drawing gives pixel (px, py) of an empty layer, point by point
// through HeightAt: the coverage of the points inside and their mean height.
template <typename Shape>
::testing::AssertionResult DrawnAsItsPoints(const FZLayer& layer, const Shape& shape, int px, int py)
{
    float xs[3];
    float ys[3];
    FZSampleOffsets(px, xs);
    FZSampleOffsets(py, ys);
    float count = 0.0f;
    float sum = 0.0f;
    for (const float y : ys)
        for (const float x : xs) {
            float z = 0.0f;
            if (shape.HeightAt(x, y, z)) {
                count += 1.0f;
                sum += z;
            }
        }
    const auto coverage = static_cast<std::uint8_t>(FZTruncateClamped(count * (1.0f / 9.0f) * 255.0f, 0, 255));
    const float depth = count > 0.0f ? sum * (1.0f / count) : 0.0f;
    if (layer.coverage[py][px] == coverage && std::memcmp(&layer.depth[py][px], &depth, sizeof depth) == 0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixel (" << px << ", " << py << ") has " << int{layer.coverage[py][px]}
                                         << " at " << layer.depth[py][px] << ", its points give " << int{coverage}
                                         << " at " << depth;
}

template <typename Shape>
void ExpectDrawnAsItsPoints(const Shape& shape)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 300, 90, 0.0f), FZResult::Ok);
    RasterizeShape(layer, shape);
    for (int py = 0; py < layer.height; ++py)
        for (int px = 0; px < layer.width; ++px)
            ASSERT_TRUE(DrawnAsItsPoints(layer, shape, px, py));
}

}  // namespace

TEST(ShapeRaster, EveryPixelIsTheMeanOfItsPoints)
{
    // Rows are drawn a piece at a time, and points the outline is known to
    // hold or miss are not tested; neither may change a pixel. Centres off
    // the grid, outlines cut by the layer's edges, rims and rings thin and
    // wide.
    const struct {
        float cx, cy, r;
    } places[] = {{150.0f, 45.0f, 40.0f}, {37.3f, 61.7f, 55.5f}, {290.2f, 3.1f, 130.0f}, {151.0f, 44.5f, 0.7f},
                  {-20.0f, 45.0f, 60.0f}, {150.5f, 45.5f, 400.0f}};
    for (const auto& p : places) {
        SCOPED_TRACE(::testing::Message() << "centre (" << p.cx << ", " << p.cy << "), size " << p.r);
        for (const float rim : {0.0f, 0.25f, 1.0f, 1.5f}) {
            FZRoundedDisc plate;
            plate.Set(p.cx, p.cy, 1.0f, p.r, p.r * rim);
            ExpectDrawnAsItsPoints(plate);
        }
        FZDome dome;
        dome.Set(p.cx, p.cy, p.r, p.r * 0.6f, 2.0f, p.r / 2);
        ExpectDrawnAsItsPoints(dome);
        for (const float inner : {0.0f, 0.5f, 0.95f}) {
            FZTorus ring;
            ring.Set(p.cx, p.cy, 0.5f, p.r, p.r * inner, p.r / 4);
            ExpectDrawnAsItsPoints(ring);
        }
    }
}

TEST(ShapeFinishing, DimpleLowersEachPixelByTheMeanOfItsSixteenPoints)
{
    // Rows are worked a piece at a time and pixels beyond the radius are not
    // sampled; each covered pixel must still be the mean of its sixteen
    // points, each either lowered by the bowl or at the depth, and a depth
    // of -0 beyond the radius becomes +0 as that sum makes it.
    const struct {
        float cx, cy, radius, depth;
    } dimples[] = {{150.0f, 45.0f, 33.3f, 7.0f}, {12.7f, 80.2f, 60.0f, 2.5f}, {299.5f, 0.5f, 0.6f, 1.0f},
                   {150.25f, 45.75f, 500.0f, 40.0f}};
    for (const auto& d : dimples) {
        FZLayer layer;
        ASSERT_EQ(layer.Create(0, 0, 300, 90, 0.0f), FZResult::Ok);
        for (int y = 0; y < 90; ++y)
            for (int x = 0; x < 300; ++x) {
                layer.coverage[y][x] = (x * 7 + y) % 11 == 0 ? 0 : 255;
                layer.depth[y][x] = (x + y) % 13 == 0 ? -0.0f : 10.0f + 0.01f * x;
            }
        const FZRaster<float> depthBefore = layer.depth;
        const FZRaster<std::uint8_t> coverageBefore = layer.coverage;
        AddDimple(layer, d.cx, d.cy, d.radius, d.depth);
        FZSmoothStep bowl;
        bowl.Setup(0.0f, -d.depth, d.radius, 0.0f);
        for (int y = 0; y < 90; ++y)
            for (int x = 0; x < 300; ++x) {
                const float zp = depthBefore[y][x];
                float expected = zp;
                const auto reaches = [&](int p, float c) {
                    return p >= static_cast<int>(static_cast<double>(c) - d.radius)
                           && p <= static_cast<int>(static_cast<double>(c) + d.radius);
                };
                const bool inBox = reaches(x, d.cx) && reaches(y, d.cy);
                if (coverageBefore[y][x] != 0 && inBox) {
                    double sum = 0.0;
                    for (int j = 0; j < 4; ++j)
                        for (int i = 0; i < 4; ++i) {
                            const double sx = x + (i + 0.5) * 0.25 - d.cx;
                            const double sy = y + (j + 0.5) * 0.25 - d.cy;
                            const float s2 = static_cast<float>(sx * sx + sy * sy);
                            const double distance = std::sqrt(static_cast<double>(s2));
                            const double radiusSquared = static_cast<double>(d.radius) * d.radius;
                            sum += s2 < radiusSquared ? static_cast<float>(zp + bowl.Evaluate(distance)) : zp;
                        }
                    expected = static_cast<float>(sum * (1.0 / 16.0));
                }
                ASSERT_EQ(std::memcmp(&layer.depth[y][x], &expected, sizeof expected), 0)
                    << "pixel (" << x << ", " << y << ") is " << layer.depth[y][x] << ", not " << expected;
            }
    }
}

// The sample keeps rows only over the pixels its shape can reach; drawn and
// prepared there, every shape must come out as it does in rows over the
// whole frame, and every covered pixel's neighbours must be held (the
// normals read them).
TEST(SampleShapeRows, HoldWhatEveryShapeCoversAndItsNeighbours)
{
    const struct {
        std::int32_t w;
        std::int32_t h;
    } frames[] = {{120, 120}, {97, 61}, {61, 97}, {301, 160}, {7, 5}};
    for (const auto& f : frames) {
        const float r = static_cast<float>(f.h / 2.3);
        const float cx = static_cast<float>(f.w * 0.5);
        const float cy = static_cast<float>(f.h * 0.5);
        for (int n = 1; n <= 4; ++n) {
            SCOPED_TRACE(::testing::Message() << f.w << "x" << f.h << " shape " << n);
            FZLayer full;
            FZLayer held;
            ASSERT_EQ(full.Create(0, 0, f.w, f.h, 10.0f), FZResult::Ok);
            ASSERT_EQ(held.Create(0, 0, f.w, f.h, 10.0f, SampleShapeRows(cx, cy, r, f.w, f.h)), FZResult::Ok);
            DrawSampleShape(full, n, cx, cy, r);
            DrawSampleShape(held, n, cx, cy, r);
            ASSERT_EQ(PrepareSurface(full), FZResult::Ok);
            ASSERT_EQ(PrepareSurface(held), FZResult::Ok);
            EXPECT_EQ((std::array{full.depthMin, full.depthMax}), (std::array{held.depthMin, held.depthMax}));
            for (std::int32_t y = 0; y < f.h; ++y)
                for (std::int32_t x = 0; x < f.w; ++x) {
                    ASSERT_EQ(full.coverage[y][x], held.CoverageAt(x, y)) << x << "," << y;
                    if (full.coverage[y][x] == 0)
                        continue;
                    for (std::int32_t ny = FZMax(y - 1, 0); ny <= FZMin(y + 1, f.h - 1); ++ny) {
                        const FZSpan row = held.StoredRow(ny);
                        ASSERT_TRUE(row.first <= FZMax(x - 1, 0) && FZMin(x + 1, f.w - 1) <= row.last) << x << "," << y;
                    }
                    ASSERT_EQ(std::memcmp(&full.depth[y][x], &held.depth[y][x], sizeof(float)), 0) << x << "," << y;
                    const FZPackedVector a = full.normals[y][x];
                    const FZPackedVector b = held.normals[y][x];
                    ASSERT_EQ((std::array{a.x, a.y, a.z}), (std::array{b.x, b.y, b.z})) << x << "," << y;
                }
        }
    }
}

TEST(SampleShapeRows, ParametersThatAreNotNumbersHoldNothing)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(SampleShapeRows(nan, 5.0f, 3.0f, 10, 10), nullptr);
    EXPECT_EQ(SampleShapeRows(5.0f, 5.0f, std::numeric_limits<float>::infinity(), 10, 10), nullptr);
    // A shape wholly beside the frame holds no pixel.
    const auto beside = SampleShapeRows(-100.0f, 5.0f, 3.0f, 10, 10);
    EXPECT_TRUE(beside == nullptr || beside->Bounds().IsEmpty());
}
