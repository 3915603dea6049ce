// The pattern diagram of the anisotropic reflection dialog, drawn on a
// 100 x 120 picture: axes, centre mark, and the pictures of the types.
#include <gtest/gtest.h>

#include "dialogs/anisotropy_diagram.h"

namespace {

const QRgb kWhite = qRgb(255, 255, 255);
const QRgb kPattern = qRgb(180, 180, 180);
const QRgb kAxis = qRgb(120, 120, 120);
const QRgb kBlack = qRgb(0, 0, 0);
const QRgb kYellow = qRgb(255, 255, 0);

constexpr int kW = 100;
constexpr int kH = 120;

FZAnisotropy Pattern(int type)
{
    FZAnisotropy a;
    a.type = type;
    return a;
}

TEST(AnisotropyDiagram, TheWavePatternShowsOnlyTheAxes)
{
    const QImage picture = DrawAnisotropyPattern(Pattern(5), kW, kH);
    ASSERT_EQ(picture.size(), QSize(kW, kH));
    int axis = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            const QRgb p = picture.pixel(x, y);
            const bool onAxis = y == kH / 2 || x == kW / 2;
            EXPECT_EQ(p, onAxis ? kAxis : kWhite) << x << "," << y;
            axis += p == kAxis ? 1 : 0;
        }
    }
    EXPECT_EQ(axis, kW + kH - 1);
    EXPECT_TRUE(DrawAnisotropyPattern(Pattern(1), 0, kH).isNull());
    EXPECT_TRUE(DrawAnisotropyPattern(Pattern(1), kW, -1).isNull());
}

TEST(AnisotropyDiagram, StraightLinesTurnAboutTheHalfWidthInBothCoordinates)
{
    // At angle 0 the lines lie 4 pixels apart through row W/2 = 50 (not
    // through the middle row 60, which only the axis crosses).
    const QImage picture = DrawAnisotropyPattern(Pattern(4), kW, kH);
    for (int row : {2, 6, 10, 14, 18, 22, 26, 30, 34, 38, 42, 46, 50, 54, 58, 62, 66, 70, 110, 118})
        EXPECT_EQ(picture.pixel(10, row), kPattern) << row;
    for (int row : {0, 1, 3, 4, 48, 49, 51, 52, 56, 64, 119})
        EXPECT_EQ(picture.pixel(10, row), kWhite) << row;
    EXPECT_EQ(picture.pixel(10, 60), kAxis);
    EXPECT_EQ(picture.pixel(0, 50), kPattern);  // the lines span the whole width
    EXPECT_EQ(picture.pixel(kW - 1, 50), kPattern);
}

TEST(AnisotropyDiagram, TheCentreMarkIsATwelvePixelYellowDisc)
{
    const QImage picture = DrawAnisotropyPattern(Pattern(1), kW, kH);
    // Centre (50, 60) in pattern coordinates is pixel (50, 120 - 60).
    EXPECT_EQ(picture.pixel(50, 60), kYellow);
    int black = 0;
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x) {
            if (picture.pixel(x, y) != kBlack)
                continue;
            ++black;
            EXPECT_TRUE(x >= 44 && x <= 55 && y >= 54 && y <= 65) << x << "," << y;
        }
    }
    EXPECT_GT(black, 20);
    EXPECT_EQ(picture.pixel(44, 60), kBlack);  // the box's left edge
    EXPECT_EQ(picture.pixel(55, 60), kBlack);  // and its last column
}

TEST(AnisotropyDiagram, RingsSpiralsAndWavesFollowTheirParameters)
{
    FZAnisotropy flatWaves = Pattern(2);
    flatWaves.amplitude = 0.0f;
    EXPECT_EQ(DrawAnisotropyPattern(flatWaves, kW, kH), DrawAnisotropyPattern(Pattern(1), kW, kH));
    FZAnisotropy waves = Pattern(2);
    waves.amplitude = 0.25f;
    EXPECT_NE(DrawAnisotropyPattern(waves, kW, kH), DrawAnisotropyPattern(Pattern(1), kW, kH));

    // Without a twist the arms run straight out: the arm at 30 degrees
    // passes through (50 + 17, 60 + 10), row 120 - 70.
    FZAnisotropy arms = Pattern(3);
    arms.spiralTwist = 0.0f;
    const QImage straightArms = DrawAnisotropyPattern(arms, kW, kH);
    EXPECT_EQ(straightArms.pixel(67, 50), kPattern);
    arms.spiralTwist = 0.05f;
    EXPECT_NE(DrawAnisotropyPattern(arms, kW, kH), straightArms);

    // A centre in the bottom-left corner: rings reach the opposite corner.
    FZAnisotropy corner = Pattern(1);
    corner.center[0] = 0.0f;
    corner.center[1] = 0.0f;
    const QImage rings = DrawAnisotropyPattern(corner, kW, kH);
    EXPECT_EQ(rings.pixel(0, kH - 1), kYellow);
    int farPattern = 0;
    for (int y = 0; y < 10; ++y) {
        for (int x = kW - 10; x < kW; ++x)
            farPattern += rings.pixel(x, y) == kPattern ? 1 : 0;
    }
    EXPECT_GT(farPattern, 5);
}

} // namespace
