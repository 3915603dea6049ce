#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "../../bench/bench_materials.h"
#include "engine/render.h"
#include "preview/preview_panel.h"

namespace {

using Rgb = std::array<int, 3>;

const Rgb kBlue = {25, 102, 153};
const Rgb kWhite = {255, 255, 255};

Rgb FramePixel(const CPreviewPanel& panel, int x, int y)
{
    const std::uint8_t* p = panel.Scene()->frame->PixelAddress(x, y);
    return {p[2], p[1], p[0]};
}

Rgb OwnColour(const FZLayer& layer, int x, int y)
{
    const FZColor& c = layer.colors[y][x];
    return {c.r, c.g, c.b};
}

const FZLayer& Sample(const CPreviewPanel& panel)
{
    return *panel.Scene()->LayerAt(1);
}

FZAttributeEx Coloured(std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    FZAttributeEx m;
    m.color.SetBytes(r, g, b);
    return m;
}

// A preview of 120 x 120 pixels showing shape n in the default material.
void ShowShape(CPreviewPanel& panel, int n)
{
    ASSERT_EQ(panel.SetUpFrame(120, 120), FZResult::Ok);
    ASSERT_EQ(panel.BuildSampleShape(n), FZResult::Ok);
    ASSERT_EQ(panel.ApplyMaterial(FZAttributeEx(), 0), FZResult::Ok);
}

} // namespace

TEST(PreviewPanel, SetUpFrameBuildsTheGroundAndShapeOne)
{
    CPreviewPanel panel;
    EXPECT_EQ(panel.Scene(), nullptr);
    ASSERT_EQ(panel.SetUpFrame(120, 120), FZResult::Ok);
    const FZScene& scene = *panel.Scene();
    EXPECT_EQ(scene.width, 120);
    EXPECT_EQ(scene.height, 120);
    EXPECT_EQ(scene.LayerCount(), 2);
    EXPECT_EQ(scene.LightCount(), 1);
    EXPECT_EQ(panel.ShapeNumber(), 1);
    EXPECT_EQ(scene.environment.sphereSize, 0.0f);
    ASSERT_NE(scene.frame, nullptr);
    EXPECT_EQ(scene.frame->width, 120);

    const FZLayer& ground = *scene.LayerAt(0);
    EXPECT_EQ(ground.GetColorSource(), 1);
    EXPECT_EQ(ground.material.diffuse, 0.0f);
    EXPECT_EQ(ground.material.highlightStrength, 0.0f);
    EXPECT_EQ(ground.material.ambient, 1.0f);
    for (int y = 0; y <= 9; ++y)
        for (int x = 0; x <= 9; ++x)
            EXPECT_EQ(OwnColour(ground, x, y), kBlue) << x << "," << y;
    EXPECT_EQ(OwnColour(ground, 10, 0), kWhite);
    EXPECT_EQ(OwnColour(ground, 0, 10), kWhite);
    EXPECT_EQ(OwnColour(ground, 10, 10), kBlue);
    EXPECT_EQ(Sample(panel).GetColorSource(), 0);
    EXPECT_EQ(Sample(panel).baseDepth, 10.0f);
    EXPECT_EQ(Sample(panel).boundsX1, 112);  // columns and rows 7 to 112
}

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
    ASSERT_EQ(panel.ApplyMaterial(Coloured(255, 0, 0), 0), FZResult::Ok);
    panel.Scene()->LayerAt(1)->SetColorSource(1);
    EXPECT_EQ(panel.BuildSampleShape(3), FZResult::Ok);
    EXPECT_EQ(panel.ShapeNumber(), 3);
    EXPECT_NE(panel.Scene()->frame->PixelAddress(20, 20)[0], 7);
    EXPECT_EQ(panel.Scene()->LayerCount(), 2);
    EXPECT_EQ(Sample(panel).GetColorSource(), 1);
    EXPECT_EQ(Sample(panel).material.color.g, 0);

    // Numbers without a shape leave the sample empty: only the ground shows.
    for (const int n : {5, 0, -1}) {
        EXPECT_EQ(panel.BuildSampleShape(n), FZResult::Ok);
        EXPECT_EQ(panel.ShapeNumber(), n);
        EXPECT_EQ(Sample(panel).boundsX1, 39);  // bounds of an empty layer
        EXPECT_EQ(FramePixel(panel, 20, 20), kBlue);  // cell (2, 2)
    }
}

TEST(PreviewPanel, ColourBindShowsTheSampleWhite)
{
    CPreviewPanel panel;
    ASSERT_EQ(panel.SetUpFrame(120, 120), FZResult::Ok);
    ASSERT_EQ(panel.ApplyMaterial(Coloured(255, 0, 0), 0), FZResult::Ok);
    EXPECT_EQ(FramePixel(panel, 60, 60), (Rgb{255, 0, 0}));
    EXPECT_EQ(Sample(panel).material.color.r, 255);

    ASSERT_EQ(panel.ApplyMaterial(Coloured(255, 0, 0), 1), FZResult::Ok);
    EXPECT_EQ(FramePixel(panel, 60, 60), kWhite);
    EXPECT_EQ(Sample(panel).material.color.g, 255);

    // Any flag other than 1 keeps the material's colour.
    ASSERT_EQ(panel.ApplyMaterial(Coloured(0, 0, 255), 2), FZResult::Ok);
    EXPECT_EQ(FramePixel(panel, 60, 60), (Rgb{0, 0, 255}));
}

// The four shapes in the default material, shown on 120 x 120 previews.
class PreviewShapes : public ::testing::Test {
protected:
    void SetUp() override
    {
        for (int n = 1; n <= 4; ++n)
            ShowShape(panel[n], n);
    }
    CPreviewPanel panel[5];
};

TEST_F(PreviewShapes, DefaultMaterialLightsTheShapesFromTheUpperLeft)
{
    // White where the surface faces the light; the ambient 0.3 plus the
    // diffuse 0.8 x cosine where it turns away (the light travels along
    // (0.4, -0.3, -1)).
    EXPECT_EQ(FramePixel(panel[1], 60, 60), kWhite);  // bottom of the dimple
    EXPECT_EQ(FramePixel(panel[1], 23, 87), kWhite);  // upper-left rim
    const Rgb rim = FramePixel(panel[1], 96, 32);     // lower-right rim, cosine 0.55
    EXPECT_EQ(rim[0], rim[1]);
    EXPECT_EQ(rim[1], rim[2]);
    EXPECT_NEAR(rim[0], 189, 4);

    EXPECT_EQ(FramePixel(panel[2], 60, 60), kWhite);
    const Rgb slope = FramePixel(panel[2], 85, 41);  // 0.6 r toward the lower right: cosine 0.68
    EXPECT_EQ(slope[0], slope[2]);
    EXPECT_NEAR(slope[0], 215, 3);

    EXPECT_EQ(FramePixel(panel[3], 60, 60), kWhite);  // the flat top

    // The ring's hole shows the ground: cell (6, 6) is blue, (11, 6) white.
    EXPECT_EQ(FramePixel(panel[4], 60, 60), kBlue);
    EXPECT_EQ(FramePixel(panel[4], 116, 60), kWhite);
    EXPECT_EQ(FramePixel(panel[4], 99, 60), kWhite);  // on the crest, facing the viewer
}

TEST_F(PreviewShapes, SampleDepthsFollowTheShapeProfiles)
{
    // The dimple: 0.0165 at the centre, about 6.99 at 20 pixels out.
    const FZLayer& disc = Sample(panel[1]);
    EXPECT_NEAR(disc.depth[60][80] - disc.depth[60][60], 6.99 - 0.0165, 0.03);

    // Height r / 2 = 26.087: the nine-sample means at the top and at 31.5
    // pixels out differ by 5.2907.
    const FZLayer& dome = Sample(panel[2]);
    EXPECT_NEAR(dome.depth[60][60] - dome.depth[60][91], 5.2907, 0.001);
    EXPECT_NEAR(dome.depth[60][60], dome.depthMax, 1e-4);

    // Cut at 0.7 of 52.1677; the flat top reaches out to about 0.71 r = 37.
    const FZLayer& flat = Sample(panel[3]);
    EXPECT_LE(flat.depthMax, 0.7f * 52.1677f);
    EXPECT_GT(flat.depthMax, 0.7f * 52.1677f - 1.0f);
    EXPECT_EQ(flat.depth[60][60], flat.depthMax);
    EXPECT_EQ(flat.depth[60][90], flat.depthMax);
    EXPECT_LT(flat.depth[60][105], flat.depthMax);

    // The crest at 0.75 r is r / 4 = 13.04 above the ring's edge.
    const FZLayer& torus = Sample(panel[4]);
    EXPECT_NEAR(torus.depth[60][99], torus.depthMax, 0.05);
    EXPECT_NEAR(torus.depthMax, 13.04, 0.5);
}

TEST_F(PreviewShapes, EveryShapeStandsOnTheCheckerboard)
{
    // The corners lie outside every shape: 10 x 10 cells, blue at the origin.
    const struct {
        int x, y;
        Rgb colour;
    } corners[] = {{0, 0, kBlue}, {9, 9, kBlue}, {10, 0, kWhite}, {0, 119, kWhite}, {119, 119, kBlue}, {119, 0, kWhite}};
    for (int n = 1; n <= 4; ++n) {
        for (const auto& c : corners)
            EXPECT_EQ(FramePixel(panel[n], c.x, c.y), c.colour) << "shape " << n << " at " << c.x << "," << c.y;
        EXPECT_EQ(Sample(panel[n]).boundsX0, 7) << n;
        EXPECT_EQ(Sample(panel[n]).boundsY1, 112) << n;
        EXPECT_EQ(Sample(panel[n]).depthMin, 0.0f) << n;
    }
}

TEST(PreviewPanel, HighlightSitsWhereTheSurfaceFacesHalfwayToTheLight)
{
    // On a black dome only the highlight shows. With the default sharpness
    // it is a small spot where the normal is the half vector between the
    // light and the viewer: 22.3 pixels from the top toward the upper left,
    // at (42.2, 73.4).
    CPreviewPanel panel;
    ASSERT_EQ(panel.SetUpFrame(120, 120), FZResult::Ok);
    ASSERT_EQ(panel.BuildSampleShape(2), FZResult::Ok);
    ASSERT_EQ(panel.ApplyMaterial(Coloured(0, 0, 0), 0), FZResult::Ok);
    const FZLayer& dome = Sample(panel);
    double sumX = 0.0;
    double sumY = 0.0;
    int saturated = 0;
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 120; ++x)
            if (dome.coverage[y][x] == 255 && FramePixel(panel, x, y)[0] == 255) {
                sumX += x + 0.5;
                sumY += y + 0.5;
                ++saturated;
            }
    ASSERT_GT(saturated, 10);
    EXPECT_LT(saturated, 60);
    EXPECT_NEAR(sumX / saturated, 42.2, 1.0);
    EXPECT_NEAR(sumY / saturated, 73.4, 1.0);
    EXPECT_EQ(FramePixel(panel, 60, 60), (Rgb{0, 0, 0}));
}

TEST(PreviewPanel, FeatureMaterialsRenderTheSameTwice)
{
    const auto picture = [](const CPreviewPanel& panel) {
        const FZImage& frame = *panel.Scene()->frame;
        return std::vector<std::uint8_t>(frame.data, frame.data + frame.dataSize);
    };
    CPreviewPanel panel;
    ASSERT_EQ(panel.SetUpFrame(64, 64), FZResult::Ok);
    const std::vector<std::uint8_t> plain = picture(panel);
    for (const BenchMaterial& m : BenchMaterials()) {
        for (std::int32_t shape = 1; shape <= 4; ++shape) {
            ASSERT_EQ(panel.BuildSampleShape(shape), FZResult::Ok);
            ASSERT_EQ(panel.ApplyMaterial(m.material, 0), FZResult::Ok);
            const std::vector<std::uint8_t> first = picture(panel);
            ASSERT_EQ(panel.ApplyMaterial(m.material, 0), FZResult::Ok);
            EXPECT_EQ(picture(panel), first) << m.name << " " << shape;
            // Glass, mirrors and lamps show on the white default colour;
            // extra highlight mostly lands on pixels already saturated.
            if (shape == 1 && m.material.transparency + m.material.reflection + m.material.emission > 0.0f)
                EXPECT_NE(first, plain) << m.name;
        }
        ASSERT_EQ(panel.BuildSampleShape(1), FZResult::Ok);
        ASSERT_EQ(panel.ApplyMaterial(FZAttributeEx(), 0), FZResult::Ok);
    }
    // The red lamp tints the blue cells around it.
    ASSERT_EQ(panel.ApplyMaterial(BenchMaterials().back().material, 0), FZResult::Ok);
    const Rgb lit = FramePixel(panel, 4, 4);
    EXPECT_GT(lit[0], kBlue[0]);
    EXPECT_EQ(lit[1], kBlue[1]);
    EXPECT_EQ(lit[2], kBlue[2]);
}
