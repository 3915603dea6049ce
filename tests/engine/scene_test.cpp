#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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


void ExpectRect(const FZLayer& layer, int x, int y, int width, int height)
{
    EXPECT_EQ(layer.x, x);
    EXPECT_EQ(layer.y, y);
    EXPECT_EQ(layer.width, width);
    EXPECT_EQ(layer.height, height);
}

// Counts the pixels of a layer whose coverage and depth are as given.
int CountPixels(const FZLayer& layer, std::uint8_t coverage, float depth)
{
    int n = 0;
    for (int y = 0; y < layer.height; ++y)
        for (int x = 0; x < layer.width; ++x)
            n += layer.coverage[y][x] == coverage && layer.depth[y][x] == depth;
    return n;
}

}  // namespace

TEST(Scene, LayerListOperations)
{
    FZScene scene;
    ASSERT_EQ(scene.SetUpFrame(160, 120, kWhite), FZResult::Ok);

    ASSERT_EQ(scene.AddFullFrameLayer(), FZResult::Ok);
    const FZLayer* added = scene.LayerAt(1);
    ASSERT_NE(added, nullptr);
    EXPECT_FLOAT_EQ(added->baseDepth, 10.0f);
    ExpectRect(*added, 0, 0, 160, 120);
    EXPECT_EQ(CountPixels(*added, 0, 0.0f), 160 * 120);
    EXPECT_EQ(added->GetColorSource(), 1);

    FZLayer small;
    ASSERT_EQ(small.Create(3, 4, 5, 6, 2.5f), FZResult::Ok);
    EXPECT_EQ(scene.InsertLayer(small, -1), FZResult::Ok);
    ASSERT_EQ(scene.LayerCount(), 3);
    EXPECT_EQ(scene.LayerAt(0)->width, 5);
    EXPECT_EQ(scene.LayerAt(0)->x, 3);
    EXPECT_EQ(scene.LayerAt(1)->width, 160);
    EXPECT_NE(scene.LayerAt(0), &small);

    EXPECT_EQ(scene.InsertLayer(small, 3), FZResult::BadParameter);
    EXPECT_EQ(scene.InsertLayer(small, -2), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 3);
    scene.AddLayer(small);
    EXPECT_EQ(scene.AddLayerRect(1, 2, 3, 4), FZResult::Ok);
    EXPECT_EQ(scene.LayerAt(4)->y, 2);

    scene.RemoveLayer(0);
    EXPECT_EQ(scene.LayerCount(), 4);
    EXPECT_EQ(scene.LayerAt(0)->width, 160);
    scene.RemoveLayer(4);
    scene.RemoveLayer(-1);
    EXPECT_EQ(scene.LayerCount(), 4);
    EXPECT_EQ(scene.LayerAt(4), nullptr);
    EXPECT_EQ(scene.LayerAt(-1), nullptr);
}


TEST(Scene, OddFrameSizes)
{
    FZScene scene;
    const float wild[3] = {std::nanf(""), -1e30f, std::numeric_limits<float>::infinity()};
    ASSERT_EQ(scene.SetUpFrame(1, 1, wild), FZResult::Ok);
    EXPECT_EQ(scene.AddFullFrameLayer(), FZResult::Ok);
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

    // Half over half at the same depth: the shared part goes to the sample.
    EXPECT_EQ(layer.CompositeSample(1, 0, 2.0f, 128, red), 2);
    EXPECT_EQ(layer.CompositeSample(1, 0, 2.0f, 128, green), 3);
    EXPECT_EQ(layer.coverage[0][1], 191);
    EXPECT_FLOAT_EQ(layer.depth[0][1], 2.0f);
    EXPECT_EQ(layer.colors[0][1].g, 170);  // 0.50196 / 0.75196 of green
    EXPECT_EQ(layer.colors[0][1].r, 84);   // 0.24999 / 0.75196 of red

    // A thin sample behind a half-covered pixel only fills the uncovered part.
    EXPECT_EQ(layer.CompositeSample(2, 0, 8.0f, 128, red), 2);
    EXPECT_EQ(layer.CompositeSample(2, 0, 0.0f, 255, green), 3);
    EXPECT_EQ(layer.coverage[0][2], 255);
    EXPECT_NEAR(layer.depth[0][2], 8.0f * 128 / 255, 1e-5);

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

    light.SetDirectional(0.5f, down, rgb);
    float c[3];
    FZPackedVector d;
    light.Evaluate(1.0f, 2.0f, 3.0f, c, d);
    EXPECT_TRUE(c[0] == 0.25f && c[1] == 0.5f && c[2] == 0.125f);
    EXPECT_EQ(d.z, -30000);
    light.type = 2;
    light.Evaluate(1.0f, 2.0f, 3.0f, c, d);
    EXPECT_FLOAT_EQ(c[0] + c[1] + c[2], 0.0f);

    // Directions that cannot be normalised give a defined vector.
    const float inf = std::numeric_limits<float>::infinity();
    const float wild[3] = {inf, std::nanf(""), -inf};
    light.SetDirectional(1.0f, wild, rgb);
    EXPECT_EQ(light.type, 1);
}

