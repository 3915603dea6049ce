#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "engine/shading/surface.h"

namespace {

// A layer of w x h whose every pixel is covered with the depth f(x, y).
template <typename F>
void MakeHeightField(FZLayer& layer, std::int32_t w, std::int32_t h, F f)
{
    ASSERT_EQ(layer.Create(0, 0, w, h, 0.0f, FZRowLayout::Rectangle(0, 0, w, h)), FZResult::Ok);
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

}  // namespace

TEST(Surface, DepthRangeSkipsUncoveredPixelsAndRefusesRectanglesOutside)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 3, 2, 0.0f, FZRowLayout::Rectangle(0, 0, 3, 2)), FZResult::Ok);
    layer.coverage[0][0] = 255;
    layer.depth[0][0] = 4.0f;
    layer.coverage[1][2] = 51;
    layer.depth[1][2] = -1.0f;
    layer.depth[1][1] = 100.0f;  // uncovered

    // Uncovered pixels count for nothing; rectangles reaching past the
    // layer are clipped, those wholly outside refused.
    float lo = 0.0f, hi = 0.0f;
    EXPECT_EQ(DepthRange(layer, FZRect(-5, -5, 50, 50), lo, hi), FZResult::Ok);
    EXPECT_FLOAT_EQ(lo, -1.0f);
    EXPECT_FLOAT_EQ(hi, 4.0f);
    EXPECT_EQ(DepthRange(layer, FZRect(3, 0, 9, 1), lo, hi), FZResult::BadParameter);
    EXPECT_EQ(DepthRange(layer, FZRect(0, 2, 2, 9), lo, hi), FZResult::BadParameter);
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

TEST(Surface, LevelGroundIsLevelWhateverLiesBesideIt)
{
    // Uncovered pixels count for nothing, however deep they are; one bump
    // tilts its eight neighbours and no pixel further away.
    FZLayer layer;
    MakeHeightField(layer, 300, 5, [](int x, int y) { return x == 200 && y == 3 ? 2.75f : 2.5f; });
    layer.coverage[0][150] = 0;
    layer.depth[0][150] = 100.0f;
    layer.coverage[2][40] = 1;
    ASSERT_EQ(PrepareSurface(layer), FZResult::Ok);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 300; ++x) {
            const bool tilted = std::abs(x - 200) == 1 || std::abs(y - 3) == 1;
            if (layer.coverage[y][x] == 0)
                continue;
            if (std::abs(x - 200) <= 1 && std::abs(y - 3) <= 1) {
                EXPECT_EQ(layer.normals[y][x].z < 30000, tilted) << x << ", " << y;
            } else {
                EXPECT_TRUE(NormalIs(layer, x, y, 0, 0, 30000));
            }
        }
    }
    EXPECT_TRUE(NormalIs(layer, 150, 0, 0, 0, 0));
}

namespace {

// The normal of an inner pixel whose neighbours are all covered, each step
// of the sums rounded from double to float.
FZPackedVector SobelNormal(const FZLayer& layer, int x, int y)
{
    static constexpr int kx[3][3] = {{-1, 0, 1}, {-2, 0, 2}, {-1, 0, 1}};
    static constexpr int ky[3][3] = {{-1, -2, -1}, {0, 0, 0}, {1, 2, 1}};
    const double zc = layer.depth[y][x];
    float sx = 0.0f, sy = 0.0f, wx = 0.0f, wy = 0.0f;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) {
            const int m = layer.coverage[y + r - 1][x + c - 1];
            const float d = static_cast<float>((layer.depth[y + r - 1][x + c - 1] - zc) * m);
            sx = static_cast<float>(sx + static_cast<double>(kx[r][c]) * d);
            sy = static_cast<float>(sy + static_cast<double>(ky[r][c]) * d);
            wx = static_cast<float>(wx + static_cast<double>(std::abs(kx[r][c])) * m);
            wy = static_cast<float>(wy + static_cast<double>(std::abs(ky[r][c])) * m);
        }
    FZPackedVector n;
    n.SetFloats(static_cast<float>(-sx / static_cast<double>(wx)), static_cast<float>(-sy / static_cast<double>(wy)),
                1.0f, true);
    return n;
}

}  // namespace

TEST(Surface, SteepSlopesKeepTheirRoundingSteps)
{
    // Around pixel (20, 1) the slope across sums -2^127 and twice 2^127,
    // which is beyond the float range while the sum is not, and comes back
    // to exactly 0: the pixel is level.
    const float p126 = std::ldexp(1.0f, 126);
    FZLayer layer;
    MakeHeightField(layer, 40, 3, [](int, int) { return 0.0f; });
    const struct {
        int x, y;
        float z;
    } steep[] = {{19, 0, p126}, {21, 0, -p126}, {19, 1, -2.0f * p126}, {21, 1, -p126}};
    for (const auto& p : steep) {
        layer.coverage[p.y][p.x] = 1;
        layer.depth[p.y][p.x] = p.z;
    }
    layer.coverage[1][10] = 77;
    layer.depth[1][11] = 1e-3f;
    ASSERT_EQ(EstimateNormals(layer, FZRect(0, 0, 39, 2)), FZResult::Ok);
    EXPECT_TRUE(NormalIs(layer, 20, 1, 0, 0, 30000));
    for (int x = 1; x < 39; ++x) {
        const FZPackedVector n = SobelNormal(layer, x, 1);
        ASSERT_TRUE(NormalIs(layer, x, 1, n.x, n.y, n.z));
    }
}

TEST(Surface, InnerNormalsFollowTheirRoundingStepsOnAnyDepths)
{
    // Neighbourhoods whose depths lie within a factor of 2 of each other
    // take a shorter way through the arithmetic, the others the full one;
    // either must give every packed component as each step rounded from
    // double gives it. Rows of close and of wildly different depths, with
    // thin and full coverage.
    std::mt19937 random(20240607u);
    std::uniform_real_distribution<float> close(100.0f, 190.0f);
    std::uniform_real_distribution<float> exponent(-12.0f, 12.0f);
    std::uniform_int_distribution<int> thin(1, 255);
    FZLayer layer;
    MakeHeightField(layer, 400, 9, [&](int, int y) {
        return y < 4 ? close(random) : std::exp2(exponent(random));
    });
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 400; ++x)
            if (x % 3 == 0)
                layer.coverage[y][x] = static_cast<std::uint8_t>(thin(random));
    ASSERT_EQ(EstimateNormals(layer, FZRect(0, 0, 399, 8)), FZResult::Ok);
    for (int y = 1; y < 8; ++y)
        for (int x = 1; x < 399; ++x) {
            const FZPackedVector n = SobelNormal(layer, x, y);
            ASSERT_TRUE(NormalIs(layer, x, y, n.x, n.y, n.z));
        }
}
