#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "engine/scene.h"

namespace {

const float kWhite[3] = {1.0f, 1.0f, 1.0f};

FZColor Rgb(std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    FZColor c;
    c.SetBytes(r, g, b);
    return c;
}

bool SameColor(const FZColor& a, const FZColor& b) { return a.r == b.r && a.g == b.g && a.b == b.b; }

}  // namespace

// Every preview builds its layers through these calls (the goldens pin
// that); what is left are the indices outside the list.
TEST(Scene, LayerIndicesOutsideTheListChangeNothing)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(16, 12, kWhite), FZResult::Ok);
    scene.RemoveLayer(1);
    scene.RemoveLayer(-1);
    ASSERT_EQ(scene.LayerCount(), 1);
    EXPECT_EQ(scene.LayerAt(1), nullptr);
    EXPECT_EQ(scene.LayerAt(-1), nullptr);
}

TEST(Scene, OddFrameSizes)
{
    FZScene scene;
    const float wild[3] = {std::nanf(""), -1e30f, std::numeric_limits<float>::infinity()};
    ASSERT_EQ(scene.SetUpFrame(1, 1, wild), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 1, 1), FZResult::Ok);
    EXPECT_EQ(scene.LayerAt(1)->CompositeSample(0, 0, 1.0f, 255, Rgb(1, 2, 3)), 2);

    ASSERT_EQ(scene.SetUpFrame(0, 0, kWhite), FZResult::Ok);
    EXPECT_EQ(scene.LayerCount(), 1);
    EXPECT_EQ(scene.LayerAt(0)->width, 0);

    // Frames too large to hold are refused before anything is allocated.
    EXPECT_EQ(scene.SetUpFrame(100000, 100000, kWhite), FZResult::OutOfMemory);
    EXPECT_EQ(scene.LayerCount(), 0);
    ASSERT_EQ(scene.SetUpFrame(2, 2, kWhite), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 1, INT32_MAX), FZResult::OutOfMemory);
    EXPECT_EQ(scene.LayerCount(), 1);

    EXPECT_EQ(scene.SetUpFrame(-1, 5, kWhite), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 0);
    EXPECT_EQ(scene.width, 0);
    ASSERT_EQ(scene.Create(4, 4), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 3, -2), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 0);
}


TEST(Layer, CompositeSampleCodes)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 4, 4, 0.0f), FZResult::Ok);
    const FZColor red = Rgb(255, 0, 0);
    const FZColor green = Rgb(0, 255, 0);

    EXPECT_EQ(layer.CompositeSample(0, 0, 5.0f, 0, red), 0);
    EXPECT_EQ(layer.coverage[0][0], 0);
    EXPECT_EQ(layer.CompositeSample(0, 0, 5.0f, 255, red), 2);
    EXPECT_EQ(layer.coverage[0][0], 255);
    EXPECT_FLOAT_EQ(layer.depth[0][0], 5.0f);
    EXPECT_TRUE(SameColor(layer.colors[0][0], red));
    EXPECT_EQ(layer.CompositeSample(0, 0, 4.0f, 255, green), 1);
    EXPECT_EQ(layer.CompositeSample(0, 0, 9.0f, 0, green), 1);
    EXPECT_FLOAT_EQ(layer.depth[0][0], 5.0f);
    EXPECT_EQ(layer.CompositeSample(0, 0, 6.0f, 255, green), 2);
    EXPECT_TRUE(SameColor(layer.colors[0][0], green));

    // Outside the layer nothing is touched.
    EXPECT_EQ(layer.CompositeSample(4, 0, 1.0f, 255, red), 0);
    EXPECT_EQ(layer.CompositeSample(0, -1, 1.0f, 255, red), 0);

    // A NaN depth blends without harm.
    EXPECT_EQ(layer.CompositeSample(3, 0, 1.0f, 100, red), 2);
    EXPECT_EQ(layer.CompositeSample(3, 0, std::nanf(""), 100, red), 3);
    EXPECT_LE(layer.coverage[0][3], 255);
}


TEST(Light, SetDirectionalHoldsIntensityWithinRange)
{
    FZLight light;
    const float down[3] = {0.0f, 0.0f, -2.0f};
    const float rgb[3] = {0.5f, 1.0f, 0.25f};
    light.SetDirectional(1.5f, down, rgb);
    EXPECT_FLOAT_EQ(light.intensity, 1.0f);
    EXPECT_EQ(light.direction.z, -30000);
    light.SetDirectional(-0.2f, down, rgb);
    EXPECT_FLOAT_EQ(light.intensity, 0.0f);
    light.SetDirectional(std::nanf(""), down, rgb);
    EXPECT_FLOAT_EQ(light.intensity, 0.0f);

    float c[3];
    FZPackedVector d;
    light.type = 2;
    light.Evaluate(1.0f, 2.0f, 3.0f, c, d);
    EXPECT_FLOAT_EQ(c[0] + c[1] + c[2], 0.0f);

    // Directions that cannot be normalised give a defined vector.
    const float inf = std::numeric_limits<float>::infinity();
    const float wild[3] = {inf, std::nanf(""), -inf};
    light.SetDirectional(1.0f, wild, rgb);
    EXPECT_EQ(light.type, 1);
}


// Rows of different spans share one block: every pixel held has a place of
// its own, and the rectangle around them is the bounds.
TEST(RowLayout, GivesEveryHeldPixelItsOwnValue)
{
    const struct {
        std::int32_t y0;
        std::vector<FZSpan> spans;
        FZRect bounds;
        std::size_t pixels;
    } cases[] = {
        {0, {{0, 3}, {0, 3}}, FZRect(0, 0, 3, 1), 8},
        {2, {{5, 6}, {1, 9}, {4, 4}}, FZRect(1, 2, 9, 4), 12},
        {1, {{3, 2}, {7, 8}, {0, -1}}, FZRect(7, 2, 8, 2), 2},  // empty rows
        {0, {{-4, 1}}, FZRect(0, 0, 1, 0), 2},                  // no column below 0
        {0, {{1, 0}}, FZRect(), 0},
    };
    for (const auto& c : cases) {
        const auto layout = std::make_shared<const FZRowLayout>(c.y0, c.spans);
        const FZRect& b = layout->Bounds();
        EXPECT_EQ((std::array{b.x0, b.y0, b.x1, b.y1}), (std::array{c.bounds.x0, c.bounds.y0, c.bounds.x1, c.bounds.y1}));
        FZRaster<std::int32_t> raster(layout);
        EXPECT_EQ(raster.empty(), c.pixels == 0);
        std::int32_t id = 0;
        for (std::int32_t y = b.y0; y <= b.y1; ++y)
            for (std::int32_t x = raster.Row(y).first; x <= raster.Row(y).last; ++x)
                raster[y][x] = ++id;
        EXPECT_EQ(static_cast<std::size_t>(id), c.pixels);
        id = 0;
        for (std::int32_t y = b.y0; y <= b.y1; ++y)
            for (std::int32_t x = raster.Row(y).first; x <= raster.Row(y).last; ++x)
                EXPECT_EQ(raster[y][x], ++id) << x << "," << y;
        EXPECT_TRUE(raster.Row(c.y0 - 1).Empty());
        EXPECT_TRUE(raster.Row(c.y0 + static_cast<std::int32_t>(c.spans.size())).Empty());
    }
}

// Pixels outside a layer's rows are uncovered, and stay so.
TEST(RowLayout, PixelsALayerDoesNotHoldStayUncovered)
{
    FZLayer layer;
    const auto rows = std::make_shared<const FZRowLayout>(1, std::vector<FZSpan>{{2, 3}, {1, 4}});
    ASSERT_EQ(layer.Create(0, 0, 6, 4, 0.0f, rows), FZResult::Ok);
    layer.FillDepth(2.0f);
    EXPECT_EQ(layer.CoverageAt(2, 1), 255);
    EXPECT_EQ(layer.CoverageAt(1, 1), 0);
    EXPECT_EQ(layer.CoverageAt(4, 2), 255);
    EXPECT_EQ(layer.CoverageAt(4, 0), 0);
    EXPECT_EQ(layer.CompositeSample(5, 2, 1.0f, 255, Rgb(1, 2, 3)), 0);
    EXPECT_EQ(layer.CompositeSample(0, 3, 1.0f, 255, Rgb(1, 2, 3)), 0);
    EXPECT_EQ(layer.CompositeSample(1, 2, 3.0f, 255, Rgb(1, 2, 3)), 2);
    EXPECT_EQ(layer.CoverageAt(5, 2), 0);

    const auto beyond = std::make_shared<const FZRowLayout>(3, std::vector<FZSpan>{{0, 1}, {0, 1}});
    EXPECT_EQ(layer.Create(0, 0, 6, 4, 0.0f, beyond), FZResult::BadParameter);
    EXPECT_EQ(layer.width, 0);
}

// A flat layer keeps no rows until something needs them; then it holds
// what it stood for.
TEST(FlatLayer, TakesTheRowsItStandsFor)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(7, 5, kWhite), FZResult::Ok);
    FZLayer& ground = *scene.LayerAt(0);
    ASSERT_TRUE(ground.IsFlat());
    EXPECT_TRUE(ground.coverage.empty());
    ground.FillDepth(1.5f);
    ground.FillChecker(2, 3, Rgb(200, 0, 0), Rgb(0, 0, 90));
    EXPECT_TRUE(ground.IsFlat());
    EXPECT_EQ(ground.CoverageAt(6, 4), 255);
    ASSERT_EQ(ground.MakeRows(), FZResult::Ok);
    EXPECT_FALSE(ground.IsFlat());
    for (std::int32_t y = 0; y < 5; ++y)
        for (std::int32_t x = 0; x < 7; ++x) {
            EXPECT_EQ(ground.coverage[y][x], 255);
            EXPECT_EQ(ground.depth[y][x], 1.5f);
            const bool odd = (x / 2 + y / 3) % 2 == 1;
            EXPECT_TRUE(SameColor(ground.colors[y][x], odd ? Rgb(200, 0, 0) : Rgb(0, 0, 90))) << x << "," << y;
        }
}
