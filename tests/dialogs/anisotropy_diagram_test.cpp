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

QImage Picture(int type, void (*adjust)(FZAnisotropy&) = [](FZAnisotropy&) {})
{
    FZAnisotropy a;
    a.type = type;
    adjust(a);
    return DrawAnisotropyPattern(a, kW, kH);
}

// Where the picture has the colour: a box (left, top, right, bottom).
QRect Where(const QImage& picture, QRgb colour)
{
    QRect box;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, y) == colour)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

TEST(AnisotropyDiagram, AxesCentreMarkAndStraightLines)
{
    const QImage wave = Picture(5);  // only the axes, through the middle
    for (int y = 0; y < kH; ++y) {
        for (int x = 0; x < kW; ++x)
            ASSERT_EQ(wave.pixel(x, y), y == kH / 2 || x == kW / 2 ? kAxis : kWhite) << x << y;
    }
    EXPECT_TRUE(DrawAnisotropyPattern(FZAnisotropy(), 0, kH).isNull());

    // The centre (50, 60) in pattern coordinates is pixel (50, 120 - 60),
    // marked by a yellow disc in a black box of 12 pixels.
    const QImage rings = Picture(1);
    EXPECT_EQ(rings.pixel(50, 60), kYellow);
    EXPECT_EQ(Where(rings, kBlack), QRect(44, 54, 12, 12));

    // Straight lines lie 4 pixels apart through row W/2 = 50, turned about
    // (W/2, W/2), not the middle row.
    const QImage straight = Picture(4);
    for (int row : {2, 6, 46, 50, 54, 70, 110, 118})
        EXPECT_EQ(straight.pixel(10, row), kPattern) << row;
    for (int row : {0, 3, 49, 51, 119})
        EXPECT_EQ(straight.pixel(10, row), kWhite) << row;
}

TEST(AnisotropyDiagram, RingsSpiralsAndWavesFollowTheirParameters)
{
    EXPECT_EQ(Picture(2, [](FZAnisotropy& a) { a.amplitude = 0.0f; }), Picture(1));
    EXPECT_NE(Picture(2, [](FZAnisotropy& a) { a.amplitude = 0.25f; }), Picture(1));
    // Without a twist the arm at 30 degrees runs through (50 + 17, 60 + 10).
    const QImage arms = Picture(3, [](FZAnisotropy& a) { a.spiralTwist = 0.0f; });
    EXPECT_EQ(arms.pixel(67, 50), kPattern);
    EXPECT_NE(Picture(3, [](FZAnisotropy& a) { a.spiralTwist = 0.05f; }), arms);
    // A centre in the bottom-left corner: rings reach the opposite corner.
    const QImage corner = Picture(1, [](FZAnisotropy& a) { a.center[0] = a.center[1] = 0.0f; });
    EXPECT_EQ(corner.pixel(0, kH - 1), kYellow);
    EXPECT_TRUE(Where(corner.copy(kW - 10, 0, 10, 10), kPattern).isValid());
}

} // namespace
