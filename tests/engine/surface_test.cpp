#include <gtest/gtest.h>

#include <cmath>

#include "engine/shading/surface.h"

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

TEST(Surface, WildDepths)
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

}
