// The pattern diagram of the anisotropic reflection dialog, drawn on a
// 100 x 120 picture: axes, centre mark, and the pictures of the types.
#include <gtest/gtest.h>

#include "dialogs/anisotropy_diagram.h"

namespace {

const QRgb kWhite = qRgb(255, 255, 255);
const QRgb kPattern = qRgb(180, 180, 180);
const QRgb kAxis = qRgb(120, 120, 120);

QImage Picture(int type, void (*adjust)(FZAnisotropy&) = [](FZAnisotropy&) {})
{
    FZAnisotropy a;
    a.type = type;
    adjust(a);
    return DrawAnisotropyPattern(a, 100, 120);
}

TEST(AnisotropyDiagram, EachTypeDrawsItsPattern)
{
    const QImage wave = Picture(5);  // only the axes, through the middle
    for (int y = 0; y < 120; ++y) {
        for (int x = 0; x < 100; ++x)
            ASSERT_EQ(wave.pixel(x, y), y == 60 || x == 50 ? kAxis : kWhite) << x << "," << y;
    }
    EXPECT_TRUE(DrawAnisotropyPattern(FZAnisotropy(), 0, 120).isNull());
    // The centre (50, 60), y up, is marked yellow in a black box.
    const QImage rings = Picture(1);
    EXPECT_EQ(rings.pixel(50, 60), qRgb(255, 255, 0));
    EXPECT_EQ(rings.pixel(44, 60), qRgb(0, 0, 0));
    // Straight lines lie 4 pixels apart through row W/2 = 50, not the middle.
    const QImage straight = Picture(4);
    for (int row : {2, 46, 50, 54, 118})
        EXPECT_EQ(straight.pixel(10, row), kPattern) << row;
    for (int row : {0, 49, 51, 119})
        EXPECT_EQ(straight.pixel(10, row), kWhite) << row;
    // Waves without amplitude are rings; arms without twist run straight,
    // the one at 30 degrees through (50 + 17, 60 + 10).
    EXPECT_EQ(Picture(2, [](FZAnisotropy& a) { a.amplitude = 0.0f; }), rings);
    EXPECT_NE(Picture(2, [](FZAnisotropy& a) { a.amplitude = 0.25f; }), rings);
    const QImage arms = Picture(3, [](FZAnisotropy& a) { a.spiralTwist = 0.0f; });
    EXPECT_EQ(arms.pixel(67, 50), kPattern);
    EXPECT_NE(Picture(3, [](FZAnisotropy& a) { a.spiralTwist = 0.05f; }), arms);
    const QImage corner = Picture(1, [](FZAnisotropy& a) { a.center[0] = a.center[1] = 0.0f; });
    EXPECT_EQ(corner.pixel(0, 119), qRgb(255, 255, 0));
}

} // namespace
