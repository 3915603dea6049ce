// What the pictures do not show: refused sizes, calls without a scene and
// when a shape is rebuilt. The goldens hold the pixels.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "preview/preview_panel.h"

namespace {

std::vector<std::uint8_t> FrameBytes(const CPreviewPanel& panel)
{
    const auto& data = panel.Scene()->frame->data;
    return {data.data(), data.data() + data.size()};
}

} // namespace

TEST(PreviewPanel, RefusesFramesItCannotBuild)
{
    CPreviewPanel panel;
    const struct {
        std::int32_t w, h;
        FZResult error;
    } refused[] = {{0, 10, FZResult::BadParameter}, {10, -3, FZResult::BadParameter},
                   {100000, 100000, FZResult::OutOfMemory}, {40000, 1, FZResult::OutOfMemory}};
    for (const auto& r : refused)
        EXPECT_EQ(panel.SetUpFrame(r.w, r.h), r.error) << r.w << "x" << r.h;
    EXPECT_EQ(panel.Scene(), nullptr);

    // A refused size keeps the scene that was there.
    ASSERT_EQ(panel.SetUpFrame(1, 1), FZResult::Ok);
    EXPECT_EQ(panel.Scene()->LayerCount(), 2);
    EXPECT_EQ(panel.SetUpFrame(-1, -1), FZResult::BadParameter);
    ASSERT_NE(panel.Scene(), nullptr);
    EXPECT_EQ(panel.Scene()->width, 1);
}

TEST(PreviewPanel, WithoutASceneEveryCallDoesNothing)
{
    CPreviewPanel panel;
    EXPECT_EQ(panel.BuildSampleShape(3), FZResult::Ok);
    EXPECT_EQ(panel.ShapeNumber(), 1);
    ASSERT_EQ(panel.ApplyMaterial(FZAttributeEx(), 1), FZResult::Ok);
    panel.ReleaseScene();
    EXPECT_EQ(panel.Scene(), nullptr);

    ASSERT_EQ(panel.SetUpFrame(8, 8), FZResult::Ok);
    panel.ReleaseScene();
    panel.ReleaseScene();
    EXPECT_EQ(panel.Scene(), nullptr);
}

TEST(PreviewPanel, OnlyAnotherShapeNumberRebuilds)
{
    CPreviewPanel panel;
    ASSERT_EQ(panel.SetUpFrame(40, 40), FZResult::Ok);
    std::uint8_t* marked = panel.Scene()->frame->PixelAddress(20, 20);
    marked[0] = 7;
    EXPECT_EQ(panel.BuildSampleShape(1), FZResult::Ok);
    EXPECT_EQ(marked[0], 7);  // nothing rendered

    // Another number keeps the sample's material and colour source.
    FZAttributeEx red;
    red.color.SetBytes(255, 0, 0);
    ASSERT_EQ(panel.ApplyMaterial(red, 0), FZResult::Ok);
    panel.Scene()->LayerAt(1)->SetColorSource(1);
    EXPECT_EQ(panel.BuildSampleShape(3), FZResult::Ok);
    EXPECT_EQ(panel.ShapeNumber(), 3);
    EXPECT_NE(panel.Scene()->frame->PixelAddress(20, 20)[0], 7);
    EXPECT_EQ(panel.Scene()->LayerCount(), 2);
    EXPECT_EQ(panel.Scene()->LayerAt(1)->GetColorSource(), 1);
    EXPECT_EQ(panel.Scene()->LayerAt(1)->material.color.g, 0);

    // Numbers without a shape leave the sample empty: only the ground shows.
    CPreviewPanel ground;
    ASSERT_EQ(ground.SetUpFrame(40, 40, 0), FZResult::Ok);
    for (const int n : {5, 0, -1}) {
        EXPECT_EQ(panel.BuildSampleShape(n), FZResult::Ok);
        EXPECT_EQ(panel.ShapeNumber(), n);
        EXPECT_EQ(FrameBytes(panel), FrameBytes(ground)) << n;
    }
}

// A smoothing box wider than the frame covers all of it wherever a sample
// lies, so an absurd width draws the frame-wide box's picture (and is held
// to that box's work: these renders would not end otherwise).
TEST(PreviewPanel, SmoothingWiderThanTheFrameDrawsTheFrameWidePicture)
{
    constexpr int kWidth = 40;
    constexpr int kHeight = 30;
    const float frameWide = 2.0f * (kWidth + 1);
    const float widths[] = {frameWide + 1.0f, 1e3f, 1e9f, 3.4e38f, std::numeric_limits<float>::infinity()};
    bool smoothingShows = false;
    for (const int shape : {1, 2, 3, 4}) {
        // Smoothing shows where grooves make the highlight change sharply.
        FZAttributeEx m;
        m.smoothHighlight = 1;
        m.anisotropic = 1;
        m.anisotropy.type = 2;
        m.anisotropy.depthVariation = 0.0f;
        auto frame = [&](float width) {
            m.smoothWidth = width;
            CPreviewPanel panel;
            EXPECT_EQ(panel.SetUpFrame(kWidth, kHeight, shape, m, 0), FZResult::Ok);
            return FrameBytes(panel);
        };
        const auto wide = frame(frameWide);
        smoothingShows = smoothingShows || frame(2.0f) != wide;
        for (const float width : widths)
            EXPECT_TRUE(frame(width) == wide) << "shape " << shape << ", width " << width;
    }
    EXPECT_TRUE(smoothingShows);
}
