#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "engine/scene.h"

namespace {

const float kWhiteBackground[3] = {1.0f, 1.0f, 1.0f};

}  // namespace

TEST(Scene, OddFrameSizesAndIndices)
{
    FZScene scene;
    const float wild[3] = {std::nanf(""), -1e30f, std::numeric_limits<float>::infinity()};
    ASSERT_EQ(scene.SetUpFrame(1, 1, wild), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 1, 1, FZRowLayout::Rectangle(0, 0, 1, 1)), FZResult::Ok);

    ASSERT_EQ(scene.SetUpFrame(0, 0, kWhiteBackground), FZResult::Ok);
    EXPECT_EQ(scene.LayerCount(), 1);
    EXPECT_EQ(scene.LayerAt(0)->width, 0);

    // Frames too large to hold are refused before anything is allocated.
    EXPECT_EQ(scene.SetUpFrame(100000, 100000, kWhiteBackground), FZResult::OutOfMemory);
    EXPECT_EQ(scene.LayerCount(), 0);
    ASSERT_EQ(scene.SetUpFrame(2, 2, kWhiteBackground), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 1, INT32_MAX, nullptr), FZResult::OutOfMemory);
    // Indices outside the list change nothing.
    scene.RemoveLayer(1);
    scene.RemoveLayer(-1);
    EXPECT_EQ(scene.LayerCount(), 1);
    EXPECT_EQ(scene.LayerAt(1), nullptr);
    EXPECT_EQ(scene.LayerAt(-1), nullptr);

    EXPECT_EQ(scene.SetUpFrame(-1, 5, kWhiteBackground), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 0);
    EXPECT_EQ(scene.width, 0);
    ASSERT_EQ(scene.Create(4, 4), FZResult::Ok);
    EXPECT_EQ(scene.AddLayerRect(0, 0, 3, -2, nullptr), FZResult::BadParameter);
    EXPECT_EQ(scene.LayerCount(), 0);
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

// Pixels outside a layer's rows are uncovered; rows beyond it are refused.
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
    EXPECT_EQ(layer.CoverageAt(5, 2), 0);

    const auto beyond = std::make_shared<const FZRowLayout>(3, std::vector<FZSpan>{{0, 1}, {0, 1}});
    EXPECT_EQ(layer.Create(0, 0, 6, 4, 0.0f, beyond), FZResult::BadParameter);
    EXPECT_EQ(layer.width, 0);
}
