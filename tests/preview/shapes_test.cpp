#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <utility>
#include <limits>

#include "engine/shading/surface.h"
#include "preview/shapes.h"

namespace {

// The preview's sample layer on a 120 x 120 frame: empty, full frame.
class SampleShapes : public ::testing::Test {
protected:
    static constexpr float kCenter = 60.0f;
    const float r = static_cast<float>(120 / 2.3);
    FZLayer layer;

    void SetUp() override { ASSERT_EQ(layer.Create(0, 0, 120, 120, 10.0f), FZResult::Ok); }

    void Draw(int n) { DrawSampleShape(layer, n, kCenter, kCenter, r); }

    float MaxDepth() const
    {
        float m = 0.0f;
        for (int y = 0; y < 120; ++y)
            for (int x = 0; x < 120; ++x)
                if (layer.coverage[y][x] != 0 && layer.depth[y][x] > m)
                    m = layer.depth[y][x];
        return m;
    }
};

// Distance of a pixel centre from the frame centre.
double CentreDistance(int x, int y) { return std::hypot(x + 0.5 - 60.0, y + 0.5 - 60.0); }

int CoveredPixels(const FZLayer& layer)
{
    int n = 0;
    for (int y = 0; y < layer.height; ++y)
        for (int x = 0; x < layer.width; ++x)
            n += layer.coverage[y][x] != 0;
    return n;
}

}  // namespace

TEST_F(SampleShapes, EveryShapeSpansColumnsAndRowsSevenTo112)
{
    EXPECT_FLOAT_EQ(r, 52.173912f);
    for (int n = 1; n <= 4; ++n) {
        ASSERT_EQ(layer.Create(0, 0, 120, 120, 10.0f), FZResult::Ok);
        Draw(n);
        FZRect bounds;
        ASSERT_TRUE(CoverageBounds(layer, bounds)) << "shape " << n;
        EXPECT_EQ((std::array{bounds.x0, bounds.y0, bounds.x1, bounds.y1}), (std::array{7, 7, 112, 112})) << n;
        // Drawing leaves the layer as the preview expects it.
        EXPECT_FLOAT_EQ(layer.baseDepth, 10.0f);
    }
}

TEST_F(SampleShapes, PlateWithDimple)
{
    FZRoundedDisc plate;
    plate.Set(kCenter, kCenter, 0.0f, r, r * 0.25f);
    float bx0, by0, bx1, by1;
    plate.Bounds(bx0, by0, bx1, by1);
    EXPECT_FLOAT_EQ(bx0, 60.0f - r);
    EXPECT_FLOAT_EQ(by1, 60.0f + r);
    float z = 0.0f;
    EXPECT_TRUE(plate.HeightAt(60.0f + 39.1304f, 60.0f, z));
    EXPECT_FLOAT_EQ(z, 13.043478f);
    EXPECT_TRUE(plate.HeightAt(60.0f, 60.0f + 46.0f, z));
    EXPECT_NEAR(z, std::sqrt(13.043478 * 13.043478 - (46.0 - 39.130432) * (46.0 - 39.130432)), 1e-4);
    EXPECT_FALSE(plate.HeightAt(60.0f, 60.0f + 52.2f, z));

    RasterizeShape(layer, plate);
    EXPECT_FLOAT_EQ(layer.depth[60][60], 13.043478f);
    EXPECT_FLOAT_EQ(layer.depth[60][98], 13.043478f);
    EXPECT_EQ(layer.coverage[60][98], 255);
    FZLayer before;
    before.Assign(layer);

    AddDimple(layer, kCenter, kCenter, r - r * 0.25f, r * 0.25f);
    EXPECT_NEAR(layer.depth[60][60], 0.0165f, 1e-4);
    EXPECT_NEAR(layer.depth[60][80], 6.99f, 0.01);
    int kept = 0;
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 120; ++x) {
            // The nearest of the sixteen sample points lies 0.375 px nearer
            // than the pixel centre, at most 0.375 * sqrt(2) on a diagonal.
            if (CentreDistance(x, y) - 0.54 >= 39.130432) {
                ASSERT_EQ(layer.depth[y][x], before.depth[y][x]) << x << "," << y;
                ++kept;
            }
        }
    EXPECT_GT(kept, 3000);

    // The catalogue does the same two steps.
    FZLayer drawn;
    ASSERT_EQ(drawn.Create(0, 0, 120, 120, 10.0f), FZResult::Ok);
    DrawSampleShape(drawn, 1, kCenter, kCenter, r);
    EXPECT_EQ(drawn.depth[60][80], layer.depth[60][80]);
}

TEST_F(SampleShapes, DomesAndTheCutHemisphere)
{
    Draw(2);
    EXPECT_NEAR(MaxDepth(), r / 2, 0.01);

    ASSERT_EQ(layer.Create(0, 0, 120, 120, 10.0f), FZResult::Ok);
    FZDome hemisphere;
    hemisphere.Set(kCenter, kCenter, r, r, 0.0f, r);
    RasterizeShape(layer, hemisphere);
    const float top = MaxDepth();
    EXPECT_NEAR(top, 52.1677f, 1e-4);
    EXPECT_NEAR(layer.depth[60][60], top, 1e-5);

    FlattenTop(layer, 0.7f);
    const float level = top * 0.7f;
    const float cut = MaxDepth();
    EXPECT_NEAR(cut, level, 1e-4);
    int flat = 0;
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 120; ++x)
            flat += layer.coverage[y][x] != 0 && layer.depth[y][x] == cut;
    EXPECT_NEAR(std::sqrt(flat / 3.141592653589793) / r, 0.71, 0.02);

    ASSERT_EQ(layer.Create(0, 0, 120, 120, 10.0f), FZResult::Ok);
    Draw(3);
    EXPECT_NEAR(MaxDepth(), level, 1e-4);
}

TEST_F(SampleShapes, Ring)
{
    Draw(4);
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 120; ++x) {
            const double d = CentreDistance(x, y);
            if (d < r / 2 - 0.8 || d > r + 0.8) {
                ASSERT_EQ(layer.coverage[y][x], 0) << x << "," << y;
            }
        }
    // 0.75 r from the centre the cross-section is at its top, r / 4.
    EXPECT_NEAR(layer.depth[60][60 + 39], 13.04f, 0.02);
    EXPECT_NEAR(MaxDepth(), r / 4, 0.01);
    EXPECT_EQ(layer.coverage[60][60 + 39], 255);

    FZTorus ring;
    ring.Set(0.0f, 0.0f, 1.0f, 4.0f, 2.0f, 3.0f);
    float z = 0.0f;
    EXPECT_TRUE(ring.HeightAt(3.0f, 0.0f, z));
    EXPECT_FLOAT_EQ(z, 4.0f);
    EXPECT_FALSE(ring.HeightAt(1.5f, 0.0f, z));
    ring.Set(0.0f, 0.0f, 1.0f, 2.0f, 2.0f, 3.0f);
    EXPECT_FALSE(ring.HeightAt(2.0f, 0.0f, z));
}

TEST_F(SampleShapes, OtherNumbersDrawNothing)
{
    for (int n : {0, 5, -1}) {
        Draw(n);
        EXPECT_EQ(CoveredPixels(layer), 0);
    }
    layer.depth[3][3] = 7.0f;
    FlattenTop(layer, 0.5f);
    ClampDepth(layer, -1.0f);
    EXPECT_FLOAT_EQ(layer.depth[3][3], 7.0f);
}

TEST(ShapeRaster, CoverageCountsTheSamplesInside)
{
    // Sample points of pixel (0, 0) lie at 1/6, 1/2 and 5/6 on each axis.
    struct Case {
        float cx, cy, a, b;
        int inside;
        std::uint8_t coverage;
    };
    const Case cases[] = {
        {0.5f, 0.5f, 0.2f, 0.2f, 1, 28},
        {0.5f, 5.0f / 6, 0.4f, 0.1f, 3, 85},
        {2.0f / 3, 2.0f / 3, 0.3f, 0.3f, 4, 113},
        {0.5f, 0.5f, 0.6f, 0.6f, 9, 255},
    };
    for (const Case& c : cases) {
        FZLayer layer;
        ASSERT_EQ(layer.Create(0, 0, 2, 2, 0.0f), FZResult::Ok);
        FZDome dome;
        dome.Set(c.cx, c.cy, c.a, c.b, 2.0f, 0.0f);
        RasterizeShape(layer, dome);
        EXPECT_EQ(layer.coverage[0][0], c.coverage) << c.inside << " inside";
        EXPECT_FLOAT_EQ(layer.depth[0][0], 2.0f);
        EXPECT_EQ(layer.coverage[1][1], 0);
    }
}

TEST(ShapeRaster, HigherSurfaceWinsOverEarlierDrawing)
{
    FZLayer layer;
    ASSERT_EQ(layer.Create(0, 0, 3, 3, 0.0f), FZResult::Ok);
    // Each disc is drawn over the last; the depth is the highest so far.
    for (const auto [height, kept] : {std::pair{4.0f, 4.0f}, {2.0f, 4.0f}, {6.0f, 6.0f}}) {
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
    for (const int size : {1, 7}) {
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
    }

    FZRoundedDisc plate;
    plate.Set(0.0f, 0.0f, 0.0f, nan, 1.0f);
    float z = 0.0f;
    EXPECT_FALSE(plate.HeightAt(0.0f, 0.0f, z));
    FZDome dome;
    dome.Set(0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f);
    EXPECT_FALSE(dome.HeightAt(0.0f, 0.0f, z));
    dome.Set(0.0f, 0.0f, nan, 1.0f, 0.0f, 1.0f);
    EXPECT_FALSE(dome.HeightAt(0.0f, 0.0f, z));
    FZTorus ring;
    ring.Set(0.0f, 0.0f, 0.0f, 1.0f, nan, 1.0f);
    EXPECT_FALSE(ring.HeightAt(0.75f, 0.0f, z));

    // A layer without rows is left alone.
    FZLayer bare;
    DrawSampleShape(bare, 1, 0.0f, 0.0f, 10.0f);
    FlattenTop(bare, 0.5f);
    EXPECT_TRUE(bare.coverage.empty());
}
