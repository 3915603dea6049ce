#include <gtest/gtest.h>

#include <cmath>

#include "engine/shading/surface.h"
#include "engine/support/failing_allocations.h"

namespace {

// A layer of w x h whose every pixel is covered with the depth f(x, y).
template <typename F>
void MakeHeightField(FZLayer& layer, std::int32_t w, std::int32_t h, F f)
{
    ASSERT_EQ(layer.Create(0, 0, w, h, 0.0f), FZResult::Ok);
    for (std::int32_t y = 0; y < h; ++y)
        for (std::int32_t x = 0; x < w; ++x) {
            layer.coverage[y][x] = 255;
            layer.depth[y][x] = f(x, y);
        }
}

::testing::AssertionResult NormalIs(const FZLayer& layer, int x, int y, int nx, int ny, int nz)
{
    const FZPackedVector& n = layer.normals[y][x];
    if (n.x == nx && n.y == ny && n.z == nz)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "normal at (" << x << ", " << y << ") is (" << n.x << ", " << n.y
                                         << ", " << n.z << ")";
}

// The covered bounds and the depth range the preparation recorded.
void ExpectPrepared(const FZLayer& layer, int x0, int y0, int x1, int y1, float depthMax)
{
    EXPECT_EQ(layer.boundsX0, x0);
    EXPECT_EQ(layer.boundsY0, y0);
    EXPECT_EQ(layer.boundsX1, x1);
    EXPECT_EQ(layer.boundsY1, y1);
    EXPECT_FLOAT_EQ(layer.depthMin, 0.0f);
    EXPECT_FLOAT_EQ(layer.depthMax, depthMax);
}

}  // namespace

TEST(Surface, EmptyLayerKeepsItsDepths)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 4, 3, 0.0f), FZResult::Ok);
    layer.depth[1][2] = 5.0f;
    layer.depthMax = 9.0f;
    FZRect bounds;
    EXPECT_FALSE(CoverageBounds(layer, bounds));
    ASSERT_EQ(PrepareSurface(layer), FZResult::Ok);
    EXPECT_FLOAT_EQ(layer.depth[1][2], 5.0f);
    ExpectPrepared(layer, 0, 0, 3, 2, 0.0f);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_TRUE(NormalIs(layer, x, y, 0, 0, 0));

    // A layer without rows at all.
    FZLayer bare;
    EXPECT_EQ(PrepareSurface(bare), FZResult::Ok);
    EXPECT_FALSE(CoverageBounds(bare, bounds));
}

TEST(Surface, SinglePixelIsFlatAtDepthZero)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 5, 4, 0.0f), FZResult::Ok);
    layer.coverage[2][3] = 40;
    layer.depth[2][3] = 3.5f;
    layer.depth[0][0] = -8.0f;  // uncovered: neither counted nor shifted
    ASSERT_EQ(PrepareSurface(layer), FZResult::Ok);
    EXPECT_FLOAT_EQ(layer.depth[2][3], 0.0f);
    EXPECT_FLOAT_EQ(layer.depth[0][0], -8.0f);
    ExpectPrepared(layer, 3, 2, 3, 2, 0.0f);
    EXPECT_TRUE(NormalIs(layer, 3, 2, 0, 0, 30000));
}

TEST(Surface, SlopesBecomeTiltedNormals)
{
    // Rising by 0.5 a column: every pixel, those along the edges included,
    // sees the slope (-0.5, 0, 1) normalised. Only the corners, where the
    // block is lopsided both ways, lean a little across the slope.
    FZLayer ramp;
    MakeHeightField(ramp, 5, 5, [](int x, int) { return 2.0f + 0.5f * x; });
    ASSERT_EQ(PrepareSurface(ramp), FZResult::Ok);
    EXPECT_FLOAT_EQ(ramp.depth[3][0], 0.0f);
    EXPECT_FLOAT_EQ(ramp.depth[3][4], 2.0f);
    ExpectPrepared(ramp, 0, 0, 4, 4, 2.0f);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            if ((x % 4) + (y % 4) != 0) {
                EXPECT_TRUE(NormalIs(ramp, x, y, -13416, 0, 26832));
            }
    EXPECT_TRUE(NormalIs(ramp, 0, 0, -13269, -4423, 26539));

    // A second preparation finds the minimum already at 0.
    ASSERT_EQ(PrepareSurface(ramp), FZResult::Ok);
    EXPECT_FLOAT_EQ(ramp.depth[3][4], 2.0f);

    // Rising by 0.25 a row tilts toward -y.
    FZLayer rows;
    MakeHeightField(rows, 3, 4, [](int, int y) { return 0.25f * y; });
    ASSERT_EQ(PrepareSurface(rows), FZResult::Ok);
    EXPECT_TRUE(NormalIs(rows, 1, 1, 0, -7276, 29104));
}

TEST(Surface, OnlyCoveredNeighboursCount)
{
    // A raised plateau on an uncovered floor: no false cliff at its edge.
    FZLayer plateau;
    ASSERT_EQ(plateau.Create(0, 0, 6, 6, 0.0f), FZResult::Ok);
    for (int y = 2; y < 4; ++y)
        for (int x = 2; x < 4; ++x) {
            plateau.coverage[y][x] = 255;
            plateau.depth[y][x] = 10.0f;
        }
    ASSERT_EQ(PrepareSurface(plateau), FZResult::Ok);
    ExpectPrepared(plateau, 2, 2, 3, 3, 0.0f);
    for (int y = 2; y < 4; ++y)
        for (int x = 2; x < 4; ++x)
            EXPECT_TRUE(NormalIs(plateau, x, y, 0, 0, 30000));
    EXPECT_TRUE(NormalIs(plateau, 1, 1, 0, 0, 0));

    // A thin neighbour counts less: its step is weighted by its coverage in
    // the sum and in the weights alike, so the slope stays that of the step.
    FZLayer thin;
    MakeHeightField(thin, 3, 1, [](int x, int) { return x == 2 ? 3.0f : 1.0f; });
    thin.coverage[0][2] = 51;
    ASSERT_EQ(PrepareSurface(thin), FZResult::Ok);
    // Sx = 2 * 2 * 51, Wx = 2 * 255 + 2 * 51: slope 204 / 612.
    float nx = 0.0f, ny = 0.0f, nz = 0.0f;
    thin.normals[0][1].GetFloats(nx, ny, nz);
    EXPECT_NEAR(nx / nz, -204.0 / 612.0, 1e-3);
}

TEST(Surface, NormalsOnlyInsideTheRectangle)
{
    FZLayer layer;
    MakeHeightField(layer, 4, 4, [](int x, int) { return 1.0f * x; });
    ASSERT_EQ(PrepareSurface(layer, FZRect(1, 1, 2, 2)), FZResult::Ok);
    EXPECT_TRUE(NormalIs(layer, 1, 1, -21213, 0, 21213));
    EXPECT_TRUE(NormalIs(layer, 0, 0, 0, 0, 0));
    EXPECT_TRUE(NormalIs(layer, 3, 3, 0, 0, 0));
    // The depths were shifted over the whole layer all the same.
    EXPECT_FLOAT_EQ(layer.depth[3][3], 3.0f);
    EXPECT_EQ(EstimateNormals(layer, FZRect(10, 10, 20, 20)), FZResult::Ok);
}

TEST(Surface, DepthRangeAndOffset)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 3, 2, 0.0f), FZResult::Ok);
    layer.coverage[0][0] = 255;
    layer.depth[0][0] = 4.0f;
    layer.coverage[1][2] = 51;
    layer.depth[1][2] = -1.0f;
    layer.depth[1][1] = 100.0f;  // uncovered

    float lo = 0.0f, hi = 0.0f;
    EXPECT_EQ(DepthRange(layer, FZRect(-5, -5, 50, 50), lo, hi), FZResult::Ok);
    EXPECT_FLOAT_EQ(lo, -1.0f);
    EXPECT_FLOAT_EQ(hi, 4.0f);
    EXPECT_EQ(DepthRange(layer, FZRect(1, 0, 2, 0), lo, hi), FZResult::Ok);
    EXPECT_FLOAT_EQ(lo, 1e10f);
    EXPECT_FLOAT_EQ(hi, -1e10f);
    EXPECT_EQ(DepthRange(layer, FZRect(3, 0, 9, 1), lo, hi), FZResult::BadParameter);
    EXPECT_EQ(DepthRange(layer, FZRect(0, 2, 2, 9), lo, hi), FZResult::BadParameter);

    OffsetDepth(layer, 10.0f, 1);
    EXPECT_FLOAT_EQ(layer.depth[0][0], 14.0f);
    EXPECT_FLOAT_EQ(layer.depth[1][2], 1.0f);
    EXPECT_FLOAT_EQ(layer.depth[1][1], 100.0f);
    OffsetDepth(layer, 10.0f, 0);
    EXPECT_FLOAT_EQ(layer.depth[1][2], 11.0f);
    EXPECT_FLOAT_EQ(layer.depth[1][1], 100.0f);
}

TEST(Surface, WildDepthsAndOutOfMemory)
{
    FZLayer layer;
    MakeHeightField(layer, 3, 3, [](int x, int y) {
        return x == 1 && y == 1 ? std::nanf("") : (x == 0 ? INFINITY : -3e38f);
    });
    EXPECT_EQ(PrepareSurface(layer), FZResult::Ok);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x) {
            float nx, ny, nz;
            layer.normals[y][x].GetFloats(nx, ny, nz);
            EXPECT_LE(nx * nx + ny * ny + nz * nz, 1.0001f);
        }

    FZLayer all;
    MakeHeightField(all, 2, 2, [](int, int) { return std::nanf(""); });
    EXPECT_EQ(PrepareSurface(all), FZResult::Ok);

    FZLayer step;
    MakeHeightField(step, 3, 3, [](int x, int) { return 5.0f + x; });
    FZDeleteRows(step.normals, step.height);
    {
        FailingAllocations failing(0);
        EXPECT_EQ(PrepareSurface(step), FZResult::OutOfMemory);
    }
    // Bounds and the depth shift are done before the normals are needed.
    EXPECT_FLOAT_EQ(step.depth[0][0], 0.0f);
    ExpectPrepared(step, 0, 0, 2, 2, 2.0f);
    EXPECT_EQ(step.normals, nullptr);
    EXPECT_EQ(PrepareSurface(step), FZResult::Ok);
    EXPECT_TRUE(NormalIs(step, 1, 1, -21213, 0, 21213));
}
